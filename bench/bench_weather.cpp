// The weather without a service: a keystroke of the city search over the whole offline database, naming a position,
// reading the database (done once, away from the GUI thread), turning MET Norway's forecast into the card's
// document, and picking a saying from Debian's fortune files.
#include "weather/CityDatabase.h"
#include "weather/MetNorwayForecast.h"
#include "welcome/FortuneQuotes.h"

#include <QFile>
#include <QRandomGenerator>

#include "BenchMain.h"

#include <benchmark/benchmark.h>

namespace {

const CityDatabase &database()
{
    static const CityDatabase cities;
    return cities;
}

// What a user types, one keystroke at a time: each prefix is one search.
const char *const typed[] = {
    "m", "ma", "mad", "madr", "s", "sa", "san", "santa", "santa cruz de t", "tenerife", "xyzzy", "santa cruz, bol"};

void BM_CitySearchKeystroke(benchmark::State &state)
{
    const QString text = QString::fromUtf8(typed[state.range(0)]);
    const CityDatabase &cities = database();
    for (auto _ : state) {
        benchmark::DoNotOptimize(cities.search(text, 8, QStringLiteral("ES")));
    }
    state.SetLabel(typed[state.range(0)]);
}
BENCHMARK(BM_CitySearchKeystroke)->DenseRange(0, std::size(typed) - 1)->Unit(benchmark::kMillisecond);

void BM_NearestCity(benchmark::State &state)
{
    const CityDatabase &cities = database();
    QRandomGenerator random(1);
    for (auto _ : state) {
        const QGeoCoordinate position(-60.0 + random.bounded(130.0), -180.0 + random.bounded(360.0));
        benchmark::DoNotOptimize(cities.nearest(position));
    }
}
BENCHMARK(BM_NearestCity)->Unit(benchmark::kMillisecond);

void BM_ReadCityDatabase(benchmark::State &state)
{
    for (auto _ : state) {
        const CityDatabase cities;
        benchmark::DoNotOptimize(cities.size());
    }
}
BENCHMARK(BM_ReadCityDatabase)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_ConvertForecast(benchmark::State &state)
{
    QFile file(QStringLiteral(TELVERRA_SOURCE_DIR "/tests/weather/data/locationforecast.json"));
    file.open(QIODevice::ReadOnly);
    const QByteArray body = file.readAll();
    const QDateTime now(QDate(2026, 11, 22), QTime(10, 30), QTimeZone::utc());
    for (auto _ : state) {
        benchmark::DoNotOptimize(MetNorwayForecast::convert(body, now, QTimeZone("Europe/Madrid")));
    }
    state.SetBytesProcessed(state.iterations() * body.size());
}
BENCHMARK(BM_ConvertForecast)->Unit(benchmark::kMillisecond);

void BM_PickFortune(benchmark::State &state)
{
    const QString folder =
        FortuneQuotes::folderFor(QString::fromLatin1(FortuneQuotes::debianFolder), state.range(0) == 1);
    QRandomGenerator random(1);
    for (auto _ : state) {
        benchmark::DoNotOptimize(FortuneQuotes::pick(folder, random));
    }
    state.SetLabel(state.range(0) == 1 ? "fortunes-es" : "fortunes-min");
}
BENCHMARK(BM_PickFortune)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

} // namespace

TELVERRA_BENCHMARK_MAIN();
