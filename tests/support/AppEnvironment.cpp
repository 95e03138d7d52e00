#include "AppEnvironment.h"

AppEnvironment::AppEnvironment()
    : ViewModelFixture("BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\nEND:VCARD\n"
                       "BEGIN:VCARD\nUID:bob\nN:Smith;Bob;;;\nTEL;TYPE=WORK:+1 555 0100\nTEL;TYPE=HOME:+1 555 0101\n"
                       "END:VCARD\n"
                       "BEGIN:VCARD\nUID:dee\nN:-Dash;Dee;;;\nEMAIL:dee@example.org\nEND:VCARD\n"
                       "BEGIN:VCARD\nUID:3m\nORG:3M\nEND:VCARD\n")
{
    preferences->setValue(PreferenceKey::fixedQuoteOnStartup, true);
    serveQuotes(); // it has no quote: 404, so no saying from the machine's fortune files
    valid = home.isValid() && serveWeather();
    makeViewModel();
}
