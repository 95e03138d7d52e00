// The languages Telverra speaks: each catalogue in translations/ translates every text the sources have now, fully and
// with the same placeholders; and the program picks the user's language the way a Linux desktop does, for what it
// tells the user, while its trace lines stay in English. That every text on screen goes through the translation is
// the tst_PseudoTranslation run of the accessibility test.
#include "support/TestHome.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

class tst_Translations : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void catalogues();
    void commandLine_data();
    void commandLine();
};

// lupdate run over the sources into a copy of a catalogue marks what is new "unfinished" and what the sources lost
// "vanished": a catalogue that is up to date and complete comes out with neither.
void tst_Translations::catalogues()
{
    static const QRegularExpression message(uR"(<source>(.*?)</source>.*?<translation( type="\w+")?>(.*?)</)"_qs,
                                            QRegularExpression::DotMatchesEverythingOption);
    const auto placeholders = [](const QString &text) {
        QSet<QString> found;
        for (const QRegularExpressionMatch &match : QRegularExpression(u"%L?(\\d{1,2}|n)"_qs).globalMatch(text)) {
            found.insert(match.captured(1));
        }
        return found;
    };
    const QDir folder(QStringLiteral(SOURCES_DIR "/translations"));
    for (const QString &name : folder.entryList({u"telverra_*.ts"_qs}, QDir::Files)) {
        QTemporaryDir work;
        QVERIFY(QFile::copy(folder.filePath(name), work.filePath(name)));
        QProcess lupdate;
        lupdate.start(QStringLiteral(LUPDATE),
                      {u"-silent"_qs, u"-locations"_qs, u"none"_qs, u"-I"_qs, QStringLiteral(SOURCES_DIR),
                       QStringLiteral(SOURCES_DIR), u"-ts"_qs, work.filePath(name)});
        QVERIFY(lupdate.waitForFinished(120000) && lupdate.exitCode() == 0);
        QFile file(work.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString catalogue = QString::fromUtf8(file.readAll());
        QStringList problems;
        for (const QRegularExpressionMatch &match : message.globalMatch(catalogue)) {
            const QString translation = match.captured(3).trimmed();
            if (!match.captured(2).isEmpty() || translation.isEmpty() || translation.startsWith(u"<numerusform></") ||
                placeholders(translation) != placeholders(match.captured(1))) {
                problems.append(match.captured(1) + u" → " + translation);
            }
        }
        QVERIFY2(problems.isEmpty(),
                 qPrintable(name +
                            u": unfinished, vanished or with other placeholders (run update_translations, then "
                            u"translate):\n" +
                            problems.join(u'\n')));
    }
}

void tst_Translations::commandLine_data()
{
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");  // what standard error holds: the user's message
    QTest::addColumn<QString>("output"); // what standard output holds: the trace line, in English always

    const QStringList dialled{u"call"_qs, u"(600) 123"_qs};
    const QString refusedEs = u"No es un número al que se pueda llamar: (600) 123"_qs;
    const QString refusedEn = u"Not a number that can be called: (600) 123"_qs;
    const QString trace = u"make call button pressed with: (600) 123"_qs;
    QTest::newRow("Spanish by LANG alone") << u"LANG=es_ES.UTF-8"_qs << dialled << refusedEs << trace;
    QTest::newRow("a language Telverra lacks, then Spanish")
        << u"LANG=de_DE.UTF-8 LANGUAGE=de:es"_qs << dialled << refusedEs << trace;
    QTest::newRow("English before Spanish") << u"LANG=es_ES.UTF-8 LANGUAGE=en:es"_qs << dialled << refusedEn << trace;
    QTest::newRow("C locale, whatever LANGUAGE says")
        << u"LANG=C.UTF-8 LANGUAGE=es"_qs << dialled << refusedEn << trace;
    QTest::newRow("launch error: shown in Spanish, traced in English")
        << u"LANG=es_ES.UTF-8 LANGUAGE=es"_qs << QStringList{u"mail"_qs, u"bob@example.com?attach=/etc/passwd"_qs}
        << u"Error al crear la llamada con el número: Error al crear el correo: bob@example.com?attach=/etc/passwd"_qs
        << u"Error Creating call in Workspace with number: Error creating eMail: bob@example.com?attach=/etc/passwd"_qs;
    QTest::newRow("usage error") << u"LANG=es_ES.UTF-8 LANGUAGE=es"_qs << QStringList{u"dial"_qs, u"600"_qs}
                                 << u"telverra: orden desconocida dial\nPruebe «telverra --help»."_qs << QString();
    QTest::newRow("help") << u"LANG=es_ES.UTF-8 LANGUAGE=es"_qs << QStringList{u"--help"_qs} << QString()
                          << u"Uso: telverra [ORDEN [ARGUMENTOS]] [OPCIONES]"_qs;
}

void tst_Translations::commandLine()
{
    QFETCH(QString, environment);
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    QFETCH(QString, output);
    // In a home of its own: the command runs here.
    TestHome home;
    QVERIFY(home.isValid());
    QProcess telverra; // LANG and LANGUAGE as the row says, no other locale setting, no display, no session bus
    const QString clean = u"-u LC_ALL -u LC_MESSAGES -u LANGUAGE -u DISPLAY -u WAYLAND_DISPLAY "
                          u"DBUS_SESSION_BUS_ADDRESS=unix:path=/none "_qs;
    telverra.start(u"env"_qs, QString(clean + environment).split(u' ')
                                  << QStringLiteral(TELVERRA_EXECUTABLE) << arguments);
    QVERIFY(telverra.waitForFinished(60000));
    const QString err = QString::fromUtf8(telverra.readAllStandardError());
    const QString out = QString::fromUtf8(telverra.readAllStandardOutput());
    QVERIFY2(err.contains(error), qPrintable(err));
    QVERIFY2(out.contains(output), qPrintable(out));
}

QTEST_GUILESS_MAIN(tst_Translations)
#include "tst_Translations.moc"
