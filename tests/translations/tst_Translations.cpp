// The languages Telverra speaks: each catalogue in translations/ translates every text the sources have now, fully and
// with the same placeholders; and the program picks the user's language the way a Linux desktop does, for what it
// tells the user, while its trace lines stay in English.
#include "support/TestHome.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>
#include <QXmlStreamReader>

namespace {

struct Entry
{
    QString type;             // "unfinished", "vanished", "obsolete" or empty
    QStringList translations; // one, or one per plural form
    bool numerus = false;
};

// (context, source, disambiguation) → entry
using Catalogue = QMap<std::tuple<QString, QString, QString>, Entry>;

bool readCatalogue(const QString &path, Catalogue &catalogue, QString &language)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    QXmlStreamReader xml(&file);
    QString context;
    QString source;
    QString comment;
    Entry entry;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::EndElement && xml.name() == u"message") {
            catalogue.insert({context, source, comment}, entry);
            continue;
        }
        if (token != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == u"TS") {
            language = xml.attributes().value(QLatin1StringView("language")).toString();
        } else if (xml.name() == u"name") {
            context = xml.readElementText();
        } else if (xml.name() == u"message") {
            source.clear();
            comment.clear();
            entry = {};
            entry.numerus = xml.attributes().value(QLatin1StringView("numerus")) == u"yes";
        } else if (xml.name() == u"source") {
            source = xml.readElementText();
        } else if (xml.name() == u"comment") {
            comment = xml.readElementText();
        } else if (xml.name() == u"translation") {
            entry.type = xml.attributes().value(QLatin1StringView("type")).toString();
            if (!entry.numerus) {
                entry.translations = {xml.readElementText()};
            }
        } else if (xml.name() == u"numerusform") {
            entry.translations.append(xml.readElementText());
        }
    }
    return !xml.hasError();
}

// The placeholders a text fills in: %1…%99 (also %L1) and %n.
QStringList placeholders(const QString &text)
{
    static const QRegularExpression placeholder(u"%L?(\\d{1,2}|n)"_qs);
    QStringList found;
    for (auto it = placeholder.globalMatch(text); it.hasNext();) {
        found.append(it.next().captured(1));
    }
    found.sort();
    found.removeDuplicates();
    return found;
}

QString describe(const std::tuple<QString, QString, QString> &key)
{
    const auto &[context, source, comment] = key;
    return context + u": \"" + source + (comment.isEmpty() ? u"\""_qs : u"\" (" + comment + u')');
}

} // namespace

class tst_Translations : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void catalogues_data();
    void catalogues();
    void commandLine_data();
    void commandLine();
};

void tst_Translations::catalogues_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(QStringLiteral(TRANSLATIONS_DIR));
    const QStringList files = folder.entryList({u"telverra_*.ts"_qs}, QDir::Files);
    QVERIFY2(!files.isEmpty(), "no catalogue in translations/");
    for (const QString &file : files) {
        QTest::newRow(qPrintable(file)) << folder.filePath(file);
    }
}

void tst_Translations::catalogues()
{
    QFETCH(QString, path);
    Catalogue sources;
    Catalogue translated;
    QString sourcesLanguage;
    QString language;
    QVERIFY2(readCatalogue(QStringLiteral(SOURCES_TS), sources, sourcesLanguage), SOURCES_TS);
    QVERIFY2(readCatalogue(path, translated, language), qPrintable(path));
    QVERIFY(sources.size() > 50); // the extraction found the program's texts
    QVERIFY2(!language.isEmpty(), "the catalogue names no language");

    QStringList problems;
    for (auto it = sources.cbegin(); it != sources.cend(); ++it) {
        if (!translated.contains(it.key())) {
            problems.append(u"new, not in the catalogue (run the update_translations target): " + describe(it.key()));
        }
    }
    for (auto it = translated.cbegin(); it != translated.cend(); ++it) {
        const QString &source = std::get<1>(it.key());
        const Entry &entry = it.value();
        if (!sources.contains(it.key()) || entry.type == u"vanished" || entry.type == u"obsolete") {
            problems.append(u"vanished from the sources: " + describe(it.key()));
        } else if (entry.type == u"unfinished" || entry.translations.isEmpty() ||
                   entry.translations.contains(QString())) {
            problems.append(u"unfinished: " + describe(it.key()));
        } else {
            for (const QString &translation : entry.translations) {
                if (placeholders(translation) != placeholders(source)) {
                    problems.append(u"other placeholders than the source: " + describe(it.key()) + u" → \"" +
                                    translation + u'"');
                }
            }
        }
    }
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(u'\n')));
}

