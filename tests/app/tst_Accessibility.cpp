// Every screen, menu and dialog of the program as a screen reader and the keyboard meet them, in the real window over
// a real view model: each accessible action does what a click does, every text is read once as plain text, rows
// hidden by a search are not offered, the rows of every list answer the keyboard, and Tab follows the reading order.
// The screens are the stops of a tour through the window: a control added to any of them is checked without a case
// of its own.
#include "app/HomeWindowViewModel.h"
#include "contacts/ContactsDataService.h"
#include "favorites/FavoritesDataService.h"
#include "support/AppEnvironment.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTranslator>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest/quicktest.h>

#include <functional>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

const QString press = QAccessibleActionInterface::pressAction();
const QString toggle = QAccessibleActionInterface::toggleAction();
const QString increase = QAccessibleActionInterface::increaseAction();
const QString decrease = QAccessibleActionInterface::decreaseAction();

bool waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, 5000);
}

// The tst_PseudoTranslation run loads a pseudo-translation made at build time from the texts lupdate finds in the
// sources, which gives each as "⟦text"; this closes the mark after a third more: every translated text reads
// "⟦text··⟧".
class PseudoTranslator : public QTranslator
{
public:
    QString translate(const char *context, const char *text, const char *disambiguation, int n) const override
    {
        const QString marked = QTranslator::translate(context, text, disambiguation, n);
        return marked.isEmpty() ? marked : marked + QString((marked.size() + 1) / 3, u'·') + u'⟧';
    }
};

// Web pages a test would open in the desktop's browser are only noted.
class PageRecorder : public QObject
{
    Q_OBJECT
public Q_SLOTS:
    void open(const QUrl &) {}
};

// One node of the accessibility tree as a screen reader gets it.
struct Node
{
    QPointer<QObject> object;
    QAccessible::Role role = QAccessible::NoRole;
    QString name;
    QString description;
    // The actions offered, but SetFocus (which every focusable item offers, and Qt carries out itself).
    QStringList actions;
    // The names of the controls around it, nearest first (windows, panes and groups are not controls).
    QStringList enclosingNames;
    // Where it is, for messages: the roles and names from the window down.
    QString path;
};

void collect(QAccessibleInterface *node, QStringList enclosing, const QString &path, QList<Node> &out)
{
    // What is hidden or transparent is not showing, and neither is anything inside it.
    if (!node || !node->isValid() || node->state().invisible || node->state().offscreen) {
        return;
    }
    static const QList<QAccessible::Role> containers{
        QAccessible::Window,  QAccessible::Dialog,      QAccessible::Pane,      QAccessible::Grouping,
        QAccessible::Client,  QAccessible::List,        QAccessible::PopupMenu, QAccessible::MenuBar,
        QAccessible::ToolBar, QAccessible::PageTabList, QAccessible::NoRole};
    const QString name = node->text(QAccessible::Name);
    const QString here = path + u'/' + QString::number(int(node->role()), 16) + u'"' + name + u'"';
    Node entry{node->object(), node->role(), name, node->text(QAccessible::Description), {}, enclosing, here};
    if (QAccessibleActionInterface *actions = node->actionInterface()) {
        for (const QString &action : actions->actionNames()) {
            if (action != QAccessibleActionInterface::setFocusAction() && !entry.actions.contains(action)) {
                entry.actions.append(action);
            }
        }
    }
    out.append(entry);
    if (!containers.contains(entry.role) && !entry.name.isEmpty()) {
        enclosing.prepend(entry.name);
    }
    for (int i = 0; i < node->childCount(); ++i) {
        collect(node->child(i), enclosing, entry.path, out);
    }
}

// The nodes a screen reader offers, from the window's interface down, as the desktop's bridge reads them.
QList<Node> showing(QQuickWindow *window)
{
    // As when a screen reader listens: Qt's controls offer their roles, names and actions only then.
    QAccessible::setActive(true);
    QList<Node> nodes;
    if (window && window->isVisible()) {
        collect(QAccessible::queryAccessibleInterface(window), {}, QString(), nodes);
    }
    return nodes;
}

// Performs an action on the object's accessible interface, as the bridge does for a screen reader.
void perform(QObject *object, const QString &action)
{
    QAccessibleInterface *node = QAccessible::queryAccessibleInterface(object);
    if (QAccessibleActionInterface *actions = node ? node->actionInterface() : nullptr) {
        actions->doAction(action);
    }
}

