#pragma once

#include <QString>

/// The program's texts in the user's language. The texts in the sources are the English ones; a catalogue per other
/// language is built into the program (translations/telverra_LANG.ts, made into :/i18n/telverra_LANG.qm).
namespace Translations {

/// Installs, for the first of the user's languages (QLocale::system().uiLanguages(): LANGUAGE, else the locale) that
/// Telverra speaks, its catalogue and Qt's own (the texts of the standard dialogs and context menus), and returns that
/// language ("es"); nothing when English comes first or the locale is C, as with gettext. Needs the application
/// object, and goes before the first text is made.
QString install();

/// Installs the catalogue in that .qm file; false when it cannot be read.
bool installFile(const QString &path);

} // namespace Translations