void tst_Translations::commandLine_data()
{
    QTest::addColumn<QStringList>("environment");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");  // what standard error holds: the user's message
    QTest::addColumn<QString>("output"); // what standard output holds: the trace line, in English always

    const QStringList dialled{u"call"_qs, u"(600) 123"_qs};
    const QString refusedEs = u"No es un número al que se pueda llamar: (600) 123"_qs;
    const QString refusedEn = u"Not a number that can be called: (600) 123"_qs;
    const QString trace = u"make call button pressed with: (600) 123"_qs;
    QTest::newRow("Spanish desktop") << QStringList{u"LANG=es_ES.UTF-8"_qs, u"LANGUAGE=es"_qs} << dialled << refusedEs
                                     << trace;
    QTest::newRow("Spanish by LANG alone") << QStringList{u"LANG=es_ES.UTF-8"_qs} << dialled << refusedEs << trace;
    QTest::newRow("a language Telverra lacks, then Spanish")
        << QStringList{u"LANG=de_DE.UTF-8"_qs, u"LANGUAGE=de:es"_qs} << dialled << refusedEs << trace;
    QTest::newRow("English before Spanish")
        << QStringList{u"LANG=es_ES.UTF-8"_qs, u"LANGUAGE=en:es"_qs} << dialled << refusedEn << trace;
    QTest::newRow("C locale, whatever LANGUAGE says")
        << QStringList{u"LC_ALL=C.UTF-8"_qs, u"LANGUAGE=es"_qs} << dialled << refusedEn << trace;
    QTest::newRow("launch error: shown in Spanish, traced in English")
        << QStringList{u"LANG=es_ES.UTF-8"_qs, u"LANGUAGE=es"_qs}
        << QStringList{u"mail"_qs, u"bob@example.com?attach=/etc/passwd"_qs}
        << u"Error al crear la llamada con el número: Error al crear el correo: bob@example.com?attach=/etc/passwd"_qs
        << u"Error Creating call in Workspace with number: Error creating eMail: bob@example.com?attach=/etc/passwd"_qs;
    QTest::newRow("usage error") << QStringList{u"LANG=es_ES.UTF-8"_qs, u"LANGUAGE=es"_qs}
                                 << QStringList{u"dial"_qs, u"600"_qs}
                                 << u"telverra: orden desconocida dial\nPruebe «telverra --help»."_qs << QString();
    QTest::newRow("help") << QStringList{u"LANG=es_ES.UTF-8"_qs, u"LANGUAGE=es"_qs} << QStringList{u"--help"_qs}
                          << QString() << u"Uso: telverra [ORDEN [ARGUMENTOS]] [OPCIONES]"_qs;
}

void tst_Translations::commandLine()
{
    QFETCH(QStringList, environment);
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    QFETCH(QString, output);

    TestHome home;
    QVERIFY(home.isValid());
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE", "DISPLAY", "WAYLAND_DISPLAY"}) {
        variables.remove(QString::fromLatin1(name));
    }
    variables.insert(u"DBUS_SESSION_BUS_ADDRESS"_qs, u"unix:path=/nonexistent"_qs); // the command runs here
    for (const QString &variable : environment) {
        variables.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    }
    QProcess telverra;
    telverra.setProcessEnvironment(variables);
    telverra.start(QStringLiteral(TELVERRA_EXECUTABLE), arguments);
    QVERIFY(telverra.waitForFinished(60000));
    const QString out = QString::fromUtf8(telverra.readAllStandardOutput());
    const QString err = QString::fromUtf8(telverra.readAllStandardError());
    QVERIFY2(err.contains(error), qPrintable(err));
    QVERIFY2(out.contains(output), qPrintable(out));
}

QTEST_GUILESS_MAIN(tst_Translations)
#include "tst_Translations.moc"
