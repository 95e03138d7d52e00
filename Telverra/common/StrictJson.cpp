#include "StrictJson.h"

#include <QJsonDocument>

#include <cmath>

QJsonObject StrictJson::document(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        fail(Failure::wrongFormat);
        return {};
    }
    return document.object();
}

void StrictJson::fail(Failure failure)
{
    if (m_failure == Failure::none) {
        m_failure = failure;
    }
}

QString StrictJson::failureText() const
{
    switch (m_failure) {
    case Failure::none:
        return {};
    case Failure::missing:
        return QStringLiteral("The data couldn’t be read because it is missing.");
    case Failure::wrongFormat:
        break;
    }
    return QStringLiteral("The data couldn’t be read because it isn’t in the correct format.");
}

std::optional<QJsonValue> StrictJson::lookUp(const QJsonObject &object, const QString &key, bool required)
{
    const QJsonValue value = object.value(key);
    if (value.isUndefined() || value.isNull()) {
        if (required) {
            fail(Failure::missing);
        }
        return std::nullopt;
    }
    return value;
}

std::optional<qint64> StrictJson::toInteger(const QJsonValue &value)
{
    const double number = value.toDouble();
    // 2^63 is the first double outside a signed 64-bit integer.
    if (!value.isDouble() || !std::isfinite(number) || std::trunc(number) != number || std::fabs(number) >= 0x1p63) {
        fail(Failure::wrongFormat);
        return std::nullopt;
    }
    return value.toInteger(static_cast<qint64>(number));
}

std::optional<double> StrictJson::toNumber(const QJsonValue &value)
{
    if (!value.isDouble()) {
        fail(Failure::wrongFormat);
        return std::nullopt;
    }
    return value.toDouble();
}

qint64 StrictJson::integer(const QJsonObject &object, const QString &key)
{
    const std::optional<QJsonValue> value = lookUp(object, key, true);
    return value ? toInteger(*value).value_or(0) : 0;
}

std::optional<qint64> StrictJson::optionalInteger(const QJsonObject &object, const QString &key)
{
    const std::optional<QJsonValue> value = lookUp(object, key, false);
    return value ? toInteger(*value) : std::nullopt;
}

double StrictJson::number(const QJsonObject &object, const QString &key)
{
    const std::optional<QJsonValue> value = lookUp(object, key, true);
    return value ? toNumber(*value).value_or(0) : 0;
}

std::optional<double> StrictJson::optionalNumber(const QJsonObject &object, const QString &key)
{
    const std::optional<QJsonValue> value = lookUp(object, key, false);
    return value ? toNumber(*value) : std::nullopt;
}

QString StrictJson::text(const QJsonObject &object, const QString &key)
{
    const std::optional<QJsonValue> value = lookUp(object, key, true);
    if (value && !value->isString()) {
        fail(Failure::wrongFormat);
    }
    return value ? value->toString() : QString();
}

QJsonObject StrictJson::object(const QJsonObject &object, const QString &key)
{
    if (!lookUp(object, key, true)) {
        return {};
    }
    return optionalObject(object, key).value_or(QJsonObject());
}

std::optional<QJsonObject> StrictJson::optionalObject(const QJsonObject &object, const QString &key)
{
    const std::optional<QJsonValue> value = lookUp(object, key, false);
    if (!value) {
        return std::nullopt;
    }
    if (!value->isObject()) {
        fail(Failure::wrongFormat);
        return std::nullopt;
    }
    return value->toObject();
}

QJsonArray StrictJson::array(const QJsonObject &object, const QString &key)
{
    const std::optional<QJsonValue> value = lookUp(object, key, true);
    if (value && !value->isArray()) {
        fail(Failure::wrongFormat);
    }
    return value ? value->toArray() : QJsonArray();
}

QJsonObject StrictJson::element(const QJsonValue &value)
{
    if (!value.isObject()) {
        fail(Failure::wrongFormat);
    }
    return value.toObject();
}
