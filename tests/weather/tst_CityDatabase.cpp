// The offline city database over Debian's libgeonames: a position named by its nearest city, the city of a time
// zone, and the cities a typed text names, in English and in Spanish.
#include "weather/CityDatabase.h"

#include <QTest>

class tst_CityDatabase : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void naming_data();
    void naming();
    void timeZoneCity_data();
    void timeZoneCity();
    void search_data();
    void search();
    void namesInTheUsersLanguage();
    void sharedDatabaseIsReadOnce();

private:
    std::unique_ptr<CityDatabase> m_database;
};

void tst_CityDatabase::initTestCase()
{
    m_database = std::make_unique<CityDatabase>();
    QVERIFY2(m_database->size() > 20000, "libgeonames holds the towns of 15,000 people or more");
}

void tst_CityDatabase::naming_data()
{
    QTest::addColumn<QGeoCoordinate>("position");
    QTest::addColumn<QString>("city"); // empty: no city within reach
    QTest::addColumn<QString>("country");
    QTest::newRow("Santa Cruz de Tenerife")
        << QGeoCoordinate(28.4636, -16.2518) << u"Santa Cruz de Tenerife"_qs << u"Spain"_qs;
    QTest::newRow("Madrid, Puerta del Sol") << QGeoCoordinate(40.4168, -3.7038) << u"Madrid"_qs << u"Spain"_qs;
    QTest::newRow("at sea off Cádiz") << QGeoCoordinate(36.45, -6.45) << u"Cadiz"_qs << u"Spain"_qs;
    // West of the date line; the nearest city, 79 km away, lies east of it (longitude +179.4).
    QTest::newRow("by the date line") << QGeoCoordinate(-16.5, -179.9) << u"Labasa"_qs << u"Fiji"_qs;
    QTest::newRow("mid-Atlantic") << QGeoCoordinate(35.0, -30.0) << QString() << QString();
    QTest::newRow("no position") << QGeoCoordinate() << QString() << QString();
}

void tst_CityDatabase::naming()
{
    QFETCH(QGeoCoordinate, position);
    QFETCH(QString, city);
    QFETCH(QString, country);
    const std::optional<qsizetype> found = m_database->nearest(position);
    QCOMPARE(found.has_value(), !city.isEmpty());
    if (found) {
        QCOMPARE(m_database->at(*found).name, city);
        QCOMPARE(m_database->at(*found).country, country);
    }
}

void tst_CityDatabase::timeZoneCity_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("city");
    QTest::newRow("Europe/Madrid") << u"Europe/Madrid"_qs << u"Madrid"_qs;
    QTest::newRow("a zone named after no city") << u"Atlantic/Canary"_qs << u"Las Palmas de Gran Canaria"_qs;
    QTest::newRow("renamed since the database") << u"Europe/Kyiv"_qs << u"Kyiv"_qs;
    QTest::newRow("an old name, a link only") << u"Europe/Kiev"_qs << u"Kyiv"_qs;
    QTest::newRow("no place") << u"Etc/UTC"_qs << QString();
    QTest::newRow("no zone") << QString() << QString();
}

void tst_CityDatabase::timeZoneCity()
{
    QFETCH(QString, zone);
    QFETCH(QString, city);
    const std::optional<qsizetype> found = m_database->cityOfTimeZone(zone);
    QCOMPARE(found ? m_database->at(*found).name : QString(), city);
}

void tst_CityDatabase::search_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("home"); // the user's country
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("country");
    QTest::newRow("the biggest first") << u"mad"_qs << QString() << u"Madrid"_qs << u"Spain"_qs;
    // Two Cadiz: the Philippine one is the bigger, a user in Spain means the Spanish one.
    QTest::newRow("namesakes, the bigger") << u"CÁDIZ"_qs << QString() << u"Cadiz"_qs << u"Philippines"_qs;
    QTest::newRow("namesakes, at home") << u"cadiz"_qs << u"ES"_qs << u"Cadiz"_qs << u"Spain"_qs;
    // The whole name typed: a Santa Cruz before the far bigger Santa Cruz de la Sierra.
    QTest::newRow("the whole name first") << u"santa cruz"_qs << QString() << u"Santa Cruz"_qs << u"Philippines"_qs;
    QTest::newRow("a word of the name") << u"tenerife"_qs << QString() << u"Santa Cruz de Tenerife"_qs << u"Spain"_qs;
    QTest::newRow("narrowed by country") << u"santa cruz, bol"_qs << u"ES"_qs << u"Santa Cruz de la Sierra"_qs
                                         << u"Bolivia"_qs;
    QTest::newRow("narrowed by region") << u"san cristobal, canary"_qs << QString() << u"San Cristóbal de La Laguna"_qs
                                        << u"Spain"_qs;
    QTest::newRow("nothing") << u"xyzzyq"_qs << QString() << QString() << QString();
    QTest::newRow("blank") << u"  "_qs << QString() << QString() << QString();
}

void tst_CityDatabase::search()
{
    QFETCH(QString, text);
    QFETCH(QString, home);
    QFETCH(QString, first);
    QFETCH(QString, country);
    const QList<qsizetype> found = m_database->search(text, 8, home);
    QCOMPARE(found.isEmpty(), first.isEmpty());
    QVERIFY(found.size() <= 8);
    if (!found.isEmpty()) {
        QCOMPARE(m_database->at(found.first()).name, first);
        QCOMPARE(m_database->at(found.first()).country, country);
    }
}

void tst_CityDatabase::namesInTheUsersLanguage()
{
    // The names come in the process's language through libgeonames' catalogues; the English ones still match.
    const QByteArray saved = qgetenv("LANGUAGE");
    qputenv("LANGUAGE", "es");
    const CityDatabase spanish;
    qputenv("LANGUAGE", saved);
    for (const QString &typed : {u"londr"_qs, u"london"_qs}) {
        const QList<qsizetype> found = spanish.search(typed, 8, QString());
        QVERIFY2(!found.isEmpty(), qPrintable(typed));
        QCOMPARE(spanish.at(found.first()).name, u"Londres"_qs);
        QCOMPARE(spanish.at(found.first()).country, u"Reino Unido"_qs);
    }
    QCOMPARE(spanish.at(*spanish.nearest(QGeoCoordinate(36.45, -6.45))).name, u"Cádiz"_qs);
}

void tst_CityDatabase::sharedDatabaseIsReadOnce()
{
    QObject context;
    QList<const CityDatabase *> answers;
    for (int i = 0; i < 2; ++i) {
        CityDatabase::whenLoaded(&context, [&answers](const CityDatabase &database) { answers.append(&database); });
    }
    QTRY_COMPARE(answers.size(), 2);
    QCOMPARE(answers.at(0), answers.at(1));
    QCOMPARE(CityDatabase::loaded().get(), answers.at(0));
}

QTEST_GUILESS_MAIN(tst_CityDatabase)
#include "tst_CityDatabase.moc"
