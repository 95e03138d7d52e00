#pragma once

#include <QString>

/// Reads or changes a store file through a connection of its own, as another process would.
namespace StoreProbe {
/// The first column of the first row, or -1 when the statement fails.
int scalar(const QString &file, const QString &sql);
} // namespace StoreProbe
