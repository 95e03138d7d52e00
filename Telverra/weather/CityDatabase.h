#pragma once

#include <QGeoCoordinate>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QObject;

/// A city of the offline database.
struct City
{
    /// In the user's language where the database has it, else in English.
    QString name;
    QString region;
    QString country;
    /// ISO 3166 ("ES").
    QString countryCode;
    /// The IANA time zone ("Europe/Madrid").
    QString timeZone;
    double latitude = 0;
    double longitude = 0;
    quint32 population = 0;

    QGeoCoordinate coordinate() const { return {latitude, longitude}; }
};

/// The world's cities, offline: Debian's libgeonames (GeoNames' towns of 15,000 people or more, 24,361 of them, with
/// their names in the user's language through its message catalogues). Names a position by its nearest city, finds
/// cities as their name is typed, and guesses the city of a time zone. Immutable once read.
// libgeonames rather than libgweather: six times the cities (a position's nearest is near), each with population and
// time zone, and no HTTP stack (libgweather pulls libsoup).
class CityDatabase
{
public:
    /// Every city of libgeonames, named in the process's language (tens of milliseconds: not on the GUI thread).
    CityDatabase();
    /// A database of the given cities (`englishNames` parallel to them, or empty).
    explicit CityDatabase(QList<City> cities, const QStringList &englishNames = {});
    ~CityDatabase();

    /// The process's database, read once on a worker thread from the first call on; `ready` runs on `context`'s
    /// thread once it is read (at once, when it already is), unless `context` is gone by then.
    static void whenLoaded(QObject *context, std::function<void(const CityDatabase &)> ready);
    /// The process's database when it has been read, else null.
    static std::shared_ptr<const CityDatabase> loaded();

    qsizetype size() const { return m_cities.size(); }
    const City &at(qsizetype index) const { return m_cities.at(index); }

    /// The city nearest to the position, measured on the globe (across the date line too), when one is within
    /// `maxKilometres`.
    std::optional<qsizetype> nearest(const QGeoCoordinate &position, double maxKilometres = 150) const;
    /// The cities a typed text names, best first: a name (in the user's language or in English, case and accents
    /// aside) that is the text before the first comma, then one that begins with it, then one with a word that
    /// does; among equals, the user's country's (ISO 3166 code; by default systemCountryCode()) first, then the
    /// bigger; namesakes of one region once. After a comma, the text narrows to a country or region that begins with
    /// it ("santa cruz, bol").
    QList<qsizetype> search(const QString &text, qsizetype limit = 8,
                            const QString &homeCountryCode = systemCountryCode()) const;
    /// The country of the system's time zone ("ES" for Europe/Madrid), else of its locale, else nothing.
    static QString systemCountryCode();
    /// The city of a time zone: the nearest to the place the time zone database gives for it (zone1970.tab,
    /// zone.tab in `zoneInfoFolder`), else the biggest city in the zone; nothing for a zone of no place ("Etc/UTC").
    std::optional<qsizetype>
    cityOfTimeZone(const QString &zoneId, const QString &zoneInfoFolder = QStringLiteral("/usr/share/zoneinfo")) const;

private:
    void index(const QStringList &englishNames);

    QList<City> m_cities;
    // Folded (lower case, no accents) names, and the English one where it differs, for the search.
    QStringList m_keys;
    QStringList m_englishKeys;
    QStringList m_placeKeys; // "country region", folded
};
