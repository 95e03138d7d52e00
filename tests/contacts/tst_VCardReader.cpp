#include "contacts/Contact.h"
#include "contacts/ContactSearchIndex.h"
#include "contacts/VCardReader.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace {

// What one card must read as. Fields left out are expected empty.
struct Card
{
    QString file = {};    // under data/books; or
    QByteArray text = {}; // the card itself
    QString family = {};  // picks the card out of the file
    QString fullName = {};
    QString organization = {};
    QStringList phones = {}; // "label=value", labels as the screens show them
    QStringList emails = {};
    QByteArray photo = {};   // the picture's first bytes; empty for none
    QString identifier = {}; // the UID; empty for one made from the file
    QStringList finds = {};  // searches that find the contact
};

const VCardContact *byFamilyName(const QList<VCardContact> &cards, const QString &family)
{
    for (const VCardContact &card : cards) {
        if (card.familyName == family) {
            return &card;
        }
    }
    return nullptr;
}

QStringList shown(const QList<LabeledValue> &values)
{
    QStringList out;
    for (const LabeledValue &value : values) {
        out.append(ContactLabels::localizedString(value.label) + u'=' + value.value);
    }
    return out;
}

} // namespace

Q_DECLARE_METATYPE(Card)

class tst_VCardReader : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cards_data();
    void cards();
    void identifiersWithoutUid();
    void quotedPrintable_data();
    void quotedPrintable();
    void malformed_data();
    void malformed();
    void specialFilesAreNotRead();
};

