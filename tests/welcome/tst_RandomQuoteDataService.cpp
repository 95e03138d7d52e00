// The quote service against a real HTTP server on 127.0.0.1, and the welcome screen's greeting and indicator.
#include "common/Trace.h"
#include "settings/DeploymentSettings.h"
#include "support/LoopbackHttpServer.h"
#include "support/TestHome.h"
#include "welcome/RandomQuoteDataService.h"

#include <QNetworkAccessManager>
#include <QSignalSpy>
#include <QTest>

class tst_RandomQuoteDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void quotePath_data();
    void quotePath();
    void answers_data();
    void answers();
    void noServiceAddress();
    void greeting_data();
    void greeting();
    void indicatorWave();
};

void tst_RandomQuoteDataService::quotePath_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("path");
    const QString spanish = u"/randomquote/es_ES"_qs;
    const QString english = u"/randomquote/en_US"_qs;
    QTest::newRow("es-ES") << u"es-ES"_qs << spanish;
    QTest::newRow("es-MX") << u"es-MX"_qs << spanish;
    QTest::newRow("en") << u"en"_qs << english;
    QTest::newRow("en-GB") << u"en-GB"_qs << english;
    QTest::newRow("fr-FR") << u"fr-FR"_qs << spanish;
    QTest::newRow("no language") << QString() << spanish;
    QTest::newRow("en-es holds both") << u"en-es"_qs << spanish;
    QTest::newRow("EN upper case") << u"EN-US"_qs << spanish;
}

void tst_RandomQuoteDataService::quotePath()
{
    QFETCH(QString, language);
    QFETCH(QString, path);
    QCOMPARE(RandomQuoteDataService::quotePath(language), path);
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

void tst_RandomQuoteDataService::noServiceAddress()
{
    TestHome home;
    const DeploymentSettings deployment(home.writeFile(u"Info.ini"_qs, "[General]\nWEATHER_API_KEY=k\n"));
    QNetworkAccessManager network;
    Trace::Capture capture;
    RandomQuoteDataService service(network, deployment, u"es-ES"_qs);
    QVERIFY(!service.isFetching());
    QCOMPARE(capture.lines(), QStringList());
}

void tst_RandomQuoteDataService::greeting_data()
{
    QTest::addColumn<int>("hour");
    QTest::addColumn<QString>("text");
    QTest::newRow("04") << 4 << u"Good night !!!"_qs;
    QTest::newRow("05") << 5 << u"Good morning !!!"_qs;
    QTest::newRow("11") << 11 << u"Good morning !!!"_qs;
    QTest::newRow("12") << 12 << u"Good afternoon !!!"_qs;
    QTest::newRow("17") << 17 << u"Good afternoon !!!"_qs;
    QTest::newRow("18") << 18 << u"Good evening !!!"_qs;
    QTest::newRow("21") << 21 << u"Good evening !!!"_qs;
    QTest::newRow("22") << 22 << u"Good night !!!"_qs;
    QTest::newRow("00") << 0 << u"Good night !!!"_qs;
}

void tst_RandomQuoteDataService::greeting()
{
    QFETCH(int, hour);
    QFETCH(QString, text);
    QCOMPARE(Welcome::greeting(hour), text);
}

void tst_RandomQuoteDataService::indicatorWave()
{
    int count = 0;
    QList<int> steps;
    for (int tick = 0; tick < 5; ++tick) {
        count = Welcome::nextIndicatorCount(count);
        steps.append(count);
    }
    QCOMPARE(steps, (QList<int>{1, 2, 3, 0, 1}));
}

QTEST_GUILESS_MAIN(tst_RandomQuoteDataService)
#include "tst_RandomQuoteDataService.moc"
