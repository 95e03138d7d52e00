// Every screen, menu and dialog of the program as a screen reader and the keyboard meet them, in the real window over
// a real view model: each accessible action does what a click does, every text is read once as plain text, rows
// hidden by a search are not offered, the rows of every list answer the keyboard, and Tab follows the reading order.
// The screens are those of the ScreenTour: a control added to any of them is checked without a case of its own.
#include "app/HomeWindowViewModel.h"
#include "contacts/ContactsDataService.h"
#include "favorites/FavoritesDataService.h"
#include "support/AccessibleTree.h"
#include "support/AppEnvironment.h"
#include "support/ScreenTour.h"

#include <QDesktopServices>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

const QString press = QAccessibleActionInterface::pressAction();
const QString toggle = QAccessibleActionInterface::toggleAction();
const QString increase = QAccessibleActionInterface::increaseAction();
const QString decrease = QAccessibleActionInterface::decreaseAction();
const QStringList knownActions{press, toggle, increase, decrease};

// Web pages a test would open in the desktop's browser are only noted.
class PageRecorder : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> opened;
public Q_SLOTS:
    void open(const QUrl &url) { opened.append(url); }
};

// Where an item is in the window.
QRectF sceneRect(const QQuickItem *item)
{
    return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
}

// The signal a click sends: a row's activation, else the button's click (or, for Toggle, its toggle).
QByteArray clickSignal(const QObject *object, const QString &action)
{
    if (object->metaObject()->indexOfSignal("activated()") >= 0) {
        return QByteArray::number(QSIGNAL_CODE) + "activated()";
    }
    return QByteArray::number(QSIGNAL_CODE) + (action == toggle ? "toggled()" : "clicked()");
}

} // namespace

class tst_Accessibility : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void everyTextIsReadOncePlain_data() { stops(); }
    void everyTextIsReadOncePlain();
    void rowsHiddenByASearchAreNotOffered_data();
    void rowsHiddenByASearchAreNotOffered();
    void rowsAnswerTheKeyboardAndPress_data();
    void rowsAnswerTheKeyboardAndPress();
    void tabFollowsTheReadingOrder_data();
    void tabFollowsTheReadingOrder();
    void everyActionDoesWhatAClickDoes_data() { stops(); }
    void everyActionDoesWhatAClickDoes();

private:
    static void stops();

    std::unique_ptr<AppEnvironment> m_environment;
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QQuickWindow> m_window;
    std::unique_ptr<ScreenTour> m_tour;
    PageRecorder m_pages;
    QList<QPointer<QObject>> m_pressed;
};

void tst_Accessibility::initTestCase()
{
    QQuickStyle::setStyle(u"Fusion"_qs); // the program's
    QDesktopServices::setUrlHandler(u"https"_qs, &m_pages, "open");
    m_environment = std::make_unique<AppEnvironment>();
    QVERIFY(m_environment->isValid());
    QTRY_COMPARE_WITH_TIMEOUT(m_environment->viewModel().contactsDataService().property("count").toInt(), 4, 10000);
    m_engine = std::make_unique<QQmlEngine>();
    m_environment->prepareEngine(*m_engine);
    QQmlComponent component(m_engine.get(), QUrl(u"qrc:/qt/qml/Telverra/app/Main.qml"_qs));
    m_window.reset(qobject_cast<QQuickWindow *>(
        component.createWithInitialProperties({{u"viewModel"_qs, QVariant::fromValue(&m_environment->viewModel())}})));
    QVERIFY2(m_window, qPrintable(component.errorString()));
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_tour = std::make_unique<ScreenTour>(m_window.get(), m_environment->viewModel());
}

// Every test starts with a few calls, two saved links and a favourite contact (earlier tests may have removed them).
void tst_Accessibility::init()
{
    HomeWindowViewModel &viewModel = m_environment->viewModel();
    viewModel.setSearchTextForRecents(QString());
    viewModel.setSearchTextForContacts(QString());
    while (viewModel.recentCallsModel()->property("count").toInt() < 3) {
        viewModel.makeCallFromText(u"+34 922 600 10"_qs +
                                   QString::number(viewModel.recentCallsModel()->property("count").toInt()));
    }
    FavoritesDataService &favorites = viewModel.favoritesDataService();
    while (favorites.savedFavoriteTelcos().size() < 2) {
        favorites.addFavoriteTelco(u"Standup"_qs, u"jitsi"_qs, u"https://meet.jit.si/Standup"_qs);
        favorites.fetchFavoriteTelcos();
    }
    if (favorites.favoriteContacts(u"ana"_qs).isEmpty()) {
        viewModel.addContactToFavoritesById(u"ana"_qs);
        favorites.fetchFavoriteContacts();
    }
    m_environment->workspace().opened.clear();
}

