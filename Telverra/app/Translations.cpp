#include "Translations.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>

namespace Translations {

namespace {

bool installLoaded(std::unique_ptr<QTranslator> translator)
{
    if (translator->isEmpty() || !QCoreApplication::installTranslator(translator.get())) {
        return false;
    }
    translator.release()->setParent(QCoreApplication::instance());
    return true;
}

// The C locale (LC_ALL=C.UTF-8, or nothing set) keeps the program's own texts whatever LANGUAGE asks for, as with
// gettext; Qt would follow LANGUAGE regardless, and takes "C.UTF-8" for the first language LANGUAGE names.
bool isCLocale()
{
    QByteArray messages = qgetenv("LC_ALL");
    for (const char *variable : {"LC_MESSAGES", "LANG"}) {
        if (messages.isEmpty()) {
            messages = qgetenv(variable);
        }
    }
    return messages.isEmpty() || messages == "C" || messages == "POSIX" || messages.startsWith("C.");
}

} // namespace

QString install()
{
    if (isCLocale()) {
        return {};
    }
    for (const QString &uiLanguage : QLocale::system().uiLanguages()) {
        const QString name = QString(uiLanguage).replace(u'-', u'_'); // "es-ES" → "es_ES"
        if (name == u"en" || name.startsWith(u"en_")) {
            return {}; // the sources' own language
        }
        auto translator = std::make_unique<QTranslator>();
        // "telverra_es_ES", then "telverra_es" (QTranslator drops the country first).
        if (!translator->load(u"telverra_" + name, QStringLiteral(":/i18n")) || translator->isEmpty()) {
            continue;
        }
        const QString language = translator->language().isEmpty() ? name : translator->language();
        installLoaded(std::move(translator));
        // Qt's catalogue for the same language: "qt_es" names qtbase_es, qtdeclarative_es and the others.
        auto qt = std::make_unique<QTranslator>();
        if (qt->load(u"qt_" + name, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            installLoaded(std::move(qt));
        }
        return language;
    }
    return {};
}

bool installFile(const QString &path)
{
    auto translator = std::make_unique<QTranslator>();
    return translator->load(path) && installLoaded(std::move(translator));
}

} // namespace Translations
