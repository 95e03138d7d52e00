// libFuzzer target for the vCard reader: any bytes must come back as cards (or none) without a crash, a hang or
// undefined behaviour. Build with the "fuzz" preset; seed with tests/contacts/data/books.
#include "contacts/Contact.h"
#include "contacts/VCardReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QList<VCardContact> cards = VCardReader::read(bytes, QStringLiteral("fuzz"));
    for (const VCardContact &card : cards) {
        (void)Contact::fullName(card);
        (void)ContactLabels::phoneNumbersByLabel(card);
        (void)ContactLabels::emailAddressesByLabel(card);
    }
    return 0;
}
