// The history at scale: fetching 10,000 and 100,000 recent calls newest first, and the path every call takes
// (add a record, save it, fetch the whole history again).
#include "recents/RecentCallsDataService.h"
#include "store/CoreDataManager.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

// A store holding `count` recent calls, made once per size and reused.
QString seededStore(int count)
{
    static QTemporaryDir dir;
    const QString file = dir.path() + u"/recents-" + QString::number(count) + u".sqlite";
    if (QFile::exists(file)) {
        return file;
    }
    CoreDataManager store(file);
    const QDateTime start = QDateTime::currentDateTime().addDays(-400);
    for (int i = 0; i < count; ++i) {
        auto record = store.viewContext().insertNewObject<RecentCallEntity>();
        record->setDate(start.addSecs(i * 300));
        record->setCallType(u"telephone"_qs);
        record->setDestinationValue(u"+34 600 "_qs + QString::number(100000 + i));
        record->setDestinationTag(u"mobile"_qs);
        record->setContactID(QString());
        record->setTelcoID(QString());
        record->setUrl(u"tel://+34600"_qs + QString::number(100000 + i));
    }
    store.save();
    return file;
}

// The first fetch after start-up: every row is read and becomes a record.
void BM_FetchRecentsCold(benchmark::State &state)
{
    const QString file = seededStore(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        CoreDataManager store(file);
        RecentCallsDataService recents(&store);
        const auto begin = std::chrono::steady_clock::now();
        recents.fetchRecentCalls();
        const auto end = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
        benchmark::DoNotOptimize(recents.savedRecents().size());
    }
}
BENCHMARK(BM_FetchRecentsCold)->Arg(10'000)->Arg(100'000)->UseManualTime()->Unit(benchmark::kMillisecond);

// Every later fetch: the records are in memory, the rows' identifiers are read and the list sorted again.
void BM_FetchRecentsWarm(benchmark::State &state)
{
    CoreDataManager store(seededStore(static_cast<int>(state.range(0))));
    RecentCallsDataService recents(&store);
    recents.fetchRecentCalls();
    for (auto _ : state) {
        recents.fetchRecentCalls();
        benchmark::DoNotOptimize(recents.savedRecents().size());
    }
}
BENCHMARK(BM_FetchRecentsWarm)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// What one call costs the history: add a record, save (a durable commit), fetch all again.
void BM_PerCallPath(benchmark::State &state)
{
    QTemporaryDir dir;
    const QString file = dir.path() + u"/copy.sqlite";
    QFile::copy(seededStore(static_cast<int>(state.range(0))), file);
    CoreDataManager store(file);
    RecentCallsDataService recents(&store);
    recents.fetchRecentCalls();
    int i = 0;
    for (auto _ : state) {
        recents.addRecentCall(u"+34 611 "_qs + QString::number(i++), CallTypes::telephone, QString(), QString());
        recents.fetchRecentCalls();
    }
}
BENCHMARK(BM_PerCallPath)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);

// The save alone, for comparison: the commit waits for the disk.
void BM_AddAndSaveOnly(benchmark::State &state)
{
    QTemporaryDir dir;
    CoreDataManager store(dir.path() + u"/empty.sqlite");
    RecentCallsDataService recents(&store);
    int i = 0;
    for (auto _ : state) {
        recents.addRecentCall(u"+34 611 "_qs + QString::number(i++), CallTypes::telephone, QString(), QString());
    }
}
BENCHMARK(BM_AddAndSaveOnly)->Unit(benchmark::kMillisecond);

} // namespace

TELVERRA_BENCHMARK_MAIN()
