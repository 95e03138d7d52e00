// What `osascript -ss` prints: a value read from it, printed again the same way, reads as the same value.
#include "FuzzSupport.h"
#include "calls/OsaScriptTabSource.h"

namespace {

QString printed(const ScriptValue &value)
{
    if (!value.isList) {
        QString text = *value.text;
        text.replace(u'\\', u"\\\\"_qs).replace(u'"', u"\\\""_qs).replace(u'\n', u"\\n"_qs).replace(u'\t', u"\\t"_qs);
        return u'"' + text + u'"';
    }
    QStringList items;
    for (const ScriptValue &item : value.list) {
        items.append(printed(item));
    }
    return u'{' + items.join(u", ") + u'}';
}

bool same(const ScriptValue &a, const ScriptValue &b)
{
    if (a.isList != b.isList || a.text != b.text || a.list.size() != b.list.size()) {
        return false;
    }
    for (qsizetype i = 0; i < a.list.size(); ++i) {
        if (!same(a.list[i], b.list[i])) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(fuzzBytes(data, size));
    if (const std::optional<ScriptValue> value = OsaScriptTabSource::parse(text)) {
        FUZZ_REQUIRE(value->isList || value->text.has_value());
        const std::optional<ScriptValue> again = OsaScriptTabSource::parse(printed(*value));
        FUZZ_REQUIRE(again.has_value());
        FUZZ_REQUIRE(same(*again, *value));
    }
    return 0;
}
