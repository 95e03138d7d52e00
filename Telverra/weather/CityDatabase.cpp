// GLib's headers name struct members "signals", which Qt's keywords make a macro: they come before any Qt header.
#include <geonames.h>

#include "CityDatabase.h"

#include "common/TextFolding.h"
#include "common/ThreadPriority.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QLocale>
#include <QMutex>
#include <QObject>
#include <QPointer>
#include <QRegularExpression>
#include <QThreadPool>
#include <QTimeZone>
#include <QtConcurrent>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

QString folded(const QString &text)
{
    return foldDiacritics(text).toLower();
}

QString fromUtf8(const char *text)
{
    return text ? QString::fromUtf8(text) : QString();
}

// Kilometres between two positions on a sphere of the Earth's mean radius (haversine).
double kilometres(double lat1, double lon1, double lat2, double lon2)
{
    constexpr double toRadians = std::numbers::pi / 180.0;
    const double dLat = (lat2 - lat1) * toRadians;
    const double dLon = (lon2 - lon1) * toRadians;
    const double h = std::sin(dLat / 2) * std::sin(dLat / 2) +
                     std::cos(lat1 * toRadians) * std::cos(lat2 * toRadians) * std::sin(dLon / 2) * std::sin(dLon / 2);
    return 2 * 6371.0 * std::asin(std::sqrt(std::min(1.0, h)));
}

// "+4024-00341" (±DDMM±DDDMM, or with seconds) as a position.
std::optional<QGeoCoordinate> zoneTabPosition(const QString &text)
{
    const qsizetype split = text.indexOf(QRegularExpression(QStringLiteral("[+-]")), 1);
    if (split < 0) {
        return std::nullopt;
    }
    auto read = [](QStringView part, int degreeDigits) -> std::optional<double> {
        const int sign = part.startsWith(u'-') ? -1 : 1;
        part = part.mid(1);
        if (part.size() != degreeDigits + 2 && part.size() != degreeDigits + 4) {
            return std::nullopt;
        }
        bool ok = true;
        double value = part.left(degreeDigits).toInt(&ok);
        value += part.mid(degreeDigits, 2).toInt(&ok) / 60.0;
        if (part.size() == degreeDigits + 4) {
            value += part.mid(degreeDigits + 2, 2).toInt(&ok) / 3600.0;
        }
        return ok ? std::optional<double>(sign * value) : std::nullopt;
    };
    const std::optional<double> lat = read(QStringView(text).left(split), 2);
    const std::optional<double> lon = read(QStringView(text).mid(split), 3);
    if (!lat || !lon) {
        return std::nullopt;
    }
    return QGeoCoordinate(*lat, *lon);
}

// Where the time zone database places a zone.
std::optional<QGeoCoordinate> zonePosition(const QString &zoneId, const QString &folder)
{
    for (const char *name : {"zone1970.tab", "zone.tab"}) {
        QFile file(folder + u'/' + QLatin1StringView(name));
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            continue;
        }
        while (!file.atEnd()) {
            const QStringList fields = QString::fromUtf8(file.readLine()).split(u'\t');
            if (fields.size() >= 3 && !fields.at(0).startsWith(u'#') && fields.at(2).trimmed() == zoneId) {
                return zoneTabPosition(fields.at(1));
            }
        }
    }
    return std::nullopt;
}

struct Shared
{
    QMutex mutex;
    std::shared_ptr<const CityDatabase> database;
    bool loading = false;
    // Who waits for the database to be read, each on its context's thread.
    QList<std::function<void(const std::shared_ptr<const CityDatabase> &)>> waiting;
};

Shared &shared()
{
    static Shared instance;
    return instance;
}

} // namespace

CityDatabase::CityDatabase()
{
    QHash<QString, QString> interned; // regions and countries repeat: one copy each
    auto intern = [&interned](QString text) { return *interned.insert(text, text); };
    const int count = geonames_get_n_cities();
    m_cities.reserve(count);
    QStringList englishNames;
    englishNames.reserve(count);
    for (int i = 0; i < count; ++i) {
        GeonamesCity *city = geonames_get_city(i);
        if (!city) {
            continue;
        }
        m_cities.append({fromUtf8(geonames_city_get_name(city)), intern(fromUtf8(geonames_city_get_state(city))),
                         intern(fromUtf8(geonames_city_get_country(city))),
                         intern(fromUtf8(geonames_city_get_country_code(city))),
                         intern(fromUtf8(geonames_city_get_timezone(city))), geonames_city_get_latitude(city),
                         geonames_city_get_longitude(city), geonames_city_get_population(city)});
        // The getters translate; the record holds the English name second ("(sssssssudd)": id, name, …).
        QString english;
        if (qstrcmp(g_variant_get_type_string(city), "(sssssssudd)") == 0) {
            GVariant *name = g_variant_get_child_value(city, 1);
            english = fromUtf8(g_variant_get_string(name, nullptr));
            g_variant_unref(name);
        }
        englishNames.append(english);
        geonames_city_free(city);
    }
    index(englishNames);
}

CityDatabase::CityDatabase(QList<City> cities, const QStringList &englishNames)
    : m_cities(std::move(cities))
{
    index(englishNames);
}

CityDatabase::~CityDatabase() = default;

void CityDatabase::index(const QStringList &englishNames)
{
    m_keys.reserve(m_cities.size());
    m_englishKeys.reserve(m_cities.size());
    m_placeKeys.reserve(m_cities.size());
    for (qsizetype i = 0; i < m_cities.size(); ++i) {
        const City &city = m_cities.at(i);
        m_keys.append(folded(city.name));
        const QString english = folded(englishNames.value(i));
        m_englishKeys.append(english == m_keys.last() ? QString() : english);
        m_placeKeys.append(folded(city.country + u' ' + city.region));
    }
}

