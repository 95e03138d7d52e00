#pragma once

#include <QString>
#include <QStringList>

/// Reads or changes a store file through a connection of its own, as another process would.
namespace StoreProbe {
/// The first column of the first row, or -1 when the statement fails.
int scalar(const QString &file, const QString &sql);
/// Every row, its columns joined by "|"; empty when the statement fails.
QStringList rows(const QString &file, const QString &sql);
} // namespace StoreProbe
