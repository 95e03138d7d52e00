#include "contacts/Contact.h"
#include "contacts/ContactSearchIndex.h"
#include "contacts/VCardReader.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

#include <sys/stat.h>

namespace {

// One card as the screens show it: "full name | organisation | label=number, … | label=address, …".
QString shown(const VCardContact &card)
{
    QStringList parts = {Contact::fullName(card), card.organizationName};
    for (const QList<LabeledValue> *values : {&card.phoneNumbers, &card.emailAddresses}) {
        QStringList labelled;
        for (const LabeledValue &value : *values) {
            labelled.append(ContactLabels::localizedString(value.label) + u'=' + value.value);
        }
        parts.append(labelled.join(u", "));
    }
    return parts.join(u" | ");
}

} // namespace

class tst_VCardReader : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cards_data();
    void cards();
    void quotedPrintable_data();
    void quotedPrintable();
    void malformed_data();
    void malformed();
    void specialFilesAreNotRead();
};

void tst_VCardReader::cards_data()
{
    // source: a file under data/books, or the card itself; family picks the card out of the file.
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QStringList>("finds");  // searches that find the contact
    QTest::addColumn<QByteArray>("photo");   // the picture's first bytes; empty for none
    QTest::addColumn<QString>("identifier"); // the UID; empty for one made from the file
    auto row = [](const char *name, const char *source, const char *family, const char *expected,
                  const QStringList &finds = {}, const QByteArray &photo = {}, const char *identifier = "") {
        QTest::newRow(name) << QString::fromUtf8(source) << QString::fromUtf8(family) << QString::fromUtf8(expected)
                            << finds << photo << QString::fromUtf8(identifier);
    };
    row("Android 2.1, quoted-printable UTF-8, X-CUSTOM", "phone/android-export.vcf", "Muñoz",
        "José Muñoz |  | mobile=+34 600 111 222, Mamá=+34 611 000 111, home=912 345 678 | home=jose@example.com");
    row("Android, soft breaks do not spill into the next property", "phone/android-export.vcf", "Álvarez",
        "Lucía Álvarez |  | work fax=+34 913 000 000, Guardia=+34 699 000 000 | ");
    row("Apple 3.0, item groups with X-ABLabel, folded JPEG", "phone/apple-export.vcf", "Appleseed",
        "Mr. Johnny Appleseed | Apple Inc. | mobile=+1 (408) 555-0100, Casa de Mamá=+1 408 555 0199 | "
        "work=johnny@example.com",
        {}, "\xFF\xD8\xFF\xE0", "8D7A6C4E-1234-4B2A-9F00-ABCDEF012345");
    row("Google 3.0, custom label, escapes", "work/google-export.vcf", "Dubois",
        "Élodie Dubois | Dubois & Fils, SARL | mobile=+33 6 12 34 56 78, Bureau=+33 1 44 00 00 00 | "
        "home=elodie@example.fr");
    row("FN is the name, whatever N says; N still files it", "work/google-export.vcf", "García López",
        "Ana |  | mobile=+34 622 000 111 | ");
    row("search spells ß out, on both sides", "work/google-export.vcf", "Straßer",
        "Jörg Straßer |  | work=+49 30 1234 5678 | ", {u"strasse"_qs, u"Straße"_qs});
    row("Outlook 2.1, bare types", "work/outlook-export.vcf", "Zapata",
        "Emiliano Zapata | Contoso Ltd. | work=(425) 555-0100, mobile=(425) 555-0101 | =ezapata@contoso.example");
    row("FN family first; a TEL without a digit is no number", "work/outlook-export.vcf", "Pérez",
        "Pérez, Luis |  | mobile=(425) 555-0102 | ");
    row("vCard 4.0, tel: URIs, quoted type list, data: picture", "work/vcard4.vcf", "Núñez",
        "Eva Núñez |  | mobile=+34-600-333-444, work=+34-910-000-000 | work=eva@example.org", {}, "\x89PNG\r\n\x1a\n",
        "urn:uuid:4fbe8971-0bc3-424c-9c26-36c3e1eff6b1");
    row("no FN: N's comma list joined by blanks", "work/vcard4.vcf", "Sousa",
        "Marta Isabel Clara Sousa |  | mobile=+351 912 345 678 | ");
    row("search spells ø out, on both sides", "work/vcard4.vcf", "Bodø", "Kari Bodø |  |  | =kari@example.no",
        {u"bodo"_qs, u"BODØ"_qs});
    row("Latin-1 quoted-printable", "phone/charsets.vcf", "Gómez", "María Gómez |  | mobile=600 444 555 | ");
    row("Windows-1252 quoted-printable", "phone/charsets.vcf", "O\u2019Neil",
        "Seán O\u2019Neil |  | pager=600 777 888 | ");
    row("Shift_JIS as written, a \\ byte inside characters; a phone's own type", "phone/charsets.vcf", "能登",
        "圭介 能登 |  | mobile=090-1234-5678, NEC-SECRET=03-1234-5678 | ", {u"能登"_qs});
    row("Shift_JIS quoted-printable, FN in Japanese order", "phone/charsets.vcf", "十河",
        "十河 真央 |  | mobile=080-9876-5432 | ");
    row("Big5, a \\ byte before the separator", "phone/charsets.vcf", "許", "許功明 |  | mobile=0912-345-678 | ");
    row("KOI8-R, an unknown bare type", "phone/charsets.vcf", "Иванова",
        "Ольга Сергеевна Иванова |  | MODEM=+7 495 123-45-67 | ");
    row("folded with blank and tab", "work/folded-several.vcf", "von Hohenberg-Wittelsbach",
        "Maximilian Alexander von Hohenberg-Wittelsbach |  | home=+49 89 1234 56 | ");
    row("company: its FN is its organisation's name and gives no personal names", "work/folded-several.vcf", "",
        "3M | 3M | main=+1 888 364 3577 | ");
    row("only FN: its last word is the family name", "work/folded-several.vcf", "Cher", "Cher |  | =+1 555 0100 | ");
    row("a remote picture is never fetched",
        "BEGIN:VCARD\nFN:A B\nPHOTO;VALUE=uri:https://example.com/a.jpg\nEND:VCARD\n", "B", "A B |  |  | ");
    row("bad base64 drops the picture, not the card", "BEGIN:VCARD\nFN:C D\nPHOTO;ENCODING=b:not*base64!\nEND:VCARD\n",
        "D", "C D |  |  | ");
    row("a character set nobody knows is read as UTF-8", "BEGIN:VCARD\nN;CHARSET=X-MADE-UP:Müller;Jan\nEND:VCARD\n",
        "Müller", "Jan Müller |  |  | ");
}