void CityDatabase::whenLoaded(QObject *context, std::function<void(const CityDatabase &)> ready)
{
    // Always answered through the event loop, so that a caller never runs its own callback from within itself.
    QPointer<QObject> guard(context);
    auto answer = [guard, ready = std::move(ready)](const std::shared_ptr<const CityDatabase> &database) {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [guard, ready, database] {
                if (guard) {
                    ready(*database);
                }
            },
            Qt::QueuedConnection);
    };
    Shared &instance = shared();
    QMutexLocker lock(&instance.mutex);
    if (instance.database) {
        answer(instance.database);
        return;
    }
    instance.waiting.append(std::move(answer));
    if (instance.loading) {
        return;
    }
    instance.loading = true;
    // On a thread of its own at the lowest priority: nobody waits for it while the window starts.
    static QThreadPool reader;
    reader.setMaxThreadCount(1);
    (void)QtConcurrent::run(&reader, [] {
        ThreadPriority::raiseNiceness(ThreadPriority::background);
        auto database = std::make_shared<const CityDatabase>();
        QMutexLocker done(&shared().mutex);
        shared().database = database;
        const auto waiting = std::exchange(shared().waiting, {});
        done.unlock();
        for (const auto &answerOne : waiting) {
            answerOne(database);
        }
    });
}

std::shared_ptr<const CityDatabase> CityDatabase::loaded()
{
    QMutexLocker lock(&shared().mutex);
    return shared().database;
}

std::optional<qsizetype> CityDatabase::nearest(const QGeoCoordinate &position, double maxKilometres) const
{
    if (!position.isValid()) {
        return std::nullopt;
    }
    std::optional<qsizetype> best;
    double bestDistance = maxKilometres;
    for (qsizetype i = 0; i < m_cities.size(); ++i) {
        const City &city = m_cities.at(i);
        // A degree of latitude is 111 km: most cities are ruled out without the trigonometry.
        if (std::abs(city.latitude - position.latitude()) * 111.0 > bestDistance) {
            continue;
        }
        const double distance = kilometres(position.latitude(), position.longitude(), city.latitude, city.longitude);
        if (distance <= bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return best;
}

QString CityDatabase::systemCountryCode()
{
    // Where the clock is set for says more about where the user is than the language does.
    QLocale::Territory territory = QTimeZone::systemTimeZone().territory();
    if (territory == QLocale::AnyTerritory) {
        territory = QLocale::system().territory();
    }
    return territory == QLocale::AnyTerritory ? QString() : QLocale::territoryToCode(territory);
}

QList<qsizetype> CityDatabase::search(const QString &text, qsizetype limit, const QString &homeCountryCode) const
{
    const qsizetype comma = text.indexOf(u',');
    const QString name = folded(text.left(comma < 0 ? text.size() : comma).simplified());
    const QString place = comma < 0 ? QString() : folded(text.mid(comma + 1).simplified());
    if (name.isEmpty()) {
        return {};
    }
    const QString word = u' ' + name;
    const QString placeWord = u' ' + place;
    auto matches = [&](const QString &key) -> int {
        if (key.startsWith(name)) {
            return key.size() == name.size() ? 3 : 2;
        }
        return key.contains(word) ? 1 : 0;
    };
    struct Found
    {
        int rank;
        bool home;
        quint32 population;
        qsizetype index;
    };
    QList<Found> found;
    for (qsizetype i = 0; i < m_cities.size(); ++i) {
        const int rank = std::max(matches(m_keys.at(i)), matches(m_englishKeys.at(i)));
        if (rank == 0) {
            continue;
        }
        if (!place.isEmpty() && !m_placeKeys.at(i).startsWith(place) && !m_placeKeys.at(i).contains(placeWord)) {
            continue;
        }
        const City &city = m_cities.at(i);
        found.append({rank, !homeCountryCode.isEmpty() && city.countryCode == homeCountryCode, city.population, i});
    }
    std::sort(found.begin(), found.end(), [](const Found &a, const Found &b) {
        if (a.rank != b.rank) {
            return a.rank > b.rank;
        }
        return a.home != b.home ? a.home : a.population > b.population;
    });
    QList<qsizetype> result;
    for (const Found &candidate : std::as_const(found)) {
        if (result.size() == limit) {
            break;
        }
        // Namesakes in one region cannot be told apart in the list: the bigger stands for them.
        const City &city = m_cities.at(candidate.index);
        const bool seen = std::any_of(result.begin(), result.end(), [this, &city](qsizetype shown) {
            const City &other = m_cities.at(shown);
            return other.name == city.name && other.region == city.region && other.country == city.country;
        });
        if (!seen) {
            result.append(candidate.index);
        }
    }
    return result;
}

std::optional<qsizetype> CityDatabase::cityOfTimeZone(const QString &zoneId, const QString &zoneInfoFolder) const
{
    if (const std::optional<QGeoCoordinate> position = zonePosition(zoneId, zoneInfoFolder)) {
        if (const std::optional<qsizetype> city = nearest(*position, 100)) {
            return city;
        }
    }
    // A zone the tables do not place (an old name kept as a link, "Europe/Kiev"): its biggest city.
    std::optional<qsizetype> biggest;
    for (qsizetype i = 0; i < m_cities.size(); ++i) {
        if (m_cities.at(i).timeZone == zoneId && (!biggest || m_cities.at(i).population > at(*biggest).population)) {
            biggest = i;
        }
    }
    return biggest;
}
