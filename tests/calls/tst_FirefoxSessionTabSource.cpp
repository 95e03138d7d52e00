#include "calls/CallsManager.h"
#include "calls/FirefoxSessionTabSource.h"
#include "support/TestHome.h"

#include <QFile>
#include <QTest>

#include <lz4.h>

namespace {

QByteArray mozLz4(const QByteArray &json, qint64 claimedSize = -1)
{
    QByteArray compressed(LZ4_compressBound(static_cast<int>(json.size())), Qt::Uninitialized);
    const int written = LZ4_compress_default(json.constData(), compressed.data(), static_cast<int>(json.size()),
                                             static_cast<int>(compressed.size()));
    compressed.resize(written);
    const quint32 size = static_cast<quint32>(claimedSize < 0 ? json.size() : claimedSize);
    QByteArray file("mozLz40", 8);
    for (int shift = 0; shift < 32; shift += 8) {
        file.append(static_cast<char>((size >> shift) & 0xFF));
    }
    return file + compressed;
}

QByteArray session()
{
    QFile file(QFINDTESTDATA("data/firefox-session.json"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_FirefoxSessionTabSource : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void readsTheDefaultProfile();
    void badFiles_data();
    void badFiles();

private:
    std::unique_ptr<TestHome> m_home;
    QString m_root;
};

void tst_FirefoxSessionTabSource::init()
{
    m_home = std::make_unique<TestHome>();
    m_root = m_home->path() + u"/.mozilla/firefox";
    m_home->writeFile(u".mozilla/firefox/profiles.ini"_qs,
                      "[Profile1]\nName=old\nIsRelative=1\nPath=old.profile\nDefault=1\n\n"
                      "[Profile0]\nName=default-release\nIsRelative=1\nPath=abc.default-release\n\n"
                      "[Install4F96D1932A9F858E]\nDefault=abc.default-release\nLocked=1\n\n"
                      "[General]\nStartWithLastProfile=1\nVersion=2\n");
}

void tst_FirefoxSessionTabSource::readsTheDefaultProfile()
{
    m_home->writeFile(u".mozilla/firefox/abc.default-release/sessionstore-backups/recovery.jsonlz4"_qs,
                      mozLz4(session()));
    FirefoxSessionTabSource source({m_root});
    QVERIFY2(!source.run(CallsManager::myAppleScriptChrome, true), "only asked for the default browser");
    const std::optional<ScriptValue> answer = source.run(CallsManager::myAppleScriptSafari, false);
    QVERIFY(answer.has_value());
    const QList<BrowserWindow> windows = CallsManager::browserWindows(*answer);
    QCOMPARE(windows.size(), 2);
    QCOMPARE(windows.at(0).name, u"Window ID: 1"_qs);
    QCOMPARE(windows.at(0).tabs, (QList<Tab>{{u"Meet - ~new"_qs, u"https://meet.google.com/abc-defg-hij"_qs},
                                             {u"Inbox"_qs, u"https://mail.example/"_qs}}));
    QCOMPARE(CallsManager::meetingURL(windows), u"https://meet.google.com/abc-defg-hij"_qs);
}

void tst_FirefoxSessionTabSource::badFiles_data()
{
    QTest::addColumn<QByteArray>("file");
    const QByteArray good = mozLz4(session());
    QTest::newRow("truncated") << good.left(good.size() - 20);
    QTest::newRow("header claims more") << mozLz4(session(), session().size() + 100);
    QTest::newRow("header claims less") << mozLz4(session(), session().size() - 100);
    QTest::newRow("header beyond the cap") << mozLz4(session(), FirefoxSessionTabSource::maximumSessionSize + 1);
    QTest::newRow("header claims 4 GiB") << mozLz4(session(), 0xFFFFFFFFLL);
    QTest::newRow("not mozlz4") << QByteArray("{\"windows\":[]}");
    QTest::newRow("magic only") << QByteArray("mozLz40", 8);
    QTest::newRow("empty") << QByteArray();
}

void tst_FirefoxSessionTabSource::badFiles()
{
    QFETCH(QByteArray, file);
    QVERIFY(!FirefoxSessionTabSource::decompressMozLz4(file));
    m_home->writeFile(u".mozilla/firefox/abc.default-release/sessionstore-backups/recovery.jsonlz4"_qs, file);
    QVERIFY(!FirefoxSessionTabSource({m_root}).run(CallsManager::myAppleScriptSafari, false));
}

QTEST_GUILESS_MAIN(tst_FirefoxSessionTabSource)
#include "tst_FirefoxSessionTabSource.moc"
