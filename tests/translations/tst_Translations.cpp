// The languages Telverra speaks: each catalogue in translations/ translates every text the sources have now, fully and
// with the same placeholders; every text on screen went through the translation; and the program picks the user's
// language the way a Linux desktop does, for what it tells the user, while its trace lines stay in English.
#include "app/HomeWindowViewModel.h"
#include "contacts/ContactsDataService.h"
#include "favorites/FavoritesDataService.h"
#include "support/AccessibleTree.h"
#include "support/AppEnvironment.h"
#include "support/ScreenTour.h"
#include "support/TestHome.h"

#include <QDir>
#include <QProcess>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickStyle>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

// The pseudo-translation made at build time from the texts lupdate finds in the sources gives each as "⟦text"; this
// closes the mark after a third more, so that every translated text reads "⟦text··⟧".
class PseudoTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *text, const char *disambiguation, int n) const override
    {
        const QString marked = QTranslator::translate(context, text, disambiguation, n);
        return marked.isEmpty() ? marked : marked + QString((marked.size() + 1) / 3, u'·') + u'⟧';
    }
};

} // namespace

class tst_Translations : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void catalogues();
    void everyTextOnScreenIsTranslated();
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

// Every screen, menu and dialog (the ScreenTour) under the pseudo-translation: a word on screen or in the
// accessibility tree outside the marks escaped the translation. The user's data needs none.
void tst_Translations::everyTextOnScreenIsTranslated()
{
    PseudoTranslator translator;
    QVERIFY(translator.load(QStringLiteral(PSEUDO_QM)) && QCoreApplication::installTranslator(&translator));
    QQuickStyle::setStyle(u"Fusion"_qs);
    AppEnvironment environment;
    QVERIFY(environment.isValid());
    HomeWindowViewModel &viewModel = environment.viewModel();
    QTRY_COMPARE_WITH_TIMEOUT(viewModel.contactsDataService().property("count").toInt(), 4, 10000);
    viewModel.makeCallFromText(u"+34 922 600 100"_qs);
    viewModel.favoritesDataService().addFavoriteTelco(u"Standup"_qs, u"jitsi"_qs, u"https://meet.jit.si/Standup"_qs);
    viewModel.favoritesDataService().fetchFavoriteTelcos();
    viewModel.addContactToFavoritesById(u"ana"_qs);
    viewModel.favoritesDataService().fetchFavoriteContacts();
    // What the address book, the favourites and the weather's place hold, and the locale's day and month names.
    const QRegularExpression notLetters(uR"([^\p{L}]+)"_qs);
    QStringList data = u"Ana García AG Bob Smith BS Dee Dash DD dee example org Standup https meet jit si Telverra La "
                       u"Laguna Spain"_qs.split(u' ');
    for (int day = 1; day <= 12; ++day) {
        data << QLocale().dayName(day % 7 + 1) << QLocale().dayName(day % 7 + 1, QLocale::ShortFormat)
             << QLocale().monthName(day, QLocale::ShortFormat);
    }
    QQmlEngine engine;
    environment.prepareEngine(engine);
    QQmlComponent component(&engine, QUrl(u"qrc:/qt/qml/Telverra/app/Main.qml"_qs));
    std::unique_ptr<QQuickWindow> window(qobject_cast<QQuickWindow *>(
        component.createWithInitialProperties({{u"viewModel"_qs, QVariant::fromValue(&viewModel)}})));
    QVERIFY2(window && QTest::qWaitForWindowExposed(window.get()), qPrintable(component.errorString()));
    ScreenTour tour(window.get(), viewModel);
    static const QRegularExpression marked(u"⟦[^⟦⟧]*⟧"_qs);
    QStringList untranslated;
    for (const QString &stop : ScreenTour::stops()) {
        for (const QString &text : AccessibleTree::visibleTexts(tour.show(stop))) {
            QString rest = text;
            while (rest.contains(marked)) { // a marked text may hold another: innermost first
                rest.replace(marked, u" "_qs);
            }
            const QStringList words = rest.split(notLetters, Qt::SkipEmptyParts);
            if (std::any_of(words.begin(), words.end(),
                            [&](const QString &w) { return w.size() > 1 && !data.contains(w); })) {
                untranslated.append(u'"' + text + u'"');
            }
        }
    }
    untranslated.removeDuplicates();
    QVERIFY2(untranslated.isEmpty(), qPrintable(u"not translated:\n"_qs + untranslated.join(u'\n')));
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

QTEST_MAIN(tst_Translations)
#include "tst_Translations.moc"
