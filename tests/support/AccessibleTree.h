#pragma once

#include <QAccessible>
#include <QList>
#include <QPointer>
#include <QStringList>

class QQuickWindow;

/// A window's accessibility tree as a screen reader gets it (from the window's interface down, through
/// QAccessible::queryAccessibleInterface, as the desktop's accessibility bridge reads it), and the texts the window
/// shows.
namespace AccessibleTree {

struct Node
{
    QPointer<QObject> object;
    QAccessible::Role role = QAccessible::NoRole;
    QString name;
    QString description;
    /// The actions offered, but SetFocus (which every focusable item offers, and Qt carries out itself).
    QStringList actions;
    /// Neither hidden nor transparent, it or any of its ancestors.
    bool showing = false;
    /// The names of the controls around it, nearest first (windows, panes and groups are not controls).
    QStringList enclosingNames;
    /// Where it is, for messages: the roles and names from the window down.
    QString path;
};

/// Every node below the window, depth first.
QList<Node> walk(QQuickWindow *window);
/// The nodes a screen reader offers: those that are showing.
QList<Node> showing(QQuickWindow *window);
/// Performs an action on the object's accessible interface, as the bridge does for a screen reader.
void perform(QObject *object, const QString &action);
/// Whether the text carries no markup: no tags, entities, Markdown emphasis or links.
bool isPlainText(const QString &text);
/// Whether the node is a text that a control around it already says in its name (the same text read twice).
bool repeatsEnclosingName(const Node &node);
/// What the window's visible text items (labels) draw, each once, markup included.
QStringList drawnTexts(QQuickWindow *window);
/// Every text the window shows, each once: what its labels draw, what its text fields hold (placeholders included),
/// and the name of every showing node.
QStringList visibleTexts(QQuickWindow *window);
/// The text as read out: markup taken away and white space collapsed.
QString plainText(const QString &text);

} // namespace AccessibleTree
