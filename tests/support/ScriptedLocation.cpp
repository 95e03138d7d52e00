#include "ScriptedLocation.h"

void ScriptedGeocoder::reverseGeocode(const QGeoCoordinate &position, QObject *context,
                                      std::function<void(const std::optional<QList<Placemark>> &)> done)
{
    asked.append(position);
    QMetaObject::invokeMethod(
        context, [done, answer = answer] { done(answer); }, Qt::QueuedConnection);
}

void ScriptedGeocoder::geocodePlace(const QString &name, QObject *context,
                                    std::function<void(const std::optional<QGeoCoordinate> &, const Placemark &)> done)
{
    places.append(name);
    QMetaObject::invokeMethod(
        context,
        [done] {
            done(QGeoCoordinate(40.4168, -3.7038), Placemark{u"Spain"_qs, u"Madrid"_qs});
        },
        Qt::QueuedConnection);
}
