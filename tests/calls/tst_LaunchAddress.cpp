#include "calls/LaunchAddress.h"

#include <QTest>

class tst_LaunchAddress : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void parse_data();
    void parse();
    void browserGate_data();
    void browserGate();
};

void tst_LaunchAddress::parse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("phone with plus kept as written") << u"tel://+34600123456"_qs << true;
    QTest::newRow("short numeric authority") << u"tel://12"_qs << true;
    QTest::newRow("parentheses are sub-delimiters") << u"tel://(600)123"_qs << true;
    QTest::newRow("empty authority") << u"slack://"_qs << true;
    QTest::newRow("query without authority") << u"skype://?chat"_qs << true;
    QTest::newRow("sms") << u"sms:6001234"_qs << true;
    QTest::newRow("account") << u"facetime://bob@example.com"_qs << true;
    QTest::newRow("mail with subject") << u"mailto:bob@example.com?subject=Hi%20there&cc=a@b.c"_qs << true;
    QTest::newRow("percent escape") << u"sms:%2B34"_qs << true;
    QTest::newRow("IPv6 host with port") << u"https://[::1]:8080/x"_qs << true;
    QTest::newRow("blank") << u"mailto:bob smith@example.com"_qs << false;
    QTest::newRow("mail attachment") << u"mailto:bob@example.com?attach=/etc/passwd"_qs << false;
    QTest::newRow("mail attachment, escaped name") << u"mailto:bob@example.com?%61ttach=/etc/passwd"_qs << false;
    QTest::newRow("mail attachment after subject") << u"mailto:a@b.c?subject=x&attachment=~/.ssh/id_rsa"_qs << false;
    QTest::newRow("newline then switch") << u"tel://600\n--no-sandbox"_qs << false;
    QTest::newRow("NUL") << QString(u"tel://600"_qs).append(QChar(0)) << false;
    QTest::newRow("non-ASCII") << u"tel://6\u00e900"_qs << false;
    QTest::newRow("right-to-left override") << u"sms:600\u202e"_qs << false;
    QTest::newRow("zero-width space") << u"sms:60\u200b0"_qs << false;
    QTest::newRow("backslash") << u"https://evil.example\\@meet.google.com/x"_qs << false;
    QTest::newRow("bad percent escape") << u"sms:%G1"_qs << false;
    QTest::newRow("truncated percent escape") << u"sms:1%2"_qs << false;
    QTest::newRow("no scheme") << u"//meet.google.com/x"_qs << false;
    QTest::newRow("switch text") << u"--renderer-cmd-prefix=/tmp/x"_qs << false;
    QTest::newRow("scheme starting with a digit") << u"1tel:600"_qs << false;
    QTest::newRow("two fragments") << u"https://a.example/#x#y"_qs << false;
    QTest::newRow("letters in port") << u"https://a.example:80x/"_qs << false;
    QTest::newRow("mail body with encoded line breaks and a tab")
        << u"mailto:a@b.c?subject=Notes&body=one%0D%0Atwo%09three"_qs << true;
    QTest::newRow("encoded Latin-1 letter") << u"mailto:a@b.c?subject=caf%E9"_qs << true;
    QTest::newRow("encoded UTF-8 letter") << u"sms:600?body=caf%C3%A9"_qs << true;
    QTest::newRow("encoded line break in the address") << u"mailto:a@b.c%0Abcc:x@y"_qs << false;
    QTest::newRow("encoded line break in a header") << u"mailto:a@b.c?subject=Hi%0D%0ABcc:%20x@y"_qs << false;
    QTest::newRow("encoded line break in cc") << u"mailto:a@b.c?cc=x@y%0A"_qs << false;
    QTest::newRow("encoded line break in a field name") << u"mailto:a@b.c?sub%0Aject=x"_qs << false;
    QTest::newRow("encoded line break in the fragment") << u"mailto:a@b.c?body=x#%0A"_qs << false;
    QTest::newRow("encoded NUL in sms") << u"sms:600%00"_qs << false;
    QTest::newRow("encoded DEL in facetime") << u"facetime://600%7F"_qs << false;
    QTest::newRow("encoded C1 control") << u"tel://600%C2%85"_qs << false;
    QTest::newRow("lone C1 byte") << u"tel://600%85"_qs << false;
    QTest::newRow("overlong line break") << u"sms:600%C0%8A"_qs << false;
    QTest::newRow("encoded right-to-left override") << u"sms:600%E2%80%AE"_qs << false;
    QTest::newRow("encoded zero-width space, lower case") << u"mailto:a%e2%80%8b@b.c"_qs << false;
    QTest::newRow("encoded byte-order mark") << u"facetime://%EF%BB%BFbob@example.com"_qs << false;
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("longer than the cap") << QString(u"sms:" + QString(LaunchAddress::maximumLength, u'1')) << false;
}

void tst_LaunchAddress::parse()
{
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    const std::optional<LaunchAddress> address = LaunchAddress::parse(text);
    QCOMPARE(address.has_value(), accepted);
    if (address) {
        QCOMPARE(address->text(), text);
    }
}

void tst_LaunchAddress::browserGate_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("meet link") << u"https://meet.google.com/abc-defg-hij"_qs << true;
    QTest::newRow("zoom with query") << u"https://us02web.zoom.us/j/123?pwd=abc"_qs << true;
    QTest::newRow("plain http") << u"http://meet.jit.si/room"_qs << true;
    QTest::newRow("switch before link") << u"--renderer-cmd-prefix=/tmp/x https://meet.google.com/"_qs << false;
    QTest::newRow("javascript") << u"javascript:alert(1)//https://zoom.us/j/1"_qs << false;
    QTest::newRow("file") << u"file:///etc/passwd?https://meet.google.com/"_qs << false;
    QTest::newRow("user info") << u"https://meet.google.com@evil.example/x"_qs << false;
    QTest::newRow("backslash user info") << u"https://evil.example\\@meet.google.com/x"_qs << false;
    QTest::newRow("bidi override") << u"https://meet.google.com/abc\u202Efed"_qs << false;
    QTest::newRow("zero-width space") << u"https://meet.google.com/a\u200Bb"_qs << false;
    QTest::newRow("newline then switch") << u"https://meet.google.com/abc\n--no-sandbox"_qs << false;
    QTest::newRow("data with zoom part") << u"data:text/html,<script>zoom.us/</script>"_qs << false;
    QTest::newRow("encoded line break") << u"https://meet.google.com/abc%0D%0ASet-Cookie:x"_qs << false;
    QTest::newRow("encoded bidi isolate") << u"https://zoom.us/j/1?pwd=%E2%81%A6x"_qs << false;
    QTest::newRow("encoded letter") << u"https://meet.jit.si/caf%C3%A9"_qs << true;
    QTest::newRow("no host") << u"https:///path"_qs << false;
    QTest::newRow("other scheme") << u"ftp://meet.google.com/"_qs << false;
    QTest::newRow("2048 characters") << QString(u"https://meet.google.com/" + QString(2048 - 24, u'a')) << true;
    QTest::newRow("2049 characters") << QString(u"https://meet.google.com/" + QString(2049 - 24, u'a')) << false;
}

void tst_LaunchAddress::browserGate()
{
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    QCOMPARE(LaunchAddress::parseForBrowser(text).has_value(), accepted);
}

QTEST_GUILESS_MAIN(tst_LaunchAddress)
#include "tst_LaunchAddress.moc"
