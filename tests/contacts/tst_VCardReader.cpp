#include "contacts/Contact.h"
#include "contacts/VCardReader.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

namespace {

const VCardContact *byFamilyName(const QList<VCardContact> &cards, const QString &family)
{
    for (const VCardContact &card : cards) {
        if (card.familyName == family) {
            return &card;
        }
    }
    return nullptr;
}

// "label=value" per entry, labels as the screens show them.
QStringList shown(const QList<LabeledValue> &values)
{
    QStringList out;
    for (const LabeledValue &value : values) {
        out.append(ContactLabels::localizedString(value.label) + u'=' + value.value);
    }
    return out;
}

} // namespace

class tst_VCardReader : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void corpus_data();
    void corpus();
    void photos();
    void identifiers();
    void quotedPrintable_data();
    void quotedPrintable();
    void malformed_data();
    void malformed();
    void specialFilesAreNotRead();
};

void tst_VCardReader::corpus_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("fullName");
    QTest::addColumn<QString>("organization");
    QTest::addColumn<QStringList>("phones");
    QTest::addColumn<QStringList>("emails");

    QTest::newRow("Android 2.1, quoted-printable UTF-8, X-CUSTOM")
        << u"phone/android-export.vcf"_qs << u"Muñoz"_qs << u"José Muñoz"_qs << QString()
        << QStringList{u"mobile=+34 600 111 222"_qs, u"Mamá=+34 611 000 111"_qs, u"home=912 345 678"_qs}
        << QStringList{u"home=jose@example.com"_qs};
    QTest::newRow("Android, soft breaks do not spill into the next property")
        << u"phone/android-export.vcf"_qs << u"Álvarez"_qs << u"Lucía Álvarez"_qs << QString()
        << QStringList{u"work fax=+34 913 000 000"_qs, u"Guardia=+34 699 000 000"_qs} << QStringList();
    QTest::newRow("Apple 3.0, item groups with X-ABLabel")
        << u"phone/apple-export.vcf"_qs << u"Appleseed"_qs << u"Mr. Johnny Appleseed"_qs << u"Apple Inc."_qs
        << QStringList{u"mobile=+1 (408) 555-0100"_qs, u"Casa de Mamá=+1 408 555 0199"_qs}
        << QStringList{u"work=johnny@example.com"_qs};
    QTest::newRow("Google 3.0, custom label, escapes")
        << u"work/google-export.vcf"_qs << u"Dubois"_qs << u"Élodie Dubois"_qs << u"Dubois & Fils, SARL"_qs
        << QStringList{u"mobile=+33 6 12 34 56 78"_qs, u"Bureau=+33 1 44 00 00 00"_qs}
        << QStringList{u"home=elodie@example.fr"_qs};
    QTest::newRow("Outlook 2.1, bare types")
        << u"work/outlook-export.vcf"_qs << u"Zapata"_qs << u"Emiliano Zapata"_qs << u"Contoso Ltd."_qs
        << QStringList{u"work=(425) 555-0100"_qs, u"mobile=(425) 555-0101"_qs}
        << QStringList{u"=ezapata@contoso.example"_qs};
    QTest::newRow("vCard 4.0, tel: URIs, quoted type list")
        << u"work/vcard4.vcf"_qs << u"Núñez"_qs << u"Eva Núñez"_qs << QString()
        << QStringList{u"mobile=+34-600-333-444"_qs, u"work=+34-910-000-000"_qs}
        << QStringList{u"work=eva@example.org"_qs};
    QTest::newRow("Latin-1 quoted-printable") << u"phone/latin1.vcf"_qs << u"Gómez"_qs << u"María Gómez"_qs << QString()
                                              << QStringList{u"mobile=600 444 555"_qs} << QStringList();
    QTest::newRow("Windows-1252 quoted-printable")
        << u"phone/latin1.vcf"_qs << u"O\u2019Neil"_qs << u"Seán O\u2019Neil"_qs << QString()
        << QStringList{u"pager=600 777 888"_qs} << QStringList();
    QTest::newRow("folded with blank and tab") << u"work/folded-several.vcf"_qs << u"von Hohenberg-Wittelsbach"_qs
                                               << u"Maximilian Alexander von Hohenberg-Wittelsbach"_qs << QString()
                                               << QStringList{u"home=+49 89 1234 56"_qs} << QStringList();
    QTest::newRow("company with only ORG") << u"work/folded-several.vcf"_qs << QString() << QString() << u"3M"_qs
                                           << QStringList{u"main=+1 888 364 3577"_qs} << QStringList();
    QTest::newRow("only FN: its last word is the family name")
        << u"work/folded-several.vcf"_qs << u"Cher"_qs << u"Cher"_qs << QString() << QStringList{u"=+1 555 0100"_qs}
        << QStringList();
}

