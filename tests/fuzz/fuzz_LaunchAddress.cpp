// The launch gate: whatever text it accepts is an ASCII absolute URI that carries no control, bidi or zero-width
// character, raw or percent-encoded (a mail body aside), no mail attachment, and reads back as itself; where QUrl in
// strict mode accepts the same text, both read the same scheme, and what a browser may open is a web address QUrl
// reads with a host and no user information.
#include "FuzzSupport.h"
#include "calls/LaunchAddress.h"

#include <QUrl>
#include <QUrlQuery>

namespace {

bool invisible(char32_t c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f) || c == 0x61c || c == 0x180e || (c >= 0x200b && c <= 0x200f) ||
           (c >= 0x202a && c <= 0x202e) || (c >= 0x2060 && c <= 0x2064) || (c >= 0x2066 && c <= 0x2069) || c == 0xfeff;
}

// An independent reading of the rule: decode with Qt, then look at the code points.
bool decodesToInvisible(const QString &component)
{
    const QByteArray decoded = QByteArray::fromPercentEncoding(component.toLatin1());
    for (char byte : decoded) {
        const auto b = static_cast<unsigned char>(byte);
        if (b < 0x20 || b == 0x7f) {
            return true;
        }
    }
    const QString text = QString::fromUtf8(decoded);
    for (char32_t c : text.toUcs4()) {
        if (invisible(c)) {
            return true;
        }
    }
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(fuzzBytes(data, size));
    const std::optional<LaunchAddress> address = LaunchAddress::parse(text);
    if (address) {
        FUZZ_REQUIRE(address->text() == text);
        FUZZ_REQUIRE(LaunchAddress::parse(address->text()) == address); // reads back as itself
        for (QChar c : text) {
            FUZZ_REQUIRE(c.unicode() > 0x20 && c.unicode() < 0x7f);
        }
        const QString scheme = address->scheme();
        QString checked = text.sliced(scheme.size() + 1);
        if (scheme == u"mailto") {
            const QString withoutFragment = checked.section(u'#', 0, 0);
            FUZZ_REQUIRE(!decodesToInvisible(checked.section(u'#', 1)));
            const qsizetype question = withoutFragment.indexOf(u'?');
            checked = question < 0 ? withoutFragment : withoutFragment.first(question);
            if (question >= 0) {
                for (const QString &field : withoutFragment.sliced(question + 1).split(u'&')) {
                    const QString name = QUrl::fromPercentEncoding(field.section(u'=', 0, 0).toLatin1()).toLower();
                    FUZZ_REQUIRE(!name.startsWith(u"attach"));
                    FUZZ_REQUIRE(!decodesToInvisible(field.section(u'=', 0, 0)));
                    if (name != u"body") {
                        FUZZ_REQUIRE(!decodesToInvisible(field.section(u'=', 1)));
                    }
                }
            }
        }
        FUZZ_REQUIRE(!decodesToInvisible(checked));
        const QUrl url = QUrl::fromEncoded(text.toLatin1(), QUrl::StrictMode);
        if (url.isValid()) {
            FUZZ_REQUIRE(url.scheme() == scheme);
        }
    }
    if (const std::optional<LaunchAddress> web = LaunchAddress::parseForBrowser(text)) {
        FUZZ_REQUIRE(address.has_value());
        FUZZ_REQUIRE(web->scheme() == u"http" || web->scheme() == u"https");
        FUZZ_REQUIRE(text.size() <= LaunchAddress::maximumBrowserLength);
        const QUrl url(text, QUrl::StrictMode);
        FUZZ_REQUIRE(url.isValid() && !url.host().isEmpty() && url.userInfo().isEmpty());
        FUZZ_REQUIRE(!decodesToInvisible(text));
    }
    return 0;
}
