// MET Norway's forecast: any body converts to a document or to nothing, and a document keeps what the card and the
// pop-over rely on (a condition now and on every day, at most eight days, a minimum no higher than the maximum).
#include "FuzzSupport.h"
#include "weather/MetNorwayForecast.h"

#include <cmath>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QDateTime now(QDate(2026, 11, 22), QTime(10, 30), QTimeZone::utc());
    const std::optional<WeatherInfo> info =
        MetNorwayForecast::convert(fuzzBytes(data, size), now, QTimeZone("Europe/Madrid"));
    if (info) {
        FUZZ_REQUIRE(!info->current.weather.isEmpty());
        FUZZ_REQUIRE(std::isfinite(info->current.temp) && std::isfinite(info->current.feelsLike));
        FUZZ_REQUIRE(info->daily.size() <= 8);
        for (const Daily &day : info->daily) {
            FUZZ_REQUIRE(!day.weather.isEmpty());
            FUZZ_REQUIRE(day.temp.min <= day.temp.max);
        }
    }
    return 0;
}