void tst_VCardReader::cards()
{
    QFETCH(QString, source);
    QFETCH(QString, family);
    QFETCH(QString, expected);
    QFETCH(QStringList, finds);
    QFETCH(QByteArray, photo);
    QFETCH(QString, identifier);
    const auto read = [&] {
        return source.startsWith(u"BEGIN:") ? VCardReader::read(source.toUtf8(), u"inline"_qs)
                                            : VCardReader::readFile(QStringLiteral(TELVERRA_TEST_DATA "/") + source);
    };
    const QList<VCardContact> cards = read();
    const auto card = std::find_if(cards.cbegin(), cards.cend(), [&](const auto &c) { return c.familyName == family; });
    QVERIFY2(card != cards.cend(), qPrintable(family));
    QCOMPARE(shown(*card), expected);
    QCOMPARE(card->thumbnailImageData.first(std::min(card->thumbnailImageData.size(), photo.size())), photo);
    QCOMPARE(card->imageDataAvailable(), !photo.isEmpty());
    QVERIFY2(identifier.isEmpty() ? card->identifier.startsWith(u"vcf-") : card->identifier == identifier,
             qPrintable(card->identifier));
    // Without a UID it is made from the file and the card's place in it: the same at every read, one per card.
    QCOMPARE(read().at(card - cards.cbegin()).identifier, card->identifier);
    QCOMPARE(
        std::count_if(cards.cbegin(), cards.cend(), [&](const auto &c) { return c.identifier == card->identifier; }),
        1);
    const ContactSearchIndex index({Contact(*card)});
    for (const QString &search : finds) {
        QVERIFY2(!index.matches(search).empty(), qPrintable(search));
    }
}

void tst_VCardReader::quotedPrintable_data()
{
    QTest::addColumn<QByteArray>("encoded");
    QTest::addColumn<QByteArray>("decoded");
    QTest::newRow("escapes") << QByteArray("Jos=C3=A9") << QByteArray("Jos\xC3\xA9");
    QTest::newRow("lower-case hex") << QByteArray("=c3=a9") << QByteArray("\xC3\xA9");
    QTest::newRow("bad escape kept") << QByteArray("a=ZZb") << QByteArray("a=ZZb");
    QTest::newRow("final equals dropped") << QByteArray("abc=") << QByteArray("abc");
    QTest::newRow("half escape at the end") << QByteArray("abc=4") << QByteArray("abc=4");
    QTest::newRow("soft break left in") << QByteArray("ab=\r\ncd") << QByteArray("abcd");
}

void tst_VCardReader::quotedPrintable()
{
    QFETCH(QByteArray, encoded);
    QFETCH(QByteArray, decoded);
    QCOMPARE(VCardReader::decodeQuotedPrintable(encoded), decoded);
}