// What the visible text items (labels) draw, markup included: those within what their clipping parents show (a list
// keeps its current row even when it is scrolled out of view).
void drawnTexts(QQuickItem *item, QRectF clip, QStringList &texts)
{
    const QRectF rect = item->mapRectToScene(item->boundingRect());
    if (!item->isVisible() || qFuzzyIsNull(item->opacity()) || !clip.intersects(rect)) {
        return;
    }
    clip = item->clip() ? clip.intersected(rect) : clip;
    if (item->inherits("QQuickText") && !item->property("text").toString().trimmed().isEmpty()) {
        texts.append(item->property("text").toString());
    }
    for (QQuickItem *child : item->childItems()) {
        drawnTexts(child, clip, texts);
    }
}

// The text as read out: markup taken away and white space collapsed. A menu title's mnemonic mark ("&View") is
// drawn as an underline.
QString plainText(QString text)
{
    static const QRegularExpression marks(uR"(<[^>]*>|\*\*|__|&(?=\w))"_qs);
    static const QRegularExpression link(uR"(\[([^\]]*)\]\([^)]*\))"_qs);
    return text.replace(link, u"\\1"_qs).remove(marks).simplified();
}

// The object of that name below the root, looked for among its children of both kinds (items and objects).
QObject *find(QObject *root, const QString &objectName)
{
    QList<QObject *> queue{root};
    QSet<QObject *> seen;
    while (!queue.isEmpty()) {
        QObject *object = queue.takeFirst();
        if (!object || seen.contains(object)) {
            continue;
        }
        seen.insert(object);
        if (object != root && object->objectName() == objectName) {
            return object;
        }
        queue.append(object->children());
        if (auto *item = qobject_cast<QQuickItem *>(object)) {
            queue.append(QList<QObject *>(item->childItems().cbegin(), item->childItems().cend()));
        }
        if (auto *window = qobject_cast<QQuickWindow *>(object)) {
            queue.append(window->contentItem());
        }
    }
    return nullptr;
}

// The list's row whose property has that value (the first row without a property), once the list has made it.
QQuickItem *row(QObject *list, const char *property = nullptr, const QVariant &value = {})
{
    QQuickItem *found = nullptr;
    waitFor([&] {
        for (int i = 0; list && i < list->property("count").toInt() && !found; ++i) {
            QQuickItem *item = nullptr;
            QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem *, item), Q_ARG(int, i));
            found = item && (!property || item->property(property) == value) ? item : nullptr;
        }
        return found != nullptr;
    });
    return found;
}

// Visits the item and everything below it.
void walk(QQuickItem *item, const std::function<void(QQuickItem *)> &visit)
{
    for (QQuickItem *child : item ? item->childItems() : QList<QQuickItem *>()) {
        walk(child, visit);
    }
    if (item) {
        visit(item);
    }
}

// The menus, dialogs and pop-overs the window shows: an open popup's item stands in the window's overlay.
QList<QObject *> openPopups(QQuickWindow *window)
{
    QList<QObject *> popups;
    walk(window ? window->contentItem() : nullptr, [&popups](QQuickItem *item) {
        if (item->inherits("QQuickPopupItem") && item->parent() && item->parent()->inherits("QQuickPopup")) {
            popups.append(item->parent());
        }
    });
    return popups;
}

bool isOpen(QObject *popup)
{
    return popup && popup->property("opened").toBool();
}

} // namespace

