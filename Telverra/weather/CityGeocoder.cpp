#include "CityGeocoder.h"

#include "weather/CityDatabase.h"

namespace {

void answerWithCity(const CityDatabase &database, const std::optional<qsizetype> &index,
                    const Geocoder::PlaceAnswer &done)
{
    if (!index) {
        done(std::nullopt, {});
        return;
    }
    const City &city = database.at(*index);
    done(city.coordinate(), Placemark{city.country, city.name});
}

} // namespace

void CityGeocoder::reverseGeocode(const QGeoCoordinate &position, QObject *context,
                                  std::function<void(const std::optional<QList<Placemark>> &)> done)
{
    CityDatabase::whenLoaded(context, [position, done = std::move(done)](const CityDatabase &database) {
        const std::optional<qsizetype> index = database.nearest(position);
        done(QList<Placemark>{index ? Placemark{database.at(*index).country, database.at(*index).name} : Placemark{}});
    });
}

void CityGeocoder::geocodePlace(const QString &name, QObject *context, PlaceAnswer done)
{
    CityDatabase::whenLoaded(context, [name, done = std::move(done)](const CityDatabase &database) {
        const QList<qsizetype> found = database.search(name, 1);
        answerWithCity(database, found.isEmpty() ? std::nullopt : std::optional<qsizetype>(found.first()), done);
    });
}

void CityGeocoder::placeOfTimeZone(const QString &zoneId, QObject *context, PlaceAnswer done)
{
    CityDatabase::whenLoaded(context, [zoneId, done = std::move(done)](const CityDatabase &database) {
        answerWithCity(database, database.cityOfTimeZone(zoneId), done);
    });
}