void tst_Accessibility::cleanupTestCase()
{
    m_tour.reset();
    m_window.reset();
    m_engine.reset();
}

void tst_Accessibility::stops()
{
    QTest::addColumn<QString>("stop");
    for (const QString &stop : ScreenTour::stops()) {
        QTest::newRow(qPrintable(stop)) << stop;
    }
}

// A screen reader reads every text the window draws, once, without markup.
void tst_Accessibility::everyTextIsReadOncePlain()
{
    QFETCH(QString, stop);
    QQuickWindow *window = m_tour->show(stop);
    QVERIFY(window);
    const QList<AccessibleTree::Node> nodes = AccessibleTree::showing(window);
    QString read;
    for (const AccessibleTree::Node &node : nodes) {
        QVERIFY2(AccessibleTree::isPlainText(node.name), qPrintable(node.path));
        QVERIFY2(!AccessibleTree::repeatsEnclosingName(node), qPrintable(node.path));
        read += node.name.simplified() + u'\n' + node.description.simplified() + u'\n';
    }
    // Glyphs that stand for a picture ("✆" on the call button) are said by their control's name instead.
    static const QRegularExpression words(uR"([\p{L}\p{N}])"_qs);
    for (const QString &drawn : AccessibleTree::drawnTexts(window)) {
        const QString plain = AccessibleTree::plainText(drawn);
        QVERIFY2(!plain.contains(words) || read.contains(plain, Qt::CaseInsensitive), qPrintable(drawn));
    }
}

void tst_Accessibility::rowsHiddenByASearchAreNotOffered_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("search");
    QTest::addColumn<QString>("everyRowSays");
    QTest::newRow("contacts") << u"contacts"_qs << u"Contacts"_qs << u"smi"_qs << u"Smith"_qs;
    QTest::newRow("recents") << u"recents"_qs << u"History"_qs << u"600 101"_qs << u"600 101"_qs;
}

void tst_Accessibility::rowsHiddenByASearchAreNotOffered()
{
    QFETCH(QString, section);
    QFETCH(QString, list);
    QFETCH(QString, search);
    QFETCH(QString, everyRowSays);
    QQuickWindow *window = m_tour->show(section);
    QVERIFY(window);
    const auto rows = [window, list] {
        QStringList names;
        for (const AccessibleTree::Node &node : AccessibleTree::showing(window)) {
            if (node.role == QAccessible::ListItem && node.path.contains(u"\"" + list + u"\"/")) {
                names.append(node.name);
            }
        }
        return names;
    };
    QTRY_VERIFY(rows().size() >= 3); // every row was made before the search hides some
    const auto property = section == u"contacts" ? &HomeWindowViewModel::setSearchTextForContacts
                                                 : &HomeWindowViewModel::setSearchTextForRecents;
    (m_environment->viewModel().*property)(search);
    QTRY_VERIFY2(!rows().isEmpty() && rows().filter(everyRowSays).size() == rows().size(),
                 qPrintable(rows().join(u" | ")));
}

