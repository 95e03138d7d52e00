#pragma once

#include <QObject>
#include <QString>

#include <array>
#include <optional>

/// The kinds of destination the launcher knows. The order is the stored tag and must not change; the raw values are
/// what the history and the favourites keep.
namespace CallTypesNamespace {
Q_NAMESPACE
enum class CallTypes
{
    telephone,
    facetime,
    facetimeaudio,
    messages,
    skype,
    slack,
    telegram,
    mail,
    googleMeet,
    googleMeetNew,
    zoom,
    webex,
    jitsi,
    notRecognized,
};
Q_ENUM_NS(CallTypes)
} // namespace CallTypesNamespace

using CallTypesNamespace::CallTypes;

inline constexpr int callTypesCount = 14;

/// The case's position in declaration order (0 to 13).
constexpr int tag(CallTypes type)
{
    return static_cast<int>(type);
}

/// Every case, in declaration order.
const std::array<CallTypes, callTypesCount> &allCallTypes();

/// The text the store keeps: "telephone", "facetime-audio", "meet", "newMeet", "not recognized", ...
QString rawValue(CallTypes type);
/// No value for a text that is not one of the raw values (case-sensitive).
std::optional<CallTypes> callTypesFromRawValue(const QString &raw);
/// The case's name in the code ("googleMeetNew"), used in traces.
QString caseName(CallTypes type);

/// The label the screens show, in the user's language ("Telegtram", "Facetime Audio", "" for notRecognized).
QString label(CallTypes type);
/// A system symbol name ("phone.fill") or an asset image name ("icon_zoom").
QString icon(CallTypes type);
/// True for the asset images among the icons.
bool isAssetImage(const QString &iconName);

/// The prefix an address of this kind starts with, percent-encoded with the query-allowed set; empty for the kinds
/// without a scheme and for every tag of 10 or more.
QString launchPrefix(CallTypes type);
/// The same rule by raw tag, for callers that hold a stored tag.
QString launchPrefixForTag(int tag);

/// Meeting addresses and domains recognised in pasted text.
namespace MeetingAddresses {
inline constexpr QStringView googleMeet = u"https://meet.google.com/";
inline constexpr QStringView googleMeetNew = u"https://meet.google.com/new";
inline constexpr QStringView jitsi = u"https://meet.jit.si/";
inline constexpr QStringView zoom = u"zoom.us/";
inline constexpr QStringView webex = u"webex.com/";
} // namespace MeetingAddresses

/// Percent-encodes everything outside the URL-query-allowed set (letters, digits and "!$&'()*+,-./:;=?@_~").
QString percentEncodedForQuery(const QString &text);