void tst_VCardReader::malformed_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<int>("cards");
    QTest::addColumn<QString>("firstFamily"); // of the first card, when there is one

    const QByteArray card = "BEGIN:VCARD\nN:Ok;Card\nTEL:600\nEND:VCARD\n";
    QTest::newRow("no END:VCARD") << QByteArray("BEGIN:VCARD\nN:Open;Card\nTEL:1\n") << 1 << u"Open"_qs;
    QTest::newRow("END without BEGIN") << QByteArray("END:VCARD\n" + card + "END:VCARD\n") << 1 << u"Ok"_qs;
    QTest::newRow("BEGIN nested 100,000 deep")
        << QByteArray("BEGIN:VCARD\n").repeated(100'000) + "N:Deep;One\n" + QByteArray("END:VCARD\n").repeated(100'000)
        << 1 << u"Deep"_qs;
    QTest::newRow("a 10 MB line is dropped, the card kept")
        << QByteArray("BEGIN:VCARD\nNOTE:" + QByteArray(10 * 1024 * 1024, 'x') + "\nN:Kept;Card\nEND:VCARD\n") << 1
        << u"Kept"_qs;
    QTest::newRow("a million folded lines")
        << QByteArray("BEGIN:VCARD\nNOTE:x\n" + QByteArray(" y\n").repeated(1'000'000) + "N:After;Fold\nEND:VCARD\n")
        << 1 << u"After"_qs;
    QTest::newRow("bad quoted-printable")
        << QByteArray("BEGIN:VCARD\nN;ENCODING=QUOTED-PRINTABLE:Bad=ZZ;X=\nEND:VCARD\n") << 1 << u"Bad=ZZ"_qs;
    QTest::newRow("invalid UTF-8 and NUL bytes") << QByteArray(QByteArray("BEGIN:VCARD\nN:Inv\xC3\x28"
                                                                          "al") +
                                                               QByteArray(1, '\0') + "id;X\nEND:VCARD\n")
                                                 << 1 << u"Inv\uFFFD(alid"_qs;
    QTest::newRow("N with a million semicolons")
        << QByteArray("BEGIN:VCARD\nN:Semi;Colons" + QByteArray(1'000'000, ';') + "\nEND:VCARD\n") << 1 << u"Semi"_qs;
    QTest::newRow("a line without a colon")
        << QByteArray("BEGIN:VCARD\nGARBAGE\nN:Still;Here\nEND:VCARD\n") << 1 << u"Still"_qs;
    QTest::newRow("a bad card does not spoil the next")
        << QByteArray("BEGIN:VCARD\n:::\n;;;\nEND:VCARD\n" + card) << 2 << QString();
    QTest::newRow("unterminated quote in parameters")
        << QByteArray("BEGIN:VCARD\nTEL;TYPE=\"cell:600\nN:Quote;Open\nEND:VCARD\n") << 1 << u"Quote"_qs;
    QTest::newRow("empty") << QByteArray() << 0 << QString();
    QTest::newRow("binary noise") << QByteArray(100'000, '\xFF') << 0 << QString();
    QTest::newRow("soft breaks of a mixed-case Quoted-Printable are joined")
        << QByteArray("BEGIN:VCARD\nN;ENCODING=Quoted-Printable:M=C3=BA=\n=C3=B1oz;Jos=C3=A9\nEND:VCARD\n") << 1
        << u"Múñoz"_qs;
    QTest::newRow("bytes that are no Shift_JIS character are U+FFFD")
        << QByteArray("BEGIN:VCARD\nN;CHARSET=Shift_JIS:\x8E\xFFSato;Ken\nEND:VCARD\n") << 1 << u"\uFFFD\uFFFDSato"_qs;
    QTest::newRow("bare CR line ends") << QByteArray("BEGIN:VCARD\rN:Mac;Classic\rEND:VCARD\r") << 1 << u"Mac"_qs;
}

void tst_VCardReader::malformed()
{
    QFETCH(QByteArray, data);
    QFETCH(int, cards);
    QFETCH(QString, firstFamily);
    const QList<VCardContact> read = VCardReader::read(data, u"test"_qs);
    QCOMPARE(read.size(), cards);
    if (!firstFamily.isEmpty()) {
        QCOMPARE(read.at(0).familyName, firstFamily);
    }
}

void tst_VCardReader::specialFilesAreNotRead()
{
    QTemporaryDir dir;
    const QString fifo = dir.path() + u"/pipe.vcf";
    QCOMPARE(mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QVERIFY(VCardReader::readFile(fifo).isEmpty()); // would block forever if it were opened
    const QString device = dir.path() + u"/zero.vcf";
    QVERIFY(QFile::link(u"/dev/zero"_qs, device));
    QVERIFY(VCardReader::readFile(device).isEmpty()); // would never end if it were read
}

QTEST_GUILESS_MAIN(tst_VCardReader)
#include "tst_VCardReader.moc"
