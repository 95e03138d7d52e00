// libFuzzer target for the vCard reader: any bytes must come back as cards (or none) without a crash, a hang or
// undefined behaviour, and what it keeps must be what a list can show: bounded texts without NULs or the converter's
// SUB, numbers that hold a digit, and the same cards at every read (no character set's state leaks from one value
// into the next). Build with the "fuzz" preset; seed with tests/contacts/data/books.
#include "FuzzSupport.h"
#include "contacts/Contact.h"
#include "contacts/VCardReader.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

bool isShowable(const QString &text)
{
    return text.size() <= VCardReader::maximumValueLength && !text.contains(QChar(0)) && !text.contains(QChar(0x1A));
}

QStringList names(const QList<VCardContact> &cards)
{
    QStringList out;
    for (const VCardContact &card : cards) {
        out.append(Contact::fullName(card));
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzzBytes(data, size);
    const QList<VCardContact> cards = VCardReader::read(bytes, QStringLiteral("fuzz"));
    for (const VCardContact &card : cards) {
        FUZZ_REQUIRE(isShowable(card.givenName) && isShowable(card.familyName) && isShowable(card.organizationName));
        FUZZ_REQUIRE(isShowable(card.details().formattedName));
        const QString fullName = Contact::fullName(card);
        FUZZ_REQUIRE(!fullName.contains(QChar(0x1A)));
        for (const LabeledValue &number : card.phoneNumbers) {
            FUZZ_REQUIRE(isShowable(number.value) && isShowable(number.label));
            FUZZ_REQUIRE(std::any_of(number.value.cbegin(), number.value.cend(), [](QChar c) { return c.isDigit(); }));
        }
        for (const LabeledValue &address : card.emailAddresses) {
            FUZZ_REQUIRE(isShowable(address.value) && isShowable(address.label));
        }
        (void)ContactLabels::phoneNumbersByLabel(card);
        (void)ContactLabels::emailAddressesByLabel(card);
    }
    FUZZ_REQUIRE(names(VCardReader::read(bytes, QStringLiteral("fuzz"))) == names(cards));
    return 0;
}
