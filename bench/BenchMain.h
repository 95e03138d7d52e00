#pragma once

#include <QCoreApplication>

#include <benchmark/benchmark.h>

/// A benchmark program's main(): the Qt application the code under measurement needs, then Google Benchmark.
#define TELVERRA_BENCHMARK_MAIN()                                                                                      \
    int main(int argc, char **argv)                                                                                    \
    {                                                                                                                  \
        QCoreApplication app(argc, argv);                                                                              \
        benchmark::Initialize(&argc, argv);                                                                            \
        benchmark::RunSpecifiedBenchmarks();                                                                           \
        benchmark::Shutdown();                                                                                         \
        return 0;                                                                                                      \
    }
