// The quote service against a real HTTP server on 127.0.0.1, or, with no quote host, over fortune files indexed by
// the real strfile in a temporary folder; and the welcome screen's greeting and indicator.
#include "common/Trace.h"
#include "settings/DeploymentSettings.h"
#include "support/LoopbackHttpServer.h"
#include "support/TestHome.h"
#include "welcome/FortuneQuotes.h"
#include "welcome/RandomQuoteDataService.h"

#include <QNetworkAccessManager>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

namespace {

const QString shortSaying = u"Simplicity is prerequisite for reliability. — Edsger Dijkstra"_qs;
const QString wrappedSaying = u"A saying on two lines, joined into one."_qs;
const QString spanishSaying = u"Más vale tarde que nunca."_qs;

// A fortune file and its index, made by strfile (`flags`: "-x" marks the file rotated).
void writeFortunes(const TestHome &home, const QString &path, const QByteArray &entries, const QStringList &flags = {})
{
    const QString file = home.writeFile(path, entries);
    QVERIFY(!file.isEmpty());
    const QString strfile = QStandardPaths::findExecutable(u"strfile"_qs, {u"/usr/bin"_qs, u"/usr/sbin"_qs});
    QVERIFY2(!strfile.isEmpty(), "strfile (Debian's fortune-mod) makes the index");
    QProcess process;
    process.start(strfile, flags + QStringList{u"-s"_qs, file});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
}

// What Debian installs, in small: English sayings at the top, an offensive set in off/, a rotated file, Spanish ones
// in es/. Only the two short English sayings (and in Spanish the one) may ever be picked.
QString fortuneRoot(const TestHome &home)
{
    writeFortunes(home, u"fortunes/sayings"_qs,
                  (u"Simplicity is prerequisite for reliability.\n\t\t-- Edsger Dijkstra\n%\n"
                   u"A saying on two lines,\n   joined into one.\n%\n" +
                   QString(161, u'x') + u"\n%\nTwo paragraphs.\n\nAre not one.\n%\nOver\bstruck.\n%\n")
                      .toUtf8());
    writeFortunes(home, u"fortunes/rotated"_qs, "Gur ebgngrq bar.\n%\n", {u"-x"_qs});
    writeFortunes(home, u"fortunes/off/rude"_qs, "Never shown.\n%\nNor this.\n%\n");
    home.writeFile(u"fortunes/no-index"_qs, "Not indexed.\n%\n");
    writeFortunes(home, u"fortunes/es/dichos"_qs, (spanishSaying + u"\n%\n").toUtf8());
    return home.path() + u"/fortunes"_qs;
}

} // namespace

class tst_RandomQuoteDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void texts_data();
    void texts();
    void answers_data();
    void answers();
    void localQuotes_data();
    void localQuotes();
    void onlyShortSayingsArePicked();
};

void tst_RandomQuoteDataService::texts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const QString spanish = u"/randomquote/es_ES"_qs;
    const QString english = u"/randomquote/en_US"_qs;
    QTest::newRow("es-ES") << RandomQuoteDataService::quotePath(u"es-ES"_qs) << spanish;
    QTest::newRow("es-MX") << RandomQuoteDataService::quotePath(u"es-MX"_qs) << spanish;
    QTest::newRow("en") << RandomQuoteDataService::quotePath(u"en"_qs) << english;
    QTest::newRow("en-GB") << RandomQuoteDataService::quotePath(u"en-GB"_qs) << english;
    QTest::newRow("fr-FR") << RandomQuoteDataService::quotePath(u"fr-FR"_qs) << spanish;
    QTest::newRow("no language") << RandomQuoteDataService::quotePath(QString()) << spanish;
    QTest::newRow("en-es holds both") << RandomQuoteDataService::quotePath(u"en-es"_qs) << spanish;
    QTest::newRow("EN upper case") << RandomQuoteDataService::quotePath(u"EN-US"_qs) << spanish;
    // The greeting at each side of each change.
    QStringList greetings;
    for (int hour : {0, 4, 5, 11, 12, 17, 18, 21, 22}) {
        greetings.append(Welcome::greeting(hour).chopped(4));
    }
    QTest::newRow("greetings") << greetings.join(u',')
                               << u"Good night,Good night,Good morning,Good morning,Good afternoon,Good afternoon,"
                                  u"Good evening,Good evening,Good night"_qs;
    QTest::newRow("greeting's end") << Welcome::greeting(9).right(4) << u" !!!"_qs;
    QStringList wave;
    for (int tick = 0, count = 0; tick < 5; ++tick) {
        count = Welcome::nextIndicatorCount(count);
        wave.append(QString::number(count));
    }
    QTest::newRow("indicator wave") << wave.join(u',') << u"1,2,3,0,1"_qs;
}