void tst_Accessibility::rowsAnswerTheKeyboardAndPress_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("rowName"); // empty: the first row
    QTest::addColumn<int>("key");         // 0: the screen reader's Press
    QTest::addColumn<QString>("expected");

    const int pressAction = 0;
    for (const auto &[way, key] : {std::pair{"Return", int(Qt::Key_Return)}, std::pair{"Space", int(Qt::Key_Space)},
                                   std::pair{"Press", pressAction}}) {
        QTest::addRow("recents, %s", way) << u"recents"_qs << u"recentsList"_qs << QString() << key << u"launch"_qs;
        QTest::addRow("contacts, %s", way)
            << u"contacts"_qs << u"contactsList"_qs << u"Ana García"_qs << key << u"launch"_qs;
        QTest::addRow("favourite contacts, %s", way)
            << u"favorites"_qs << u"favoriteContacts"_qs << QString() << key << u"launch"_qs;
        QTest::addRow("saved links, %s", way)
            << u"favorites"_qs << u"favoriteTelcos"_qs << QString() << key << u"launch"_qs;
    }
    QTest::newRow("recents, Menu key") << u"recents"_qs << u"recentsList"_qs << QString() << int(Qt::Key_Menu)
                                       << u"menu"_qs;
    QTest::newRow("contacts, Menu key") << u"contacts"_qs << u"contactsList"_qs << QString() << int(Qt::Key_Menu)
                                        << u"menu"_qs;
    QTest::newRow("saved links, Menu key")
        << u"favorites"_qs << u"favoriteTelcos"_qs << QString() << int(Qt::Key_Menu) << u"menu"_qs;
    QTest::newRow("sidebar, Down then Space")
        << u"dialer"_qs << u"sidebar-dialer"_qs << QString() << int(Qt::Key_Down) << u"recents"_qs;
    QTest::newRow("sidebar, Press") << u"dialer"_qs << u"sidebar-contacts"_qs << QString() << pressAction
                                    << u"contacts"_qs;
}

void tst_Accessibility::rowsAnswerTheKeyboardAndPress()
{
    QFETCH(QString, section);
    QFETCH(QString, list);
    QFETCH(QString, rowName);
    QFETCH(int, key);
    QFETCH(QString, expected);
    QQuickWindow *window = m_tour->show(section);
    QVERIFY(window);
    QObject *target = ScreenTour::find(window, list);
    QVERIFY(target);
    QQuickItem *row = qobject_cast<QQuickItem *>(target);
    if (target->inherits("QQuickListView")) {
        row = ScreenTour::row(target, rowName.isEmpty() ? nullptr : "name", rowName);
        QVERIFY(row);
        target->setProperty("currentIndex", row->property("index"));
    }
    // The keyboard focus where Tab and the arrows would have put it.
    qobject_cast<QQuickItem *>(target)->forceActiveFocus(Qt::TabFocusReason);
    QVERIFY(row->isVisible());
    const qsizetype launches = m_environment->workspace().opened.size();
    if (key == 0) {
        AccessibleTree::perform(row, press);
    } else if (key == Qt::Key_Down) {
        QTest::keyClick(window, Qt::Key_Down);
        QTest::keyClick(window, Qt::Key_Space);
    } else {
        QTest::keyClick(window, Qt::Key(key));
    }
    if (expected == u"launch") {
        QTRY_COMPARE(m_environment->workspace().opened.size(), launches + 1);
    } else if (expected == u"menu") {
        QTRY_VERIFY(!ScreenTour::openPopups(window).isEmpty());
    } else {
        QTRY_COMPARE(window->property("currentSection").toString(), expected);
    }
}

void tst_Accessibility::tabFollowsTheReadingOrder_data()
{
    QTest::addColumn<QString>("stop");
    for (const char *stop :
         {"welcome", "dialer", "recents", "favorites", "contacts", "contact choice", "link editor", "launch error",
          "settings: general", "settings: quick actions", "settings: reset", "link removal", "reset confirmation"}) {
        QTest::newRow(stop) << QString::fromLatin1(stop);
    }
}

// Tab goes down the page and from one column to the next, never back up: each stop lies below the one before, to its
// right, or inside it (a list, then the buttons of its current row). Every stop is on screen and has a name.
void tst_Accessibility::tabFollowsTheReadingOrder()
{
    QFETCH(QString, stop);
    QQuickWindow *window = m_tour->show(stop);
    QVERIFY(window);
    // A dialog keeps Tab inside itself.
    QQuickItem *start = window->contentItem();
    for (QObject *popup : ScreenTour::openPopups(window)) {
        if (popup->inherits("QQuickDialog")) {
            start = popup->property("contentItem").value<QQuickItem *>();
        }
    }
    QList<QQuickItem *> chain;
    for (QQuickItem *item = start->nextItemInFocusChain(true); item && !chain.contains(item) && chain.size() < 200;
         item = item->nextItemInFocusChain(true)) {
        chain.append(item);
    }
    QVERIFY(!chain.isEmpty());
    const QRectF screen(QPointF(0, 0), window->size());
    const auto describe = [](QQuickItem *item) -> QString {
        QAccessibleInterface *node = QAccessible::queryAccessibleInterface(item);
        return QString::fromLatin1(item->metaObject()->className()) + u" \"" +
               (node ? node->text(QAccessible::Name) : QString()) + u"\" " + item->objectName();
    };
    for (qsizetype i = 0; i < chain.size(); ++i) {
        QQuickItem *item = chain.at(i);
        QAccessibleInterface *node = QAccessible::queryAccessibleInterface(item);
        QVERIFY2(item->isVisible() && screen.intersects(sceneRect(item)), qPrintable(describe(item)));
        QVERIFY2(node && !node->text(QAccessible::Name).trimmed().isEmpty(), qPrintable(describe(item)));
        if (i == 0) {
            continue;
        }
        const QRectF before = sceneRect(chain.at(i - 1));
        const QRectF after = sceneRect(item);
        const qreal slack = 4;
        const bool inside = before.adjusted(-slack, -slack, slack, slack).contains(after);
        const bool below = after.top() >= before.bottom() - slack;
        const bool onTheRight = after.left() >= before.right() - slack &&
                                (after.top() < before.bottom() || after.left() >= before.right() + slack);
        QVERIFY2(inside || below || onTheRight, qPrintable(describe(chain.at(i - 1)) + u" then " + describe(item)));
    }
}

