#include "WeatherInfo.h"

#include "common/StrictJson.h"

#include <QJsonArray>

namespace {

QList<Weather> decodeConditions(StrictJson &json, const QJsonObject &parent)
{
    QList<Weather> conditions;
    for (const QJsonValue &value : json.array(parent, QStringLiteral("weather"))) {
        const QJsonObject object = json.element(value);
        conditions.append({json.integer(object, QStringLiteral("id")), json.text(object, QStringLiteral("main")),
                           json.text(object, QStringLiteral("description")),
                           json.text(object, QStringLiteral("icon"))});
    }
    return conditions;
}

Current decodeCurrent(StrictJson &json, const QJsonObject &object)
{
    Current current;
    current.dt = json.integer(object, QStringLiteral("dt"));
    current.sunrise = json.optionalInteger(object, QStringLiteral("sunrise"));
    current.sunset = json.optionalInteger(object, QStringLiteral("sunset"));
    current.temp = json.number(object, QStringLiteral("temp"));
    current.feelsLike = json.number(object, QStringLiteral("feels_like"));
    current.pressure = json.integer(object, QStringLiteral("pressure"));
    current.humidity = json.integer(object, QStringLiteral("humidity"));
    current.dewPoint = json.number(object, QStringLiteral("dew_point"));
    current.uvi = json.number(object, QStringLiteral("uvi"));
    current.clouds = json.integer(object, QStringLiteral("clouds"));
    current.visibility = json.integer(object, QStringLiteral("visibility"));
    current.windSpeed = json.number(object, QStringLiteral("wind_speed"));
    current.weather = decodeConditions(json, object);
    if (const std::optional<QJsonObject> rain = json.optionalObject(object, QStringLiteral("rain"))) {
        current.rain = Rain{json.number(*rain, QStringLiteral("1h"))};
    }
    return current;
}

Daily decodeDaily(StrictJson &json, const QJsonObject &object)
{
    Daily daily;
    daily.dt = json.integer(object, QStringLiteral("dt"));
    daily.sunrise = json.integer(object, QStringLiteral("sunrise"));
    daily.sunset = json.integer(object, QStringLiteral("sunset"));
    daily.moonrise = json.integer(object, QStringLiteral("moonrise"));
    daily.moonset = json.integer(object, QStringLiteral("moonset"));
    daily.moonPhase = json.number(object, QStringLiteral("moon_phase"));
    const QJsonObject temp = json.object(object, QStringLiteral("temp"));
    daily.temp = {json.number(temp, QStringLiteral("day")), json.number(temp, QStringLiteral("min")),
                  json.number(temp, QStringLiteral("max")), json.number(temp, QStringLiteral("night")),
                  json.number(temp, QStringLiteral("eve")), json.number(temp, QStringLiteral("morn"))};
    const QJsonObject feelsLike = json.object(object, QStringLiteral("feels_like"));
    daily.feelsLike = {json.number(feelsLike, QStringLiteral("day")), json.number(feelsLike, QStringLiteral("night")),
                       json.number(feelsLike, QStringLiteral("eve")), json.number(feelsLike, QStringLiteral("morn"))};
    daily.pressure = json.integer(object, QStringLiteral("pressure"));
    daily.humidity = json.integer(object, QStringLiteral("humidity"));
    daily.dewPoint = json.number(object, QStringLiteral("dew_point"));
    daily.windSpeed = json.number(object, QStringLiteral("wind_speed"));
    daily.windDeg = json.integer(object, QStringLiteral("wind_deg"));
    daily.windGust = json.number(object, QStringLiteral("wind_gust"));
    daily.weather = decodeConditions(json, object);
    daily.clouds = json.integer(object, QStringLiteral("clouds"));
    daily.pop = json.number(object, QStringLiteral("pop"));
    daily.uvi = json.number(object, QStringLiteral("uvi"));
    daily.rain = json.optionalNumber(object, QStringLiteral("rain"));
    return daily;
}

QJsonArray encodeConditions(const QList<Weather> &conditions)
{
    QJsonArray array;
    for (const Weather &weather : conditions) {
        array.append(QJsonObject{{QStringLiteral("id"), weather.id},
                                 {QStringLiteral("main"), weather.main},
                                 {QStringLiteral("description"), weather.weatherDescription},
                                 {QStringLiteral("icon"), weather.icon}});
    }
    return array;
}

} // namespace

