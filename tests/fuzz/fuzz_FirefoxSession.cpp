// Firefox's session file: a mozlz4 file decompresses to exactly the size its header gives, never above the cap, or
// not at all; the session inside gives windows of tabs of two texts each.
#include "FuzzSupport.h"
#include "calls/FirefoxSessionTabSource.h"

#include <QtEndian>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray file = fuzzBytes(data, size);
    if (const std::optional<QByteArray> json = FirefoxSessionTabSource::decompressMozLz4(file)) {
        FUZZ_REQUIRE(file.size() >= 12 && file.startsWith(QByteArray("mozLz40\0", 8)));
        const quint32 announced = qFromLittleEndian<quint32>(file.constData() + 8);
        FUZZ_REQUIRE(json->size() == qsizetype(announced));
        FUZZ_REQUIRE(json->size() <= FirefoxSessionTabSource::maximumSessionSize);
    }
    // The bytes as the session document itself.
    const ScriptValue windows = FirefoxSessionTabSource::windowsFromSession(file);
    FUZZ_REQUIRE(windows.isList);
    for (const ScriptValue &window : windows.list) {
        FUZZ_REQUIRE(window.isList && window.list.size() == 2 && window.list[0].text && window.list[1].isList);
        for (const ScriptValue &tab : window.list[1].list) {
            FUZZ_REQUIRE(tab.isList && tab.list.size() == 2);
            FUZZ_REQUIRE(tab.list[0].text && tab.list[0].text->startsWith(u"Title: "));
            FUZZ_REQUIRE(tab.list[1].text && tab.list[1].text->startsWith(u"URL: "));
        }
    }
    return 0;
}