class tst_Accessibility : public QObject
{
    Q_OBJECT
public:
    tst_Accessibility()
    {
        // A menu or pop-over opened by its own open(), or by the window's function of that name.
        const auto popup = [this](const char *name, const char *function = nullptr) {
            return [this, name, function] {
                QObject *target = function ? m_main.get() : find(m_main.get(), QLatin1StringView(name));
                QMetaObject::invokeMethod(target, function ? function : "open");
                return whenOpen(name);
            };
        };
        const auto rowMenuOf = [this](const char *list) { return [this, list] { return rowMenu(list); }; };
        const auto settingsTab = [this](int tab) { return [this, tab] { return showSettings(tab); }; };
        m_stops = {
            {u"welcome"_qs, u"welcome"_qs, {}},
            {u"dialer"_qs, u"dialer"_qs, {}},
            {u"recents"_qs, u"recents"_qs, {}},
            {u"favorites"_qs, u"favorites"_qs, {}},
            {u"contacts"_qs, u"contacts"_qs, {}},
            {u"contact choice"_qs, u"contacts"_qs,
             [this]() -> QQuickWindow * {
                 QQuickItem *bob = row(find(m_main.get(), u"contactsList"_qs), "name", u"Bob Smith"_qs);
                 QMetaObject::invokeMethod(bob, "startAction", Q_ARG(QVariant, u"messages"_qs));
                 return bob && waitFor([bob] { return bob->property("showQuickActions").toBool(); }) ? m_main.get()
                                                                                                     : nullptr;
             }},
            {u"weather forecast"_qs, u"welcome"_qs, popup("dailyWeatherPopOver", "openWeatherPopover"), false},
            {u"launch menu"_qs, u"welcome"_qs, popup("launchMenu"), false},
            {u"configuration menu"_qs, u"welcome"_qs, popup("configurationMenu"), false},
            {u"view menu"_qs, u"welcome"_qs, popup("viewMenu"), false},
            {u"call menu"_qs, u"welcome"_qs, popup("callMenu"), false},
            {u"recent menu"_qs, u"recents"_qs, rowMenuOf("recentsList"), false},
            {u"contact menu"_qs, u"contacts"_qs, rowMenuOf("contactsList"), false},
            {u"favorite contact menu"_qs, u"favorites"_qs, rowMenuOf("favoriteContacts"), false},
            {u"link menu"_qs, u"favorites"_qs, rowMenuOf("favoriteTelcos"), false},
            {u"link editor"_qs, u"favorites"_qs, popup("telcoEditor", "openLinkEditor")},
            {u"launch error"_qs, u"welcome"_qs,
             [this] {
                 m_environment->viewModel->makeCallFromText(u"https://example.com/room"_qs);
                 return whenOpen("errorAlert");
             }},
            {u"settings: general"_qs, {}, settingsTab(0)},
            {u"settings: quick actions"_qs, {}, settingsTab(1)},
            {u"settings: reset"_qs, {}, settingsTab(2)},
            {u"settings: about"_qs, {}, settingsTab(3), false},
            // Those that delete something come last.
            {u"link removal"_qs, u"favorites"_qs,
             [this] {
                 if (QQuickItem *link = row(find(m_main.get(), u"favoriteTelcos"_qs))) {
                     QKeyEvent deletePress(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
                     QCoreApplication::sendEvent(link, &deletePress);
                 }
                 return whenOpen("removeConfirmation");
             }},
            {u"reset confirmation"_qs,
             {},
             [this]() -> QQuickWindow * {
                 QQuickWindow *settings = showSettings(2);
                 QObject *reset = settings ? find(settings, u"resetView"_qs) : nullptr;
                 QMetaObject::invokeMethod(reset, "ask", Q_ARG(QVariant, u"resetFavoriteTelcos"_qs));
                 return reset && waitFor([reset] { return isOpen(reset->property("alert").value<QObject *>()); })
                            ? settings
                            : nullptr;
             }},
        };
    }

private:
    // What a user can bring on screen, one stop at a time: a section of the main window, and what opens over it.
    struct Stop
    {
        QString name;
        QString section; // empty for the settings window's stops
        std::function<QQuickWindow *()> open;
        bool tabOrder = true; // menus and pop-overs keep no Tab order of their own
    };
    QQuickWindow *whenOpen(const char *popupName)
    {
        return waitFor([&] { return isOpen(find(m_main.get(), QLatin1StringView(popupName))); }) ? m_main.get()
                                                                                                 : nullptr;
    }

    QQuickWindow *rowMenu(const char *list)
    {
        QQuickItem *item = row(find(m_main.get(), QLatin1StringView(list)));
        QMetaObject::invokeMethod(item, "menuRequested");
        return item && waitFor([this] { return !openPopups(m_main.get()).isEmpty(); }) ? m_main.get() : nullptr;
    }

    QQuickWindow *showSettings(int tab)
    {
        if (!m_settings || !m_settings->isVisible()) {
            QMetaObject::invokeMethod(m_main.get(), "openSettings");
            for (QWindow *window : QGuiApplication::topLevelWindows()) {
                if (window->objectName() == u"settingsWindow" && window->isVisible()) {
                    m_settings = qobject_cast<QQuickWindow *>(window);
                }
            }
        }
        if (!m_settings || !QTest::qWaitForWindowExposed(m_settings)) {
            return nullptr;
        }
        find(m_settings, u"settingsTabs"_qs)->setProperty("currentIndex", tab);
        return m_settings;
    }

    // Brings the stop on screen from the same state each time (nothing open, no row unfolded, the sidebar shown, no
    // search) and returns the window that shows it, active and laid out.
    QQuickWindow *show(const QString &name)
    {
        const auto stop =
            std::find_if(m_stops.cbegin(), m_stops.cend(), [&name](const Stop &s) { return s.name == name; });
        if (stop == m_stops.cend() || !waitFor([this] { return m_main->property("loaded").toBool(); })) {
            return nullptr;
        }
        for (QQuickWindow *window : {m_main.get(), m_settings.data()}) {
            for (QObject *popup : openPopups(window)) {
                QMetaObject::invokeMethod(popup, "close");
            }
            waitFor([window] { return openPopups(window).isEmpty(); });
        }
        // Contact rows showing their numbers to choose from fold them again.
        walk(m_main->contentItem(), [](QQuickItem *item) {
            if (item->property("showQuickActions").toBool()) {
                QMetaObject::invokeMethod(item, "collapse");
            }
        });
        m_main->setProperty("sidebarShown", true);
        m_environment->viewModel->setSearchTextForContacts(QString());
        m_environment->viewModel->setSearchTextForRecents(QString());
        QQuickWindow *shown = m_main.get();
        if (!stop->section.isEmpty()) {
            QMetaObject::invokeMethod(m_main.get(), "chooseSection", Q_ARG(QVariant, stop->section));
            if (!waitFor([this, stop] { return m_main->property("currentSection").toString() == stop->section; })) {
                return nullptr;
            }
        }
        if (stop->open) {
            shown = stop->open();
        }
        // The window has the keyboard, as the one the user is looking at, and what the stop brought up is laid out.
        if (shown) {
            shown->requestActivate();
        }
        return shown && QTest::qWaitForWindowActive(shown) && QQuickTest::qWaitForPolish(shown) ? shown : nullptr;
    }

    // A screen reader reads every text the window draws, once, without markup.
    void checkTexts(QQuickWindow *window)
    {
        static const QRegularExpression markup(uR"(<\s*/?\s*[a-zA-Z][^>]*>|&[a-zA-Z]+;|&#\d+;|\*\*|__|\]\()"_qs);
        QString read;
        for (const Node &node : showing(window)) {
            QVERIFY2(!markup.match(node.name).hasMatch(), qPrintable(node.path));
            // A text that a control around it already says in its name is read twice.
            const QString own = node.name.simplified();
            QVERIFY2(node.role != QAccessible::StaticText || own.isEmpty() ||
                         std::none_of(node.enclosingNames.cbegin(), node.enclosingNames.cend(),
                                      [&own](const QString &name) { return name.contains(own, Qt::CaseInsensitive); }),
                     qPrintable(node.path));
            read += node.name.simplified() + u'\n' + node.description.simplified() + u'\n';
        }
        // Glyphs that stand for a picture ("✆" on the call button) are said by their control's name instead.
        static const QRegularExpression words(uR"([\p{L}\p{N}])"_qs);
        QStringList drawn;
        drawnTexts(window->contentItem(), QRectF(QPointF(), window->size()), drawn);
        for (const QString &text : drawn) {
            const QString plain = plainText(text);
            QVERIFY2(!plain.contains(words) || read.contains(plain, Qt::CaseInsensitive), qPrintable(text));
        }
    }

    // Under the pseudo-translation, a word on screen or in the accessibility tree outside the marks escaped the
    // translation, and a Spanish user would read it in English. The user's data, and the locale's days, need none.
    void checkTranslated(QQuickWindow *window)
    {
        QStringList data =
            u"Ana García AG Bob Smith BS Dee Dash DD dee example org Standup https meet jit si Telverra La "
            u"Laguna Spain"_qs.split(u' ');
        for (int day = 1; day <= 12; ++day) {
            data << QLocale().dayName(day % 7 + 1) << QLocale().dayName(day % 7 + 1, QLocale::ShortFormat)
                 << QLocale().monthName(day, QLocale::ShortFormat);
        }
        static const QRegularExpression marked(u"⟦[^⟦⟧]*⟧"_qs);
        static const QRegularExpression notLetters(uR"([^\p{L}]+)"_qs);
        QStringList texts;
        drawnTexts(window->contentItem(), QRectF(QPointF(), window->size()), texts);
        for (const Node &node : showing(window)) {
            texts << node.name << node.description;
        }
        QStringList untranslated;
        for (const QString &text : texts) {
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
        QVERIFY2(untranslated.isEmpty(), qPrintable(u"not translated:\n"_qs + untranslated.join(u'\n')));
    }

    // Tab goes down the page and from one column to the next, never back up: each stop lies below the one before, to
    // its right, or inside it (a list, then the buttons of its current row). Every stop is on screen and has a name.
    void checkTabOrder(QQuickWindow *window)
    {
        // A dialog keeps Tab inside itself.
        QQuickItem *start = window->contentItem();
        for (QObject *popup : openPopups(window)) {
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
        const auto describe = [](QQuickItem *item) -> QString {
            QAccessibleInterface *node = QAccessible::queryAccessibleInterface(item);
            return QString::fromLatin1(item->metaObject()->className()) + u" \"" +
                   (node ? node->text(QAccessible::Name) : QString()) + u"\" " + item->objectName();
        };
        const qreal slack = 4;
        for (qsizetype i = 0; i < chain.size(); ++i) {
            QQuickItem *item = chain.at(i);
            QAccessibleInterface *node = QAccessible::queryAccessibleInterface(item);
            QVERIFY2(item->isVisible() &&
                         QRectF(QPointF(), window->size()).intersects(item->mapRectToScene(item->boundingRect())),
                     qPrintable(describe(item)));
            QVERIFY2(node && !node->text(QAccessible::Name).trimmed().isEmpty(), qPrintable(describe(item)));
            if (i == 0) {
                continue;
            }
            const QRectF before = chain.at(i - 1)->mapRectToScene(chain.at(i - 1)->boundingRect());
            const QRectF after = item->mapRectToScene(item->boundingRect());
            const bool inside = before.adjusted(-slack, -slack, slack, slack).contains(after);
            const bool below = after.top() >= before.bottom() - slack;
            const bool onTheRight = after.left() >= before.right() - slack &&
                                    (after.top() < before.bottom() || after.left() >= before.right() + slack);
            QVERIFY2(inside || below || onTheRight, qPrintable(describe(chain.at(i - 1)) + u" then " + describe(item)));
        }
    }

    // Whatever a click works offers an action and says what it is, and the action does what the click does. The
    // window's own parts (toolbar, sidebar, menu bar) are checked once, at the first stop that shows them.
    void checkActions(const QString &stop, QQuickWindow *window, int &checked)
    {
        for (const Node &node : showing(window)) {
            if (!node.object || m_pressed.contains(node.object)) {
                continue;
            }
            m_pressed.append(node.object);
            QVERIFY2(!node.actions.isEmpty() || !node.object->inherits("QQuickAbstractButton"),
                     qPrintable(node.path + u" offers no action"));
            QVERIFY2(node.actions.isEmpty() || !node.name.trimmed().isEmpty(), qPrintable(node.path + u" has no name"));
            for (const QString &action : node.actions) {
                QVERIFY2(QStringList({press, toggle, increase, decrease}).contains(action),
                         qPrintable(action + u" on " + node.path));
                // Each action starts from the stop as it first showed (an earlier one may have opened or changed it);
                // the control is found again where it was, in case the stop made it anew.
                QVERIFY2(show(stop), "the stop could not be shown again");
                const QList<Node> again = showing(window);
                const auto found = std::find_if(again.cbegin(), again.cend(),
                                                [&node](const Node &other) { return other.path == node.path; });
                QObject *control = found != again.cend() ? found->object.data() : nullptr;
                const QString what = action + u" on " + node.path;
                ++checked;
                if (control && control->inherits("QQuickScrollBar")) {
                    // A step along, as far as there is room.
                    const qreal position = control->property("position").toReal();
                    const bool canMove =
                        action == increase ? position < 1 - control->property("size").toReal() : position > 0;
                    perform(control, action);
                    const qreal moved =
                        (control->property("position").toReal() - position) * (action == increase ? 1 : -1);
                    QVERIFY2(canMove ? moved > 0 : qFuzzyIsNull(moved), qPrintable(what));
                    continue;
                }
                QVERIFY2(control && control->inherits("QQuickAbstractButton"),
                         qPrintable(what + u": gone or no control"));
                const bool wasChecked = control->property("checked").toBool();
                // A click sends a row's activation, else the button's click (or, for Toggle, its toggle).
                QSignalSpy clicked(control, control->metaObject()->indexOfSignal("activated()") >= 0
                                                ? SIGNAL(activated())
                                            : action == toggle ? SIGNAL(toggled())
                                                               : SIGNAL(clicked()));
                perform(control, action);
                // A dimmed control does nothing, as it does for a click.
                const bool enabled = control->property("enabled").toBool();
                QVERIFY2(clicked.count() == (enabled ? 1 : 0), qPrintable(what));
                if (control->property("checkable").toBool()) {
                    QVERIFY2(!enabled || action != toggle || control->property("checked").toBool() != wasChecked,
                             qPrintable(what));
                    if (!control->inherits("QQuickTabButton")) {
                        perform(control, action); // back as it was
                    }
                }
            }
        }
    }

    QList<Stop> m_stops;
    std::unique_ptr<AppEnvironment> m_environment;
    std::unique_ptr<QQmlEngine> m_engine;
    std::unique_ptr<QQuickWindow> m_main;
    QPointer<QQuickWindow> m_settings;
    PageRecorder m_pages;
    QList<QPointer<QObject>> m_pressed;

private Q_SLOTS:
    void initTestCase()
    {
        static PseudoTranslator pseudoTranslation; // before the first text is made
        if (!qEnvironmentVariableIsEmpty("TELVERRA_PSEUDO_QM")) {
            QVERIFY(pseudoTranslation.load(qEnvironmentVariable("TELVERRA_PSEUDO_QM")) &&
                    QCoreApplication::installTranslator(&pseudoTranslation));
        }
        QQuickStyle::setStyle(u"Fusion"_qs); // the program's
        QDesktopServices::setUrlHandler(u"https"_qs, &m_pages, "open");
        m_environment = std::make_unique<AppEnvironment>();
        QVERIFY(m_environment->valid);
        QTRY_COMPARE_WITH_TIMEOUT(m_environment->viewModel->contactsDataService().property("count").toInt(), 4, 10000);
        m_engine = std::make_unique<QQmlEngine>();
        m_environment->prepareEngine(*m_engine);
        QQmlComponent component(m_engine.get(), QUrl(u"qrc:/qt/qml/Telverra/app/Main.qml"_qs));
        m_main.reset(qobject_cast<QQuickWindow *>(component.createWithInitialProperties(
            {{u"viewModel"_qs, QVariant::fromValue(m_environment->viewModel.get())}})));
        QVERIFY2(m_main, qPrintable(component.errorString()));
        QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
    }

    // Every test starts with a few calls, two saved links and a favourite contact (earlier tests may have removed
    // them).
    void init()
    {
        HomeWindowViewModel &viewModel = *m_environment->viewModel;
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
        m_environment->workspace.opened.clear();
    }

    void everyStop_data()
    {
        QTest::addColumn<QString>("stop");
        for (const Stop &stop : m_stops) {
            QTest::newRow(qPrintable(stop.name)) << stop.name;
        }
    }

    // At every stop the texts are read, Tab follows the reading order, and every action does what a click does.
    void everyStop()
    {
        QFETCH(QString, stop);
        QQuickWindow *window = show(stop);
        QVERIFY2(window, "the stop could not be shown");
        if (!qEnvironmentVariableIsEmpty("TELVERRA_PSEUDO_QM")) {
            return checkTranslated(window); // the tst_PseudoTranslation run
        }
        checkTexts(window);
        if (!QTest::currentTestFailed() && std::find_if(m_stops.cbegin(), m_stops.cend(), [&stop](const Stop &s) {
                                               return s.name == stop;
                                           })->tabOrder) {
            checkTabOrder(window);
        }
        int checked = 0;
        if (!QTest::currentTestFailed()) {
            checkActions(stop, window, checked);
        }
        QVERIFY2(QTest::currentTestFailed() || checked > 0 || stop == u"settings: about", "nothing to act on");
    }

    void rowsHiddenByASearchAreNotOffered_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("list");
        QTest::addColumn<QString>("search");
        QTest::addColumn<QString>("everyRowSays");
        QTest::newRow("contacts") << u"contacts"_qs << u"Contacts"_qs << u"smi"_qs << u"Smith"_qs;
        QTest::newRow("recents") << u"recents"_qs << u"History"_qs << u"600 101"_qs << u"600 101"_qs;
    }

    void rowsHiddenByASearchAreNotOffered()
    {
        QFETCH(QString, section);
        QFETCH(QString, list);
        QFETCH(QString, search);
        QFETCH(QString, everyRowSays);
        QQuickWindow *window = show(section);
        QVERIFY(window);
        const auto rows = [window, list] {
            QStringList names;
            for (const Node &node : showing(window)) {
                if (node.role == QAccessible::ListItem && node.path.contains(u"\"" + list + u"\"/")) {
                    names.append(node.name);
                }
            }
            return names;
        };
        QTRY_VERIFY(rows().size() >= 3); // every row was made before the search hides some
        const auto setSearch = section == u"contacts" ? &HomeWindowViewModel::setSearchTextForContacts
                                                      : &HomeWindowViewModel::setSearchTextForRecents;
        ((*m_environment->viewModel).*setSearch)(search);
        QTRY_VERIFY2(!rows().isEmpty() && rows().filter(everyRowSays).size() == rows().size(),
                     qPrintable(rows().join(u" | ")));
    }

    void rowsAnswerTheKeyboardAndPress_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("list");
        QTest::addColumn<QString>("rowName"); // empty: the first row
        QTest::addColumn<int>("key");         // 0: the screen reader's Press
        QTest::addColumn<QString>("expected");
        const QList<std::tuple<const char *, const char *, const char *, QString, bool>> lists{
            {"recents", "recents", "recentsList", {}, true},
            {"contacts", "contacts", "contactsList", u"Ana García"_qs, true},
            {"favourite contacts", "favorites", "favoriteContacts", u"Ana García"_qs, false},
            {"saved links", "favorites", "favoriteTelcos", {}, true},
        };
        for (const auto &[tag, section, list, rowName, hasMenu] : lists) {
            for (const auto &[way, key] :
                 {std::pair{"Return", int(Qt::Key_Return)}, std::pair{"Space", int(Qt::Key_Space)},
                  std::pair{"Press", 0}, std::pair{"Menu key", int(Qt::Key_Menu)}}) {
                if (key != Qt::Key_Menu || hasMenu) {
                    QTest::addRow("%s, %s", tag, way)
                        << QString::fromLatin1(section) << QString::fromLatin1(list) << rowName << key
                        << (key == Qt::Key_Menu ? u"menu"_qs : u"launch"_qs);
                }
            }
        }
        QTest::newRow("sidebar, Down then Space")
            << u"dialer"_qs << u"sidebar-dialer"_qs << QString() << int(Qt::Key_Down) << u"recents"_qs;
        QTest::newRow("sidebar, Press") << u"dialer"_qs << u"sidebar-contacts"_qs << QString() << 0 << u"contacts"_qs;
    }

    void rowsAnswerTheKeyboardAndPress()
    {
        QFETCH(QString, section);
        QFETCH(QString, list);
        QFETCH(QString, rowName);
        QFETCH(int, key);
        QFETCH(QString, expected);
        QQuickWindow *window = show(section);
        QVERIFY(window);
        auto *target = qobject_cast<QQuickItem *>(find(window, list));
        QVERIFY(target);
        QQuickItem *item = target;
        if (target->inherits("QQuickListView")) {
            item = row(target, rowName.isEmpty() ? nullptr : "name", rowName);
            QVERIFY(item);
            target->setProperty("currentIndex", item->property("index"));
        }
        // The keyboard focus where Tab and the arrows would have put it.
        target->forceActiveFocus(Qt::TabFocusReason);
        QVERIFY(item->isVisible());
        const qsizetype launches = m_environment->workspace.opened.size();
        if (key == 0) {
            perform(item, press);
        } else {
            QTest::keyClick(window, Qt::Key(key));
            if (key == Qt::Key_Down) {
                QTest::keyClick(window, Qt::Key_Space);
            }
        }
        if (expected == u"launch") {
            QTRY_COMPARE(m_environment->workspace.opened.size(), launches + 1);
        } else if (expected == u"menu") {
            QTRY_VERIFY(!openPopups(window).isEmpty());
        } else {
            QTRY_COMPARE(window->property("currentSection").toString(), expected);
        }
    }
};

QTEST_MAIN(tst_Accessibility)

#include "tst_Accessibility.moc"
