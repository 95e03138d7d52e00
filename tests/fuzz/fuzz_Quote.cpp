// Quote answers: any body gives a saying or a failure text, never both and never neither; a saying written back as
// an answer reads the same.
#include "FuzzSupport.h"
#include "welcome/RandomQuoteDataService.h"

#include <QJsonDocument>
#include <QJsonObject>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QString failure;
    const std::optional<QString> quote = RandomQuoteDataService::decodeQuote(fuzzBytes(data, size), &failure);
    FUZZ_REQUIRE(quote.has_value() == failure.isEmpty());
    if (quote) {
        const QByteArray printed =
            QJsonDocument(QJsonObject{{u"language"_qs, u"en"_qs}, {u"text"_qs, *quote}}).toJson(QJsonDocument::Compact);
        FUZZ_REQUIRE(RandomQuoteDataService::decodeQuote(printed) == quote);
    }
    return 0;
}