bool WeatherInfo::has(const QString &field, qsizetype day) const
{
    if (absent.contains(field)) {
        return false;
    }
    if (day < 0 || !field.startsWith(u"daily.")) {
        return true;
    }
    return !absent.contains(u"daily." + QString::number(day) + field.mid(5));
}

std::optional<WeatherInfo> WeatherInfo::decode(const QByteArray &json)
{
    StrictJson reader;
    const QJsonObject root = reader.document(json);
    WeatherInfo info;
    info.lat = reader.number(root, QStringLiteral("lat"));
    info.lon = reader.number(root, QStringLiteral("lon"));
    info.timezone = reader.text(root, QStringLiteral("timezone"));
    info.timezoneOffset = reader.integer(root, QStringLiteral("timezone_offset"));
    info.current = decodeCurrent(reader, reader.object(root, QStringLiteral("current")));
    for (const QJsonValue &value : reader.array(root, QStringLiteral("daily"))) {
        info.daily.append(decodeDaily(reader, reader.element(value)));
    }
    if (!reader.ok()) {
        return std::nullopt;
    }
    return info;
}

QJsonObject WeatherInfo::toJson() const
{
    QJsonObject currentObject{{QStringLiteral("dt"), current.dt},
                              {QStringLiteral("temp"), current.temp},
                              {QStringLiteral("feels_like"), current.feelsLike},
                              {QStringLiteral("pressure"), current.pressure},
                              {QStringLiteral("humidity"), current.humidity},
                              {QStringLiteral("dew_point"), current.dewPoint},
                              {QStringLiteral("uvi"), current.uvi},
                              {QStringLiteral("clouds"), current.clouds},
                              {QStringLiteral("visibility"), current.visibility},
                              {QStringLiteral("wind_speed"), current.windSpeed},
                              {QStringLiteral("weather"), encodeConditions(current.weather)}};
    if (current.sunrise) {
        currentObject.insert(QStringLiteral("sunrise"), *current.sunrise);
    }
    if (current.sunset) {
        currentObject.insert(QStringLiteral("sunset"), *current.sunset);
    }
    if (current.rain) {
        currentObject.insert(QStringLiteral("rain"), QJsonObject{{QStringLiteral("1h"), current.rain->the1H}});
    }
    QJsonArray dailyArray;
    for (const Daily &day : daily) {
        QJsonObject object{{QStringLiteral("dt"), day.dt},
                           {QStringLiteral("sunrise"), day.sunrise},
                           {QStringLiteral("sunset"), day.sunset},
                           {QStringLiteral("moonrise"), day.moonrise},
                           {QStringLiteral("moonset"), day.moonset},
                           {QStringLiteral("moon_phase"), day.moonPhase},
                           {QStringLiteral("temp"), QJsonObject{{QStringLiteral("day"), day.temp.day},
                                                                {QStringLiteral("min"), day.temp.min},
                                                                {QStringLiteral("max"), day.temp.max},
                                                                {QStringLiteral("night"), day.temp.night},
                                                                {QStringLiteral("eve"), day.temp.eve},
                                                                {QStringLiteral("morn"), day.temp.morn}}},
                           {QStringLiteral("feels_like"), QJsonObject{{QStringLiteral("day"), day.feelsLike.day},
                                                                      {QStringLiteral("night"), day.feelsLike.night},
                                                                      {QStringLiteral("eve"), day.feelsLike.eve},
                                                                      {QStringLiteral("morn"), day.feelsLike.morn}}},
                           {QStringLiteral("pressure"), day.pressure},
                           {QStringLiteral("humidity"), day.humidity},
                           {QStringLiteral("dew_point"), day.dewPoint},
                           {QStringLiteral("wind_speed"), day.windSpeed},
                           {QStringLiteral("wind_deg"), day.windDeg},
                           {QStringLiteral("wind_gust"), day.windGust},
                           {QStringLiteral("weather"), encodeConditions(day.weather)},
                           {QStringLiteral("clouds"), day.clouds},
                           {QStringLiteral("pop"), day.pop},
                           {QStringLiteral("uvi"), day.uvi}};
        if (day.rain) {
            object.insert(QStringLiteral("rain"), *day.rain);
        }
        dailyArray.append(object);
    }
    return {{QStringLiteral("lat"), lat},
            {QStringLiteral("lon"), lon},
            {QStringLiteral("timezone"), timezone},
            {QStringLiteral("timezone_offset"), timezoneOffset},
            {QStringLiteral("current"), currentObject},
            {QStringLiteral("daily"), dailyArray}};
}
