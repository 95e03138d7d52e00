#include "CallTypes.h"

#include <QCoreApplication>
#include <QUrl>

#include <array>

namespace {

struct CallTypeRow
{
    CallTypes type;
    const char16_t *raw;
    const char16_t *name;
    const char *label; // English; shown translated
    const char16_t *icon;
    QStringView prefix;
};

// One row per case, in declaration order; the irregular spellings are what users and stored data already know.
constexpr std::array<CallTypeRow, callTypesCount> rows{{
    {CallTypes::telephone, u"telephone", u"telephone", QT_TRANSLATE_NOOP("CallTypes", "Telephone"), u"phone.fill",
     u"tel://"},
    {CallTypes::facetime, u"facetime", u"facetime", QT_TRANSLATE_NOOP("CallTypes", "Facetime"), u"video.fill",
     u"facetime://"},
    {CallTypes::facetimeaudio, u"facetime-audio", u"facetimeaudio", QT_TRANSLATE_NOOP("CallTypes", "Facetime Audio"),
     u"waveform.circle.fill", u"facetime-audio://"},
    {CallTypes::messages, u"messages", u"messages", QT_TRANSLATE_NOOP("CallTypes", "Message"), u"message.fill",
     u"sms:"},
    {CallTypes::skype, u"skype", u"skype", QT_TRANSLATE_NOOP("CallTypes", "Skype"), u"icon_skype", u"skype://?chat"},
    {CallTypes::slack, u"slack", u"slack", QT_TRANSLATE_NOOP("CallTypes", "Slack"), u"minus.circle.fill", u"slack://"},
    {CallTypes::telegram, u"telegram", u"telegram", QT_TRANSLATE_NOOP("CallTypes", "Telegtram"), u"icon_telegram",
     u"telegtram://"},
    {CallTypes::mail, u"mail", u"mail", QT_TRANSLATE_NOOP("CallTypes", "Mail"), u"envelope.fill", u"mailto:"},
    {CallTypes::googleMeet, u"meet", u"googleMeet", QT_TRANSLATE_NOOP("CallTypes", "Google Meet"), u"icon_googlemeet",
     MeetingAddresses::googleMeet},
    {CallTypes::googleMeetNew, u"newMeet", u"googleMeetNew", QT_TRANSLATE_NOOP("CallTypes", "Google Meet"),
     u"icon_googlemeet", MeetingAddresses::googleMeetNew},
    {CallTypes::zoom, u"zoom", u"zoom", QT_TRANSLATE_NOOP("CallTypes", "Zoom"), u"icon_zoom", u""},
    {CallTypes::webex, u"webex", u"webex", QT_TRANSLATE_NOOP("CallTypes", "Webex"), u"icon_webex", u""},
    {CallTypes::jitsi, u"jitsi", u"jitsi", QT_TRANSLATE_NOOP("CallTypes", "Jitsi"), u"minus.circle.fill", u""},
    {CallTypes::notRecognized, u"not recognized", u"notRecognized", "", u"minus.circle.fill", u""},
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
    const char *text = row(type).label;
    return *text ? QCoreApplication::translate("CallTypes", text) : QString();
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
