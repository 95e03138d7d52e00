// The kinds of call and the addresses handed to the desktop: what each kind is called and starts with, and which
// texts the address gate (and the stricter browser gate) lets through.
#include "calls/CallTypes.h"
#include "calls/CallsManager.h"
#include "calls/LaunchAddress.h"

#include <QTest>

class tst_LaunchAddress : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void callTypes_data();
    void callTypes();
    void outsideTheTable();
    void queryEncoding();
    void gate_data();
    void gate();
};

void tst_LaunchAddress::callTypes_data()
{
    QTest::addColumn<CallTypes>("type");
    QTest::addColumn<int>("tag");
    QTest::addColumn<QStringList>("texts"); // raw value, label, icon, launch prefix
    auto row = [](const char *name, CallTypes type, int tag, const QStringList &texts) {
        QTest::newRow(name) << type << tag << texts;
    };
    row("telephone", CallTypes::telephone, 0, {u"telephone"_qs, u"Telephone"_qs, u"phone.fill"_qs, u"tel://"_qs});
    row("facetime", CallTypes::facetime, 1, {u"facetime"_qs, u"Facetime"_qs, u"video.fill"_qs, u"facetime://"_qs});
    row("facetimeaudio", CallTypes::facetimeaudio, 2,
        {u"facetime-audio"_qs, u"Facetime Audio"_qs, u"waveform.circle.fill"_qs, u"facetime-audio://"_qs});
    row("messages", CallTypes::messages, 3, {u"messages"_qs, u"Message"_qs, u"message.fill"_qs, u"sms:"_qs});
    row("skype", CallTypes::skype, 4, {u"skype"_qs, u"Skype"_qs, u"icon_skype"_qs, u"skype://?chat"_qs});
    row("slack", CallTypes::slack, 5, {u"slack"_qs, u"Slack"_qs, u"minus.circle.fill"_qs, u"slack://"_qs});
    row("telegram", CallTypes::telegram, 6, {u"telegram"_qs, u"Telegtram"_qs, u"icon_telegram"_qs, u"telegtram://"_qs});
    row("mail", CallTypes::mail, 7, {u"mail"_qs, u"Mail"_qs, u"envelope.fill"_qs, u"mailto:"_qs});
    row("googleMeet", CallTypes::googleMeet, 8,
        {u"meet"_qs, u"Google Meet"_qs, u"icon_googlemeet"_qs, u"https://meet.google.com/"_qs});
    row("googleMeetNew", CallTypes::googleMeetNew, 9,
        {u"newMeet"_qs, u"Google Meet"_qs, u"icon_googlemeet"_qs, u"https://meet.google.com/new"_qs});
    row("zoom", CallTypes::zoom, 10, {u"zoom"_qs, u"Zoom"_qs, u"icon_zoom"_qs, QString()});
    row("webex", CallTypes::webex, 11, {u"webex"_qs, u"Webex"_qs, u"icon_webex"_qs, QString()});
    row("jitsi", CallTypes::jitsi, 12, {u"jitsi"_qs, u"Jitsi"_qs, u"minus.circle.fill"_qs, QString()});
    row("notRecognized", CallTypes::notRecognized, 13,
        {u"not recognized"_qs, QString(), u"minus.circle.fill"_qs, QString()});
}