void tst_VCardReader::cards_data()
{
    QTest::addColumn<Card>("expected");
    auto row = [](const char *name, const Card &card) { QTest::newRow(name) << card; };

    row("Android 2.1, quoted-printable UTF-8, X-CUSTOM",
        {.file = u"phone/android-export.vcf"_qs,
         .family = u"Muñoz"_qs,
         .fullName = u"José Muñoz"_qs,
         .phones = {u"mobile=+34 600 111 222"_qs, u"Mamá=+34 611 000 111"_qs, u"home=912 345 678"_qs},
         .emails = {u"home=jose@example.com"_qs}});
    row("Android, soft breaks do not spill into the next property",
        {.file = u"phone/android-export.vcf"_qs,
         .family = u"Álvarez"_qs,
         .fullName = u"Lucía Álvarez"_qs,
         .phones = {u"work fax=+34 913 000 000"_qs, u"Guardia=+34 699 000 000"_qs}});
    row("Apple 3.0, item groups with X-ABLabel, folded JPEG",
        {.file = u"phone/apple-export.vcf"_qs,
         .family = u"Appleseed"_qs,
         .fullName = u"Mr. Johnny Appleseed"_qs,
         .organization = u"Apple Inc."_qs,
         .phones = {u"mobile=+1 (408) 555-0100"_qs, u"Casa de Mamá=+1 408 555 0199"_qs},
         .emails = {u"work=johnny@example.com"_qs},
         .photo = "\xFF\xD8\xFF\xE0",
         .identifier = u"8D7A6C4E-1234-4B2A-9F00-ABCDEF012345"_qs});
    row("Google 3.0, custom label, escapes",
        {.file = u"work/google-export.vcf"_qs,
         .family = u"Dubois"_qs,
         .fullName = u"Élodie Dubois"_qs,
         .organization = u"Dubois & Fils, SARL"_qs,
         .phones = {u"mobile=+33 6 12 34 56 78"_qs, u"Bureau=+33 1 44 00 00 00"_qs},
         .emails = {u"home=elodie@example.fr"_qs}});
    row("FN is the name, whatever N says; N still files it", {.file = u"work/google-export.vcf"_qs,
                                                              .family = u"García López"_qs,
                                                              .fullName = u"Ana"_qs,
                                                              .phones = {u"mobile=+34 622 000 111"_qs}});
    row("search spells ß out, on both sides", {.file = u"work/google-export.vcf"_qs,
                                               .family = u"Straßer"_qs,
                                               .fullName = u"Jörg Straßer"_qs,
                                               .phones = {u"work=+49 30 1234 5678"_qs},
                                               .finds = {u"strasse"_qs, u"Straße"_qs}});
    row("Outlook 2.1, bare types", {.file = u"work/outlook-export.vcf"_qs,
                                    .family = u"Zapata"_qs,
                                    .fullName = u"Emiliano Zapata"_qs,
                                    .organization = u"Contoso Ltd."_qs,
                                    .phones = {u"work=(425) 555-0100"_qs, u"mobile=(425) 555-0101"_qs},
                                    .emails = {u"=ezapata@contoso.example"_qs}});
    row("FN family first; a TEL without a digit is no number", {.file = u"work/outlook-export.vcf"_qs,
                                                                .family = u"Pérez"_qs,
                                                                .fullName = u"Pérez, Luis"_qs,
                                                                .phones = {u"mobile=(425) 555-0102"_qs}});
    row("vCard 4.0, tel: URIs, quoted type list, data: picture",
        {.file = u"work/vcard4.vcf"_qs,
         .family = u"Núñez"_qs,
         .fullName = u"Eva Núñez"_qs,
         .phones = {u"mobile=+34-600-333-444"_qs, u"work=+34-910-000-000"_qs},
         .emails = {u"work=eva@example.org"_qs},
         .photo = "\x89PNG\r\n\x1a\n",
         .identifier = u"urn:uuid:4fbe8971-0bc3-424c-9c26-36c3e1eff6b1"_qs});
    row("no FN: N's comma list joined by blanks", {.file = u"work/vcard4.vcf"_qs,
                                                   .family = u"Sousa"_qs,
                                                   .fullName = u"Marta Isabel Clara Sousa"_qs,
                                                   .phones = {u"mobile=+351 912 345 678"_qs}});
    row("search spells ø out, on both sides", {.file = u"work/vcard4.vcf"_qs,
                                               .family = u"Bodø"_qs,
                                               .fullName = u"Kari Bodø"_qs,
                                               .emails = {u"=kari@example.no"_qs},
                                               .finds = {u"bodo"_qs, u"BODØ"_qs}});
    row("Latin-1 quoted-printable", {.file = u"phone/charsets.vcf"_qs,
                                     .family = u"Gómez"_qs,
                                     .fullName = u"María Gómez"_qs,
                                     .phones = {u"mobile=600 444 555"_qs}});
    row("Windows-1252 quoted-printable", {.file = u"phone/charsets.vcf"_qs,
                                          .family = u"O\u2019Neil"_qs,
                                          .fullName = u"Seán O\u2019Neil"_qs,
                                          .phones = {u"pager=600 777 888"_qs}});
    row("Shift_JIS as written, a \\ byte inside characters; a phone's own type",
        {.file = u"phone/charsets.vcf"_qs,
         .family = u"能登"_qs,
         .fullName = u"圭介 能登"_qs,
         .phones = {u"mobile=090-1234-5678"_qs, u"NEC-SECRET=03-1234-5678"_qs},
         .finds = {u"能登"_qs}});
    row("Shift_JIS quoted-printable, FN in Japanese order", {.file = u"phone/charsets.vcf"_qs,
                                                             .family = u"十河"_qs,
                                                             .fullName = u"十河 真央"_qs,
                                                             .phones = {u"mobile=080-9876-5432"_qs}});
    row("Big5, a \\ byte before the separator", {.file = u"phone/charsets.vcf"_qs,
                                                 .family = u"許"_qs,
                                                 .fullName = u"許功明"_qs,
                                                 .phones = {u"mobile=0912-345-678"_qs}});
    row("KOI8-R, an unknown bare type", {.file = u"phone/charsets.vcf"_qs,
                                         .family = u"Иванова"_qs,
                                         .fullName = u"Ольга Сергеевна Иванова"_qs,
                                         .phones = {u"MODEM=+7 495 123-45-67"_qs}});
    row("folded with blank and tab", {.file = u"work/folded-several.vcf"_qs,
                                      .family = u"von Hohenberg-Wittelsbach"_qs,
                                      .fullName = u"Maximilian Alexander von Hohenberg-Wittelsbach"_qs,
                                      .phones = {u"home=+49 89 1234 56"_qs}});
    row("company: its FN is its organisation's name and gives no personal names",
        {.file = u"work/folded-several.vcf"_qs,
         .fullName = u"3M"_qs,
         .organization = u"3M"_qs,
         .phones = {u"main=+1 888 364 3577"_qs}});
    row("only FN: its last word is the family name", {.file = u"work/folded-several.vcf"_qs,
                                                      .family = u"Cher"_qs,
                                                      .fullName = u"Cher"_qs,
                                                      .phones = {u"=+1 555 0100"_qs}});
    row("a remote picture is never fetched",
        {.text = "BEGIN:VCARD\nFN:A B\nPHOTO;VALUE=uri:https://example.com/a.jpg\nEND:VCARD\n",
         .family = u"B"_qs,
         .fullName = u"A B"_qs});
    row("bad base64 drops the picture, not the card",
        {.text = "BEGIN:VCARD\nFN:C D\nPHOTO;ENCODING=b:not*base64!\nEND:VCARD\n",
         .family = u"D"_qs,
         .fullName = u"C D"_qs});
    row("a character set nobody knows is read as UTF-8",
        {.text = "BEGIN:VCARD\nN;CHARSET=X-MADE-UP:M\xC3\xBCller;Jan\nEND:VCARD\n",
         .family = u"Müller"_qs,
         .fullName = u"Jan Müller"_qs});
    row("bytes that are no Shift_JIS character are U+FFFD",
        {.text = "BEGIN:VCARD\nN;CHARSET=Shift_JIS:Sato;\x8E\xFFKen\nEND:VCARD\n",
         .family = u"Sato"_qs,
         .fullName = u"\uFFFD\uFFFDKen Sato"_qs});
}

