#include "calls/CallTypes.h"
#include "calls/CallsManager.h"

#include <QTest>

class tst_CallTypes : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void table_data();
    void table();
    void outsideTheTable();
    void queryEncoding_data();
    void queryEncoding();
};

void tst_CallTypes::table_data()
{
    QTest::addColumn<CallTypes>("type");
    QTest::addColumn<int>("tag");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("icon");
    QTest::addColumn<QString>("prefix");

    auto row = [](const char *name, CallTypes type, int tag, const char *raw, const char *label, const char *icon,
                  const char *prefix) {
        QTest::newRow(name) << type << tag << QString::fromUtf8(raw) << QString::fromUtf8(label)
                            << QString::fromUtf8(icon) << QString::fromUtf8(prefix);
    };
    row("telephone", CallTypes::telephone, 0, "telephone", "Telephone", "phone.fill", "tel://");
    row("facetime", CallTypes::facetime, 1, "facetime", "Facetime", "video.fill", "facetime://");
    row("facetimeaudio", CallTypes::facetimeaudio, 2, "facetime-audio", "Facetime Audio", "waveform.circle.fill",
        "facetime-audio://");
    row("messages", CallTypes::messages, 3, "messages", "Message", "message.fill", "sms:");
    row("skype", CallTypes::skype, 4, "skype", "Skype", "icon_skype", "skype://?chat");
    row("slack", CallTypes::slack, 5, "slack", "Slack", "minus.circle.fill", "slack://");
    row("telegram", CallTypes::telegram, 6, "telegram", "Telegtram", "icon_telegram", "telegtram://");
    row("mail", CallTypes::mail, 7, "mail", "Mail", "envelope.fill", "mailto:");
    row("googleMeet", CallTypes::googleMeet, 8, "meet", "Google Meet", "icon_googlemeet", "https://meet.google.com/");
    row("googleMeetNew", CallTypes::googleMeetNew, 9, "newMeet", "Google Meet", "icon_googlemeet",
        "https://meet.google.com/new");
    row("zoom", CallTypes::zoom, 10, "zoom", "Zoom", "icon_zoom", "");
    row("webex", CallTypes::webex, 11, "webex", "Webex", "icon_webex", "");
    row("jitsi", CallTypes::jitsi, 12, "jitsi", "Jitsi", "minus.circle.fill", "");
    row("notRecognized", CallTypes::notRecognized, 13, "not recognized", "", "minus.circle.fill", "");
}

void tst_CallTypes::table()
{
    QFETCH(CallTypes, type);
    QFETCH(int, tag);
    QFETCH(QString, raw);
    QFETCH(QString, label);
    QFETCH(QString, icon);
    QFETCH(QString, prefix);

    QCOMPARE(::tag(type), tag);
    QCOMPARE(allCallTypes()[static_cast<size_t>(tag)], type);
    QCOMPARE(rawValue(type), raw);
    QCOMPARE(CallsManager::displayName(type), label);
    QCOMPARE(CallsManager::icon(type), icon);
    QCOMPARE(isAssetImage(icon), icon.startsWith(u"icon_"));
    QCOMPARE(launchPrefix(type), prefix);
    QCOMPARE(launchPrefixForTag(tag), prefix);
    QCOMPARE(callTypesFromRawValue(raw), std::optional<CallTypes>(type));
    QCOMPARE(caseName(type), QString::fromLatin1(QTest::currentDataTag()));
}

void tst_CallTypes::outsideTheTable()
{
    // A case name is not a raw value; nor is a raw value in another case, with a blank, or the accessor's default.
    for (const QString &raw : {u"googleMeet"_qs, u"Telephone"_qs, u"zoom "_qs, QString(), u"unknown type"_qs}) {
        QVERIFY2(!callTypesFromRawValue(raw), qPrintable(raw));
    }
    for (int tag : {14, 1000, -1}) {
        QCOMPARE(launchPrefixForTag(tag), QString());
    }
}

void tst_CallTypes::queryEncoding_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("encoded");
    QTest::newRow("query-allowed set untouched") << u"az09!$&'()*+,-./:;=?@_~"_qs << u"az09!$&'()*+,-./:;=?@_~"_qs;
    QTest::newRow("blank") << u"a b"_qs << u"a%20b"_qs;
    QTest::newRow("hash and brackets") << u"#[]"_qs << u"%23%5B%5D"_qs;
    QTest::newRow("non-ASCII as UTF-8") << u"é"_qs << u"%C3%A9"_qs;
}

void tst_CallTypes::queryEncoding()
{
    QFETCH(QString, text);
    QFETCH(QString, encoded);
    QCOMPARE(percentEncodedForQuery(text), encoded);
}

QTEST_GUILESS_MAIN(tst_CallTypes)
#include "tst_CallTypes.moc"
