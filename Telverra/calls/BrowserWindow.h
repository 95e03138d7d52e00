#pragma once

#include <QList>
#include <QString>

struct Tab
{
    QString title;
    QString url;
    friend bool operator==(const Tab &, const Tab &) = default;
};

/// One browser window: `name` is the whole text "Window ID: …" as the browser reported it.
struct BrowserWindow
{
    QString name;
    QList<Tab> tabs;
    friend bool operator==(const BrowserWindow &, const BrowserWindow &) = default;
};

/// The printed form of a window list, as the meeting search writes it.
QString printedForm(const QList<BrowserWindow> &windows);