void tst_Accessibility::everyActionDoesWhatAClickDoes()
{
    QFETCH(QString, stop);
    QQuickWindow *window = m_tour->show(stop);
    QVERIFY(window);
    int checked = 0;
    const QList<AccessibleTree::Node> nodes = AccessibleTree::showing(window);
    for (const AccessibleTree::Node &node : nodes) {
        // The window's own parts (toolbar, sidebar, menu bar) are checked once, at the first stop that shows them.
        if (!node.object || m_pressed.contains(node.object)) {
            continue;
        }
        // Whatever a click works offers an action, and says what it is.
        QVERIFY2(!node.actions.isEmpty() || !node.object->inherits("QQuickAbstractButton"),
                 qPrintable(node.path + u" offers no action"));
        QVERIFY2(node.actions.isEmpty() || !node.name.trimmed().isEmpty(), qPrintable(node.path + u" has no name"));
        for (const QString &action : node.actions) {
            QVERIFY2(knownActions.contains(action), qPrintable(action + u" on " + node.path));
            // Each action starts from the stop as it first showed (an earlier one may have opened or changed it);
            // the control is found again where it was, in case the stop made it anew.
            QVERIFY(m_tour->show(stop));
            const QList<AccessibleTree::Node> again = AccessibleTree::showing(window);
            const auto found = std::find_if(again.cbegin(), again.cend(), [&node](const AccessibleTree::Node &other) {
                return other.path == node.path;
            });
            QVERIFY2(found != again.cend(), qPrintable(node.path + u" went away when the stop was shown again"));
            QObject *control = found->object;
            if (control->inherits("QQuickScrollBar")) {
                // A step along, as far as there is room.
                const qreal position = control->property("position").toReal();
                const qreal room = 1 - control->property("size").toReal();
                AccessibleTree::perform(control, action);
                const qreal moved = control->property("position").toReal() - position;
                const bool canMove = action == increase ? position < room : position > 0;
                QVERIFY2(canMove ? (action == increase ? moved > 0 : moved < 0) : qFuzzyIsNull(moved),
                         qPrintable(action + u" on " + node.path));
                m_pressed.append(control);
                ++checked;
                continue;
            }
            QVERIFY2(control->inherits("QQuickAbstractButton"), qPrintable(node.path + u" is no control"));
            const bool checkable = control->property("checkable").toBool();
            const bool wasChecked = control->property("checked").toBool();
            QSignalSpy clicked(control, clickSignal(control, action).constData());
            AccessibleTree::perform(control, action);
            // A dimmed control does nothing, as it does for a click.
            const int expected = control->property("enabled").toBool() ? 1 : 0;
            QVERIFY2(clicked.count() == expected, qPrintable(action + u" on " + node.path));
            if (checkable && expected == 1 && action == toggle) {
                QCOMPARE(control->property("checked").toBool(), !wasChecked);
            }
            if (checkable && !control->inherits("QQuickTabButton")) {
                AccessibleTree::perform(control, action); // back as it was
            }
            m_pressed.append(control);
            ++checked;
        }
        m_pressed.append(node.object);
    }
    QVERIFY2(checked > 0 || stop == u"settings: about", "nothing to act on");
}

QTEST_MAIN(tst_Accessibility)

#include "tst_Accessibility.moc"
