#include "CallTypes.h"

#include <QUrl>

#include <array>

namespace {

struct CallTypeRow
{
    CallTypes type;
    const char16_t *raw;
    const char16_t *name;
    const char16_t *label;
    const char16_t *icon;
    QStringView prefix;
};

// One row per case, in declaration order; the irregular spellings are what users and stored data already know.
constexpr std::array<CallTypeRow, callTypesCount> rows{{
    {CallTypes::telephone, u"telephone", u"telephone", u"Telephone", u"phone.fill", u"tel://"},
    {CallTypes::facetime, u"facetime", u"facetime", u"Facetime", u"video.fill", u"facetime://"},
    {CallTypes::facetimeaudio, u"facetime-audio", u"facetimeaudio", u"Facetime Audio", u"waveform.circle.fill",
     u"facetime-audio://"},
    {CallTypes::messages, u"messages", u"messages", u"Message", u"message.fill", u"sms:"},
    {CallTypes::skype, u"skype", u"skype", u"Skype", u"icon_skype", u"skype://?chat"},
    {CallTypes::slack, u"slack", u"slack", u"Slack", u"minus.circle.fill", u"slack://"},
    {CallTypes::telegram, u"telegram", u"telegram", u"Telegtram", u"icon_telegram", u"telegtram://"},
    {CallTypes::mail, u"mail", u"mail", u"Mail", u"envelope.fill", u"mailto:"},
    {CallTypes::googleMeet, u"meet", u"googleMeet", u"Google Meet", u"icon_googlemeet", MeetingAddresses::googleMeet},
    {CallTypes::googleMeetNew, u"newMeet", u"googleMeetNew", u"Google Meet", u"icon_googlemeet",
     MeetingAddresses::googleMeetNew},
    {CallTypes::zoom, u"zoom", u"zoom", u"Zoom", u"icon_zoom", u""},
    {CallTypes::webex, u"webex", u"webex", u"Webex", u"icon_webex", u""},
    {CallTypes::jitsi, u"jitsi", u"jitsi", u"Jitsi", u"minus.circle.fill", u""},
    {CallTypes::notRecognized, u"not recognized", u"notRecognized", u"", u"minus.circle.fill", u""},
}};

const CallTypeRow &row(CallTypes type)
{
    return rows[static_cast<size_t>(tag(type))];
}

} // namespace

const std::array<CallTypes, callTypesCount> &allCallTypes()
{
    static const std::array<CallTypes, callTypesCount> all = [] {
        std::array<CallTypes, callTypesCount> result{};
        for (size_t i = 0; i < rows.size(); ++i) {
            result[i] = rows[i].type;
        }
        return result;
    }();
    return all;
}

QString rawValue(CallTypes type)
{
    return QString::fromUtf16(row(type).raw);
}

std::optional<CallTypes> callTypesFromRawValue(const QString &raw)
{
    for (const CallTypeRow &candidate : rows) {
        if (raw == QStringView(candidate.raw)) {
            return candidate.type;
        }
    }
    return std::nullopt;
}

QString caseName(CallTypes type)
{
    return QString::fromUtf16(row(type).name);
}

QString label(CallTypes type)
{
    return QString::fromUtf16(row(type).label);
}

QString icon(CallTypes type)
{
    return QString::fromUtf16(row(type).icon);
}

bool isAssetImage(const QString &iconName)
{
    return iconName.startsWith(u"icon_");
}

QString percentEncodedForQuery(const QString &text)
{
    // QUrl leaves the unreserved characters alone; the rest of the query-allowed set is excluded explicitly.
    return QString::fromLatin1(QUrl::toPercentEncoding(text, QByteArrayLiteral("!$&'()*+,/:;=?@")));
}

QString launchPrefixForTag(int typeTag)
{
    if (typeTag < 0 || typeTag >= 10) {
        return {};
    }
    return percentEncodedForQuery(rows[static_cast<size_t>(typeTag)].prefix.toString());
}

QString launchPrefix(CallTypes type)
{
    return launchPrefixForTag(tag(type));
}