void tst_RandomQuoteDataService::texts()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(text, expected);
}

void tst_RandomQuoteDataService::answers_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("quote");
    QTest::addColumn<QString>("logLine");
    QTest::newRow("a quote") << 200 << QByteArray(R"({"language":"en","text":"Simplicity is prerequisite."})")
                             << u"Simplicity is prerequisite."_qs << QString();
    QTest::newRow("extra fields") << 200
                                  << QByteArray(R"({"author":"Anon","language":"en","text":"Less is more.","id":7})")
                                  << u"Less is more."_qs << QString();
    QTest::newRow("404") << 404 << QByteArray("not here") << QString()
                         << u"The operation couldn’t be completed. (NSURLErrorDomain error -1011.)"_qs;
    QTest::newRow("invalid body") << 200 << QByteArray("{\"text\": \"unterminated") << QString()
                                  << u"The data couldn’t be read because it isn’t in the correct format."_qs;
    QTest::newRow("no text") << 200 << QByteArray(R"({"language":"en"})") << QString()
                             << u"The data couldn’t be read because it is missing."_qs;
    QTest::newRow("text not a string") << 200 << QByteArray(R"({"language":"en","text":42})") << QString()
                                       << u"The data couldn’t be read because it isn’t in the correct format."_qs;
    QTest::newRow("a list") << 200 << QByteArray(R"([{"language":"en","text":"x"}])") << QString()
                            << u"The data couldn’t be read because it isn’t in the correct format."_qs;
}

void tst_RandomQuoteDataService::answers()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, quote);
    QFETCH(QString, logLine);
    TestHome home;
    LoopbackHttpServer server;
    QVERIFY(server.listen());
    server.setResponse(u"/randomquote/en_US"_qs, status, "application/json", body);
    const DeploymentSettings deployment(
        home.writeFile(u"Info.ini"_qs, (u"[General]\nQUOTE_SERVICE_BASE_URL=" + server.baseUrl() + u'\n').toUtf8()));
    QNetworkAccessManager network;
    Trace::Capture capture;
    RandomQuoteDataService service(network, deployment, u"en-GB"_qs);
    QVERIFY(service.isFetching());
    QTRY_VERIFY(!service.isFetching());
    QCOMPARE(server.requests(), QStringList{u"GET /randomquote/en_US"_qs});
    QCOMPARE(service.randomQuote(), quote);
    QCOMPARE(capture.lines(), logLine.isEmpty() ? QStringList() : QStringList{logLine});
}

void tst_RandomQuoteDataService::localQuotes_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<bool>("installed");
    QTest::addColumn<QStringList>("possible"); // empty: no saying, and none awaited
    QTest::newRow("English") << u"en-GB"_qs << true << QStringList{shortSaying, wrappedSaying};
    QTest::newRow("Spanish") << u"es-MX"_qs << true << QStringList{spanishSaying};
    QTest::newRow("French reads Spanish") << u"fr-FR"_qs << true << QStringList{spanishSaying};
    QTest::newRow("no fortune files") << u"en"_qs << false << QStringList();
}

void tst_RandomQuoteDataService::localQuotes()
{
    QFETCH(QString, language);
    QFETCH(bool, installed);
    QFETCH(QStringList, possible);
    TestHome home;
    const QString root = installed ? fortuneRoot(home) : home.path() + u"/nothing"_qs;
    const DeploymentSettings deployment(home.writeFile(u"Info.ini"_qs, "[General]\nWEATHER_API_KEY=k\n"));
    QNetworkAccessManager network;
    Trace::Capture capture;
    RandomQuoteDataService service(network, deployment, language, nullptr, root);
    QVERIFY(!service.isFetching());
    QVERIFY(service.awaitsQuote());
    QTRY_VERIFY(!service.awaitsQuote());
    QCOMPARE(service.randomQuote().isEmpty(), possible.isEmpty());
    QVERIFY2(possible.isEmpty() || possible.contains(service.randomQuote()), qPrintable(service.randomQuote()));
    QCOMPARE(capture.lines(), QStringList());
}

void tst_RandomQuoteDataService::onlyShortSayingsArePicked()
{
    TestHome home;
    const QString folder = FortuneQuotes::folderFor(fortuneRoot(home), false);
    QRandomGenerator random(28);
    QSet<QString> picked;
    for (int i = 0; i < 200; ++i) {
        picked.insert(FortuneQuotes::pick(folder, random).value_or(u"(none)"_qs));
    }
    QCOMPARE(picked, (QSet<QString>{shortSaying, wrappedSaying}));
}

QTEST_GUILESS_MAIN(tst_RandomQuoteDataService)
#include "tst_RandomQuoteDataService.moc"