void tst_VCardReader::corpus()
{
    QFETCH(QString, file);
    QFETCH(QString, family);
    QFETCH(QString, fullName);
    QFETCH(QString, organization);
    QFETCH(QStringList, phones);
    QFETCH(QStringList, emails);

    const QList<VCardContact> cards = VCardReader::readFile(QFINDTESTDATA(u"data/books/"_qs + file));
    QVERIFY(!cards.isEmpty());
    const VCardContact *card = byFamilyName(cards, family);
    QVERIFY2(card, qPrintable(family));
    QCOMPARE(Contact::fullName(*card), fullName);
    QCOMPARE(card->organizationName, organization);
    QCOMPARE(shown(card->phoneNumbers), phones);
    QCOMPARE(shown(card->emailAddresses), emails);
    QVERIFY(!card->identifier.isEmpty());
}

void tst_VCardReader::photos()
{
    const auto apple = VCardReader::readFile(QFINDTESTDATA("data/books/phone/apple-export.vcf"));
    QVERIFY(apple.at(0).imageDataAvailable());
    QVERIFY(apple.at(0).thumbnailImageData.startsWith("\xFF\xD8\xFF\xE0")); // a JPEG, unfolded and decoded
    const auto four = VCardReader::readFile(QFINDTESTDATA("data/books/work/vcard4.vcf"));
    QCOMPARE(four.at(0).thumbnailImageData, QByteArray("\x89PNG\r\n\x1a\n"));

    const QList<VCardContact> remote =
        VCardReader::read("BEGIN:VCARD\nFN:A B\nPHOTO;VALUE=uri:https://example.com/a.jpg\nEND:VCARD\n"
                          "BEGIN:VCARD\nFN:C D\nPHOTO;ENCODING=b:not*base64!\nEND:VCARD\n",
                          u"x"_qs);
    QCOMPARE(remote.size(), 2);
    QVERIFY2(!remote.at(0).imageDataAvailable(), "a remote picture is never fetched");
    QVERIFY2(!remote.at(1).imageDataAvailable(), "bad base64 drops the picture");
    QCOMPARE(remote.at(1).familyName, u"D"_qs);
}

void tst_VCardReader::identifiers()
{
    const auto apple = VCardReader::readFile(QFINDTESTDATA("data/books/phone/apple-export.vcf"));
    QCOMPARE(apple.at(0).identifier, u"8D7A6C4E-1234-4B2A-9F00-ABCDEF012345"_qs);
    const auto four = VCardReader::readFile(QFINDTESTDATA("data/books/work/vcard4.vcf"));
    QCOMPARE(four.at(0).identifier, u"urn:uuid:4fbe8971-0bc3-424c-9c26-36c3e1eff6b1"_qs);

    // Without UID: made from the file and the position, the same at every read, different per card.
    const QString path = QFINDTESTDATA("data/books/work/folded-several.vcf");
    const auto first = VCardReader::readFile(path);
    const auto second = VCardReader::readFile(path);
    QCOMPARE(first.size(), 3);
    QCOMPARE(first.at(1).identifier, second.at(1).identifier);
    QVERIFY(first.at(0).identifier != first.at(1).identifier);
    QVERIFY(first.at(0).identifier.startsWith(u"vcf-"));
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