void tst_VCardReader::cards()
{
    QFETCH(Card, expected);
    const QList<VCardContact> cards =
        expected.file.isEmpty() ? VCardReader::read(expected.text, u"inline"_qs)
                                : VCardReader::readFile(QStringLiteral(TELVERRA_TEST_DATA "/") + expected.file);
    const VCardContact *card = byFamilyName(cards, expected.family);
    QVERIFY2(card, qPrintable(expected.family));
    QCOMPARE(Contact::fullName(*card), expected.fullName);
    QCOMPARE(card->organizationName, expected.organization);
    QCOMPARE(shown(card->phoneNumbers), expected.phones);
    QCOMPARE(shown(card->emailAddresses), expected.emails);
    QCOMPARE(card->thumbnailImageData.first(std::min(card->thumbnailImageData.size(), expected.photo.size())),
             expected.photo);
    QCOMPARE(card->imageDataAvailable(), !expected.photo.isEmpty());
    if (expected.identifier.isEmpty()) {
        QVERIFY2(card->identifier.startsWith(u"vcf-"), qPrintable(card->identifier));
    } else {
        QCOMPARE(card->identifier, expected.identifier);
    }
    const ContactSearchIndex index({Contact(*card)});
    for (const QString &search : expected.finds) {
        QVERIFY2(!index.matches(search).empty(), qPrintable(search));
    }
}

void tst_VCardReader::identifiersWithoutUid()
{
    // Made from the file and the position: the same at every read, different per card.
    const QString path = QStringLiteral(TELVERRA_TEST_DATA "/work/folded-several.vcf");
    const auto first = VCardReader::readFile(path);
    const auto second = VCardReader::readFile(path);
    QCOMPARE(first.size(), 3);
    QCOMPARE(first.at(1).identifier, second.at(1).identifier);
    QVERIFY(first.at(0).identifier != first.at(1).identifier);
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