void tst_LaunchAddress::callTypes()
{
    QFETCH(CallTypes, type);
    QFETCH(int, tag);
    QFETCH(QStringList, texts);
    QCOMPARE(::tag(type), tag);
    QCOMPARE(allCallTypes()[static_cast<size_t>(tag)], type);
    QCOMPARE(
        (QStringList{rawValue(type), CallsManager::displayName(type), CallsManager::icon(type), launchPrefix(type)}),
        texts);
    QCOMPARE(isAssetImage(texts[2]), texts[2].startsWith(u"icon_"));
    QCOMPARE(launchPrefixForTag(tag), texts[3]);
    QCOMPARE(callTypesFromRawValue(texts[0]), std::optional<CallTypes>(type));
    QCOMPARE(caseName(type), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_LaunchAddress::outsideTheTable()
{
    // A case name is not a raw value; nor is a raw value in another case, with a blank, or the accessor's default.
    for (const QString &raw : {u"googleMeet"_qs, u"Telephone"_qs, u"zoom "_qs, QString(), u"unknown type"_qs}) {
        QVERIFY2(!callTypesFromRawValue(raw), qPrintable(raw));
    }
    for (int tag : {14, 1000, -1}) {
        QCOMPARE(launchPrefixForTag(tag), QString());
    }
}

void tst_LaunchAddress::queryEncoding()
{
    // The query-allowed set untouched; a blank, '#' and brackets escaped; non-ASCII as UTF-8.
    QCOMPARE(percentEncodedForQuery(u"az09!$&'()*+,-./:;=?@_~ #[]é"_qs),
             u"az09!$&'()*+,-./:;=?@_~%20%23%5B%5D%C3%A9"_qs);
}

void tst_LaunchAddress::gate_data()
{
    QTest::addColumn<bool>("forBrowser");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    auto rows = [](bool forBrowser, bool accepted, const QStringList &texts) {
        for (const QString &text : texts) {
            QTest::addRow("%s %s", forBrowser ? "browser" : "address", qPrintable(text.left(60)))
                << forBrowser << text << accepted;
        }
    };
    // Phone with plus kept as written, short numeric authority, parentheses (sub-delimiters), empty authority, query
    // without authority, accounts, mail headers, percent escapes, IPv6 with port, encoded line breaks and tabs in a
    // mail body, encoded Latin-1 and UTF-8 letters.
    rows(false, true,
         {u"tel://+34600123456"_qs, u"tel://12"_qs, u"tel://(600)123"_qs, u"slack://"_qs, u"skype://?chat"_qs,
          u"sms:6001234"_qs, u"facetime://bob@example.com"_qs, u"mailto:bob@example.com?subject=Hi%20there&cc=a@b.c"_qs,
          u"sms:%2B34"_qs, u"https://[::1]:8080/x"_qs, u"mailto:a@b.c?subject=Notes&body=one%0D%0Atwo%09three"_qs,
          u"mailto:a@b.c?subject=caf%E9"_qs, u"sms:600?body=caf%C3%A9"_qs});
    // Blanks, attachments (also escaped, also after a subject), controls, invisible and bidi characters (raw or
    // encoded, as C1, overlong, lower case), backslash, bad or truncated escapes, no scheme, switch text, a digit
    // scheme, two fragments, letters in a port, encoded line breaks in any mail part, empty, longer than the cap.
    rows(false, false,
         {u"mailto:bob smith@example.com"_qs,
          u"mailto:bob@example.com?attach=/etc/passwd"_qs,
          u"mailto:bob@example.com?%61ttach=/etc/passwd"_qs,
          u"mailto:a@b.c?subject=x&attachment=~/.ssh/id_rsa"_qs,
          u"tel://600\n--no-sandbox"_qs,
          QString(u"tel://600"_qs).append(QChar(0)),
          u"tel://6\u00e900"_qs,
          u"sms:600\u202e"_qs,
          u"sms:60\u200b0"_qs,
          u"https://evil.example\\@meet.google.com/x"_qs,
          u"sms:%G1"_qs,
          u"sms:1%2"_qs,
          u"//meet.google.com/x"_qs,
          u"--renderer-cmd-prefix=/tmp/x"_qs,
          u"1tel:600"_qs,
          u"https://a.example/#x#y"_qs,
          u"https://a.example:80x/"_qs,
          u"mailto:a@b.c%0Abcc:x@y"_qs,
          u"mailto:a@b.c?subject=Hi%0D%0ABcc:%20x@y"_qs,
          u"mailto:a@b.c?cc=x@y%0A"_qs,
          u"mailto:a@b.c?sub%0Aject=x"_qs,
          u"mailto:a@b.c?body=x#%0A"_qs,
          u"sms:600%00"_qs,
          u"facetime://600%7F"_qs,
          u"tel://600%C2%85"_qs,
          u"tel://600%85"_qs,
          u"sms:600%C0%8A"_qs,
          u"sms:600%E2%80%AE"_qs,
          u"mailto:a%e2%80%8b@b.c"_qs,
          u"facetime://%EF%BB%BFbob@example.com"_qs,
          QString(),
          QString(u"sms:" + QString(LaunchAddress::maximumLength, u'1'))});
    rows(true, true,
         {u"https://meet.google.com/abc-defg-hij"_qs, u"https://us02web.zoom.us/j/123?pwd=abc"_qs,
          u"http://meet.jit.si/room"_qs, u"https://meet.jit.si/caf%C3%A9"_qs,
          QString(u"https://meet.google.com/" + QString(2048 - 24, u'a'))});
    rows(true, false,
         {u"--renderer-cmd-prefix=/tmp/x https://meet.google.com/"_qs, u"javascript:alert(1)//https://zoom.us/j/1"_qs,
          u"file:///etc/passwd?https://meet.google.com/"_qs, u"https://meet.google.com@evil.example/x"_qs,
          u"https://evil.example\\@meet.google.com/x"_qs, u"https://meet.google.com/abc\u202Efed"_qs,
          u"https://meet.google.com/a\u200Bb"_qs, u"https://meet.google.com/abc\n--no-sandbox"_qs,
          u"data:text/html,<script>zoom.us/</script>"_qs, u"https://meet.google.com/abc%0D%0ASet-Cookie:x"_qs,
          u"https://zoom.us/j/1?pwd=%E2%81%A6x"_qs, u"https:///path"_qs, u"ftp://meet.google.com/"_qs,
          QString(u"https://meet.google.com/" + QString(2049 - 24, u'a'))});
}

void tst_LaunchAddress::gate()
{
    QFETCH(bool, forBrowser);
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    const std::optional<LaunchAddress> address =
        forBrowser ? LaunchAddress::parseForBrowser(text) : LaunchAddress::parse(text);
    QCOMPARE(address.has_value(), accepted);
    if (address) {
        QCOMPARE(address->text(), text);
    }
}

QTEST_GUILESS_MAIN(tst_LaunchAddress)
#include "tst_LaunchAddress.moc"
