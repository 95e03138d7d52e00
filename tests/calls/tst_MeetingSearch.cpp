#include "calls/BrowserTabSource.h"
#include "calls/CallsManager.h"
#include "calls/OsaScriptTabSource.h"
#include "common/Trace.h"

#include <QTest>

namespace {
ScriptValue text(const char *value)
{
    return ScriptValue::fromText(QString::fromUtf8(value));
}
ScriptValue list(const QList<ScriptValue> &items)
{
    return ScriptValue::fromList(items);
}
ScriptValue tab(const char *title, const char *url)
{
    return list({text(title), text(url)});
}
ScriptValue window(const char *id, const QList<ScriptValue> &tabs)
{
    return list({text(id), list(tabs)});
}
} // namespace

class tst_MeetingSearch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void parsing();
    void scriptHostOutput_data();
    void scriptHostOutput();
};

void tst_MeetingSearch::parsing()
{
    const ScriptValue result = list({
        window("Window ID: 41",
               {tab("Title: Title: twice", "URL: https://a.example/URL: x"), list({text("Title only")}), list({})}),
        list({list({tab("Title: no window id", "URL: https://b.example/")})}), // no "Window ID:" text
        list({text("Window ID: 42"), text("ignored text"), list({})}),         // an empty tab list is skipped
        text("a bare text where a window entry should be"),
    });
    const QList<BrowserWindow> windows = CallsManager::browserWindows(result);
    QCOMPARE(windows.size(), 4);
    QCOMPARE(windows.at(0).name, u"Window ID: 41"_qs);
    QCOMPARE(windows.at(0).tabs.size(), 3); // every tab entry makes a tab, empty fields and all
    QCOMPARE(windows.at(0).tabs.at(0), (Tab{u"twice"_qs, u"https://a.example/x"_qs}));
    QCOMPARE(windows.at(0).tabs.at(1), Tab());
    QCOMPARE(windows.at(1).name, QString());
    QCOMPARE(windows.at(1).tabs, QList<Tab>{(Tab{u"no window id"_qs, u"https://b.example/"_qs})});
    QCOMPARE(windows.at(2), (BrowserWindow{u"Window ID: 42"_qs, {}}));
    QCOMPARE(windows.at(3), BrowserWindow());
}

// What `osascript -ss` prints for the listing script: the macOS script host cannot run here, its output can.
void tst_MeetingSearch::scriptHostOutput_data()
{
    QTest::addColumn<QString>("printed");
    QTest::addColumn<int>("windows"); // -1: not readable
    QTest::addColumn<QString>("meeting");
    QTest::newRow("two windows")
        << uR"({{"Window ID: 5", {{"Title: Inbox", "URL: https://mail.example/"}}}, )"
           uR"({"Window ID: 9", {{"Title: Meet - ~new", "URL: https://meet.google.com/x"}}}})"_qs
        << 2 << u"https://meet.google.com/x"_qs;
    QTest::newRow("two meetings: the first reported wins")
        << uR"({{"Window ID: 1", {{"Title: Inbox", "URL: https://mail.example/"}, )"
           uR"({"Title: Meet - ~new", "URL: https://meet.google.com/aaa"}}}, )"
           uR"({"Window ID: 2", {{"Title: Meet - ~new", "URL: https://meet.google.com/bbb"}}}})"_qs
        << 2 << u"https://meet.google.com/aaa"_qs;
    QTest::newRow("title differing in case")
        << uR"({{"Window ID: 3", {{"Title: Meet - ~New", "URL: https://meet.google.com/ccc"}}}})"_qs << 1 << QString();
    QTest::newRow("retitled meeting")
        << uR"({{"Window ID: 4", {{"Title: Meet - abc-defg-hij", "URL: https://meet.google.com/d"}}}})"_qs << 1
        << QString();
    QTest::newRow("escaped quote and backslash")
        << uR"({{"Window ID: 1", {{"Title: say \"hi\" \\ bye", "URL: https://a.example/"}}}})"_qs << 1 << QString();
    QTest::newRow("no windows") << u"{}"_qs << 0 << QString();
    QTest::newRow("unterminated text") << uR"({{"Window ID: 1)"_qs << -1 << QString();
    QTest::newRow("trailing garbage") << u"{} extra"_qs << -1 << QString();
    QTest::newRow("a script error message") << u"execution error: Not authorised (-1743)"_qs << -1 << QString();
    QTest::newRow("nested past the limit") << QString(QString(100, u'{') + QString(100, u'}')) << -1 << QString();
}

void tst_MeetingSearch::scriptHostOutput()
{
    QFETCH(QString, printed);
    QFETCH(int, windows);
    QFETCH(QString, meeting);
    const std::optional<ScriptValue> value = OsaScriptTabSource::parse(printed);
    QCOMPARE(value.has_value(), windows >= 0);
    if (!value) {
        return;
    }
    const QList<BrowserWindow> parsed = CallsManager::browserWindows(*value);
    QCOMPARE(parsed.size(), windows);
    Trace::Capture capture;
    QCOMPARE(CallsManager::meetingURL(parsed), meeting);
    if (QTest::currentDataTag() == QByteArray("escaped quote and backslash")) { // printed between rules, quoted
        const QString rule(45, u'-');
        const QString listing = uR"([BrowserWindow(name: "Window ID: 1", tabs: [Tab(title: "say \"hi\" \ bye", )"
                                uR"(url: "https://a.example/")])])"_qs;
        QCOMPARE(capture.lines(), (QStringList{rule, listing, rule}));
    }
}

QTEST_GUILESS_MAIN(tst_MeetingSearch)
#include "tst_MeetingSearch.moc"
