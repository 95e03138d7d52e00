#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// The fuzzer's bytes, unowned.
inline QByteArray fuzzBytes(const uint8_t *data, size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
}

/// A property that must hold for every input: a failure stops the run with the input saved as a crash.
#define FUZZ_REQUIRE(condition)                                                                                        \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            std::fprintf(stderr, "%s:%d: property failed: %s\n", __FILE__, __LINE__, #condition);                      \
            std::abort();                                                                                              \
        }                                                                                                              \
    } while (false)
