#include "ScreenTour.h"

#include "app/HomeWindowViewModel.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QTest>
#include <QtQuickTest/quicktest.h>

#include <algorithm>
#include <functional>

namespace {

bool waitFor(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, 5000);
}

bool isOpen(QObject *popup)
{
    return popup && popup->property("opened").toBool();
}

void sendKey(QQuickItem *item, Qt::Key key)
{
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QCoreApplication::sendEvent(item, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
    QCoreApplication::sendEvent(item, &release);
}

// Contact rows showing their numbers to choose from fold them again.
void collapseRows(QQuickItem *item)
{
    if (item->property("showQuickActions").toBool()) {
        QMetaObject::invokeMethod(item, "collapse");
    }
    for (QQuickItem *child : item->childItems()) {
        collapseRows(child);
    }
}

void collectPopups(QQuickItem *item, QList<QObject *> &popups)
{
    // An open popup's item stands in the window's overlay; the popup object is its parent.
    if (item->inherits("QQuickPopupItem") && item->parent() && item->parent()->inherits("QQuickPopup")) {
        popups.append(item->parent());
    }
    for (QQuickItem *child : item->childItems()) {
        collectPopups(child, popups);
    }
}

} // namespace

ScreenTour::ScreenTour(QQuickWindow *mainWindow, HomeWindowViewModel &viewModel)
    : m_main(mainWindow)
    , m_viewModel(viewModel)
{}

struct ScreenTour::Stop
{
    const char *name;
    /// The section shown under it; the settings window's stops have none.
    const char *section;
    /// What brings it up over the section, when it is more than the section.
    std::function<QQuickWindow *(ScreenTour &)> open;
};

const QList<ScreenTour::Stop> &ScreenTour::table()
{
    // Popups opened by name, by a row asking for its menu, or by the main window's own functions.
    const auto popup = [](const char *name) {
        return [name](ScreenTour &tour) {
            return tour.openPopup(find(tour.m_main, QLatin1StringView(name))) ? tour.m_main.data() : nullptr;
        };
    };
    const auto rowMenu = [](const char *list) {
        return [list](ScreenTour &tour) -> QQuickWindow * {
            QQuickItem *item = row(find(tour.m_main, QLatin1StringView(list)), nullptr, {});
            if (!item) {
                return nullptr;
            }
            QMetaObject::invokeMethod(item, "menuRequested");
            return waitFor([&tour] { return !openPopups(tour.m_main).isEmpty(); }) ? tour.m_main.data() : nullptr;
        };
    };
    const auto windowFunction = [](const char *function, const char *popupName) {
        return [function, popupName](ScreenTour &tour) -> QQuickWindow * {
            QMetaObject::invokeMethod(tour.m_main, function);
            return waitFor([&] { return isOpen(find(tour.m_main, QLatin1StringView(popupName))); }) ? tour.m_main.data()
                                                                                                    : nullptr;
        };
    };
    const auto settingsTab = [](int tab) { return [tab](ScreenTour &tour) { return tour.showSettings(tab); }; };
    static const QList<Stop> stops{
        {"welcome", "welcome", {}},
        {"dialer", "dialer", {}},
        {"recents", "recents", {}},
        {"favorites", "favorites", {}},
        {"contacts", "contacts", {}},
        {"contact choice", "contacts",
         [](ScreenTour &tour) -> QQuickWindow * {
             QQuickItem *bob = row(find(tour.m_main, u"contactsList"_qs), "name", u"Bob Smith"_qs);
             if (!bob) {
                 return nullptr;
             }
             QMetaObject::invokeMethod(bob, "startAction", Q_ARG(QVariant, u"messages"_qs));
             return waitFor([bob] { return bob->property("showQuickActions").toBool(); }) ? tour.m_main.data()
                                                                                          : nullptr;
         }},
        {"weather forecast", "welcome", windowFunction("openWeatherPopover", "dailyWeatherPopOver")},
        {"launch menu", "welcome", popup("launchMenu")},
        {"configuration menu", "welcome", popup("configurationMenu")},
        {"view menu", "welcome", popup("viewMenu")},
        {"call menu", "welcome", popup("callMenu")},
        {"recent menu", "recents", rowMenu("recentsList")},
        {"contact menu", "contacts", rowMenu("contactsList")},
        {"favorite contact menu", "favorites", rowMenu("favoriteContacts")},
        {"link menu", "favorites", rowMenu("favoriteTelcos")},
        {"link editor", "favorites", windowFunction("openLinkEditor", "telcoEditor")},
        {"launch error", "welcome",
         [](ScreenTour &tour) -> QQuickWindow * {
             tour.m_viewModel.makeCallFromText(u"https://example.com/room"_qs);
             return waitFor([&tour] { return isOpen(find(tour.m_main, u"errorAlert"_qs)); }) ? tour.m_main.data()
                                                                                             : nullptr;
         }},
        {"settings: general", nullptr, settingsTab(0)},
        {"settings: quick actions", nullptr, settingsTab(1)},
        {"settings: reset", nullptr, settingsTab(2)},
        {"settings: about", nullptr, settingsTab(3)},
        {"link removal", "favorites",
         [](ScreenTour &tour) -> QQuickWindow * {
             QQuickItem *link = row(find(tour.m_main, u"favoriteTelcos"_qs), nullptr, {});
             if (!link) {
                 return nullptr;
             }
             sendKey(link, Qt::Key_Delete);
             return waitFor([&tour] { return isOpen(find(tour.m_main, u"removeConfirmation"_qs)); })
                        ? tour.m_main.data()
                        : nullptr;
         }},
        {"reset confirmation", nullptr,
         [](ScreenTour &tour) -> QQuickWindow * {
             QQuickWindow *settings = tour.showSettings(2);
             QObject *reset = settings ? find(settings, u"resetView"_qs) : nullptr;
             if (!reset) {
                 return nullptr;
             }
             QMetaObject::invokeMethod(reset, "ask", Q_ARG(QVariant, u"resetFavoriteTelcos"_qs));
             return waitFor([reset] { return isOpen(reset->property("alert").value<QObject *>()); }) ? settings
                                                                                                     : nullptr;
         }},
    };
    return stops;
}

