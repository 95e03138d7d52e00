// The dialer's validation: the display always holds what was typed, the warning is the opposite of the answer, and
// a number the dialer calls valid always makes a phone address the launch gate lets through.
#include "FuzzSupport.h"
#include "calls/CallsManager.h"
#include "calls/LaunchAddress.h"
#include "dialer/Dialer.h"

#include <charconv>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(fuzzBytes(data, size));
    Dialer dialer;
    const bool valid = dialer.validate(text);
    FUZZ_REQUIRE(dialer.display == text);
    FUZZ_REQUIRE(dialer.isInvalidNumber == !valid);
    FUZZ_REQUIRE(Dialer::isValidNumber(text) == valid);
    if (!valid) {
        return 0;
    }
    // An independent reading of the rule: one "+" dropped, the blanks and separators removed, a signed 64-bit integer.
    QString rest = text.size() >= 2 && text.front() == u'+' ? text.sliced(1) : text;
    rest = CallsManager::cleanNumber(rest);
    const QByteArray ascii = rest.toLatin1();
    FUZZ_REQUIRE(rest == QString::fromLatin1(ascii));
    const char *begin = ascii.constData();
    const char *end = begin + ascii.size();
    if (begin != end && *begin == '+') {
        ++begin; // from_chars takes "-" but not "+"
    }
    long long value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value);
    FUZZ_REQUIRE(error == std::errc() && stop == end);
    FUZZ_REQUIRE(
        LaunchAddress::parse(CallsManager::desktopPrefix(CallTypes::telephone) + CallsManager::cleanNumber(text))
            .has_value());
    return 0;
}
