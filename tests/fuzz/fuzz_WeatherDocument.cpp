// The One Call document: any body decodes to a document or to nothing, and a document written back as JSON decodes to
// the same document.
#include "FuzzSupport.h"
#include "weather/WeatherInfo.h"

#include <QJsonDocument>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::optional<WeatherInfo> info = WeatherInfo::decode(fuzzBytes(data, size));
    if (info) {
        const QByteArray printed = QJsonDocument(info->toJson()).toJson(QJsonDocument::Compact);
        const std::optional<WeatherInfo> again = WeatherInfo::decode(printed);
        FUZZ_REQUIRE(again.has_value());
        FUZZ_REQUIRE(*again == *info);
    }
    return 0;
}