QStringList ScreenTour::stops()
{
    QStringList names;
    for (const Stop &stop : table()) {
        names.append(QLatin1StringView(stop.name));
    }
    return names;
}

QObject *ScreenTour::find(QObject *root, const QString &objectName)
{
    if (!root) {
        return nullptr;
    }
    QList<QObject *> queue{root};
    QSet<QObject *> seen;
    while (!queue.isEmpty()) {
        QObject *object = queue.takeFirst();
        if (seen.contains(object)) {
            continue;
        }
        seen.insert(object);
        if (object != root && object->objectName() == objectName) {
            return object;
        }
        queue.append(object->children());
        if (auto *item = qobject_cast<QQuickItem *>(object)) {
            for (QQuickItem *child : item->childItems()) {
                queue.append(child);
            }
        }
        if (auto *window = qobject_cast<QQuickWindow *>(object)) {
            queue.append(window->contentItem());
        }
    }
    return nullptr;
}

QQuickItem *ScreenTour::row(QObject *list, const char *property, const QVariant &value)
{
    QQuickItem *found = nullptr;
    waitFor([&] {
        const int count = list ? list->property("count").toInt() : 0;
        for (int i = 0; i < count && !found; ++i) {
            QQuickItem *item = nullptr;
            QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem *, item), Q_ARG(int, i));
            if (item && (!property || item->property(property) == value)) {
                found = item;
            }
        }
        return found != nullptr;
    });
    return found;
}

QList<QObject *> ScreenTour::openPopups(QQuickWindow *window)
{
    QList<QObject *> popups;
    if (window) {
        collectPopups(window->contentItem(), popups);
    }
    return popups;
}

void ScreenTour::closePopups()
{
    for (QQuickWindow *window : {m_main.data(), m_settings.data()}) {
        for (QObject *popup : openPopups(window)) {
            QMetaObject::invokeMethod(popup, "close");
        }
        waitFor([window] { return openPopups(window).isEmpty(); });
    }
}

bool ScreenTour::showSection(const QString &section)
{
    QMetaObject::invokeMethod(m_main, "chooseSection", Q_ARG(QVariant, section));
    return waitFor([this, section] { return m_main->property("currentSection").toString() == section; });
}

bool ScreenTour::openPopup(QObject *popup)
{
    if (!popup) {
        return false;
    }
    QMetaObject::invokeMethod(popup, "open");
    return waitFor([popup] { return isOpen(popup); });
}

QQuickWindow *ScreenTour::showSettings(int tab)
{
    if (!m_settings || !m_settings->isVisible()) {
        QMetaObject::invokeMethod(m_main, "openSettings");
        for (QWindow *window : QGuiApplication::topLevelWindows()) {
            if (window->objectName() == u"settingsWindow" && window->isVisible()) {
                m_settings = qobject_cast<QQuickWindow *>(window);
            }
        }
    }
    if (!m_settings || !QTest::qWaitForWindowExposed(m_settings)) {
        return nullptr;
    }
    QObject *tabs = find(m_settings, u"settingsTabs"_qs);
    tabs->setProperty("currentIndex", tab);
    return m_settings;
}

QQuickWindow *ScreenTour::show(const QString &name)
{
    const auto &stops = table();
    const auto stop = std::find_if(stops.cbegin(), stops.cend(), [&name](const Stop &candidate) {
        return name == QLatin1StringView(candidate.name);
    });
    if (stop == stops.cend() || !m_main || !waitFor([this] { return m_main->property("loaded").toBool(); })) {
        qWarning("no stop \"%s\", or the main window is not built", qPrintable(name));
        return nullptr;
    }
    closePopups();
    collapseRows(m_main->contentItem());
    m_main->setProperty("sidebarShown", true);
    m_viewModel.setSearchTextForContacts(QString());
    m_viewModel.setSearchTextForRecents(QString());
    QQuickWindow *shown = m_main;
    if (stop->section && !showSection(QLatin1StringView(stop->section))) {
        shown = nullptr;
    } else if (stop->open) {
        shown = stop->open(*this);
    }
    if (!shown) {
        qWarning("the stop \"%s\" could not be shown", qPrintable(name));
        return nullptr;
    }
    // The window has the keyboard, as the one the user is looking at.
    shown->requestActivate();
    if (!QTest::qWaitForWindowActive(shown)) {
        qWarning("the window of \"%s\" could not be activated", qPrintable(name));
        return nullptr;
    }
    // What the stop brought up is laid out before it is looked at.
    if (!QQuickTest::qWaitForPolish(shown)) {
        qWarning("the window of \"%s\" was not laid out", qPrintable(name));
        return nullptr;
    }
    return shown;
}
