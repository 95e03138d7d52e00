#pragma once

#include <QPointer>
#include <QQuickWindow>
#include <QStringList>

class HomeWindowViewModel;

/// Takes the program's main window (made from Main.qml over a view model with a few calls, favourites and contacts)
/// through each of its screens, menus and dialogs, and the settings window through its tabs: what a user can bring on
/// screen, one stop at a time. Each stop starts from the same state (nothing open, the sidebar shown, no search).
class ScreenTour
{
public:
    ScreenTour(QQuickWindow *mainWindow, HomeWindowViewModel &viewModel);

    /// The stops, in an order in which those that delete something come last.
    static QStringList stops();
    /// Brings the stop on screen and returns the window that shows it, active and laid out; null (with a warning)
    /// when it could not.
    QQuickWindow *show(const QString &stop);
    /// Closes every menu, dialog and pop-over of the program's windows.
    void closePopups();
    /// The menus, dialogs and pop-overs the window shows.
    static QList<QObject *> openPopups(QQuickWindow *window);
    QQuickWindow *mainWindow() const { return m_main; }
    /// The settings window, once a stop has opened it.
    QQuickWindow *settingsWindow() const { return m_settings; }

    /// The object of that name below the item, looked for among its children of both kinds (items and objects).
    static QObject *find(QObject *root, const QString &objectName);
    /// The list's row whose property has that value, once the list has made it.
    static QQuickItem *row(QObject *list, const char *property, const QVariant &value);

private:
    struct Stop;
    static const QList<Stop> &table();
    bool showSection(const QString &section);
    QQuickWindow *showSettings(int tab);
    bool openPopup(QObject *popup);

    QPointer<QQuickWindow> m_main;
    QPointer<QQuickWindow> m_settings;
    HomeWindowViewModel &m_viewModel;
};
