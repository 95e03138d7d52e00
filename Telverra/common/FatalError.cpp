#include "FatalError.h"

#include <cstdio>
#include <cstdlib>

void fatalError(const char *location, int line, const QString &message)
{
    std::fflush(stdout);
    std::fprintf(stderr, "%s:%d: Fatal error: %s\n", location, line, message.toUtf8().constData());
    std::fflush(stderr);
    std::abort();
}
