// The launcher's per-keystroke and per-paste costs: dialer validation while typing, and the classification of
// pasted text, which must stay linear however large the clipboard is.
#include "calls/CallsManager.h"
#include "dialer/Dialer.h"

#include <benchmark/benchmark.h>

namespace {

// Typing "+34 600-123.456" key by key; each iteration is one keystroke's validation.
void BM_DialerValidationPerKeystroke(benchmark::State &state)
{
    const QString number = QStringLiteral("+34 600-123.456");
    Dialer dialer;
    qsizetype typed = 0;
    for (auto _ : state) {
        typed = typed % number.size() + 1;
        benchmark::DoNotOptimize(dialer.validate(number.first(typed)));
    }
}
BENCHMARK(BM_DialerValidationPerKeystroke);

// A long pasted text that mentions no meeting: the worst case, every address is searched for over the whole text.
void BM_CallTypeForURL(benchmark::State &state)
{
    const QString text(static_cast<qsizetype>(state.range(0)), u'x');
    for (auto _ : state) {
        benchmark::DoNotOptimize(CallsManager::callTypeForURL(text));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_CallTypeForURL)->Arg(1 << 10)->Arg(1 << 20)->Arg(10 << 20)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
