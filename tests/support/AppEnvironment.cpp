#include "AppEnvironment.h"

const char *const AppEnvironment::defaultAddressBook =
    "BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\nEND:VCARD\n"
    "BEGIN:VCARD\nUID:bob\nN:Smith;Bob;;;\nTEL;TYPE=WORK:+1 555 0100\nTEL;TYPE=HOME:+1 555 0101\nEND:VCARD\n"
    "BEGIN:VCARD\nUID:dee\nN:-Dash;Dee;;;\nEMAIL:dee@example.org\nEND:VCARD\n"
    "BEGIN:VCARD\nUID:3m\nORG:3M\nEND:VCARD\n";

AppEnvironment::AppEnvironment(const QByteArray &addressBook)
    : m_app(addressBook)
{
    m_app.preferences->setValue(PreferenceKey::fixedQuoteOnStartup, true);
    m_valid = m_app.home.isValid() && m_app.serveWeather();
    m_app.makeViewModel();
}
