// Pasted meeting text: the clipboard trimming and the classification of an address. The trimmed text is the input
// without its trailing white space and its leading blanks and tabs; the classification names a kind only when its
// address is in the text, in the order the kinds are tried.
#include "FuzzSupport.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(fuzzBytes(data, size));
    const QString trimmed = ClipboardText::meetingAddress(text);
    FUZZ_REQUIRE(text.contains(trimmed));
    FUZZ_REQUIRE(trimmed.isEmpty() || !trimmed.back().isSpace());
    FUZZ_REQUIRE(trimmed.isEmpty() ||
                 (trimmed.front() != u'\t' && trimmed.front().category() != QChar::Separator_Space));
    FUZZ_REQUIRE(ClipboardText::meetingAddress(trimmed) == trimmed);
    // Only white space was taken away.
    const qsizetype at = text.indexOf(trimmed);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (i < at || i >= at + trimmed.size()) {
            FUZZ_REQUIRE(text[i].isSpace());
        }
    }

    const CallTypes type = CallsManager::callTypeForURL(trimmed);
    const bool meet = trimmed.contains(MeetingAddresses::googleMeet);
    const bool jitsi = trimmed.contains(MeetingAddresses::jitsi);
    const bool zoom = trimmed.contains(MeetingAddresses::zoom);
    const bool webex = trimmed.contains(MeetingAddresses::webex);
    const CallTypes expected = meet    ? CallTypes::googleMeet
                               : jitsi ? CallTypes::jitsi
                               : zoom  ? CallTypes::zoom
                               : webex ? CallTypes::webex
                                       : CallTypes::notRecognized;
    FUZZ_REQUIRE(type == expected);
    return 0;
}
