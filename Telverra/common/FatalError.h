#pragma once

#include <QString>

/// Stops the process: one line "<location>:<line>: Fatal error: <message>" on standard error, then abort.
[[noreturn]] void fatalError(const char *location, int line, const QString &message);
