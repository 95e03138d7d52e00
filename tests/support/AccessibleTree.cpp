#include "AccessibleTree.h"

#include <QQuickItem>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace AccessibleTree {
namespace {

bool isControl(QAccessible::Role role)
{
    switch (role) {
    case QAccessible::Window:
    case QAccessible::Dialog:
    case QAccessible::Pane:
    case QAccessible::Grouping:
    case QAccessible::Client:
    case QAccessible::List:
    case QAccessible::PopupMenu:
    case QAccessible::MenuBar:
    case QAccessible::ToolBar:
    case QAccessible::PageTabList:
    case QAccessible::NoRole:
        return false;
    default:
        return true;
    }
}

void collect(QAccessibleInterface *node, bool parentShowing, QStringList enclosing, const QString &path,
             QList<Node> &out)
{
    if (!node || !node->isValid()) {
        return;
    }
    Node entry;
    entry.object = node->object();
    entry.role = node->role();
    entry.name = node->text(QAccessible::Name);
    entry.description = node->text(QAccessible::Description);
    const QAccessible::State state = node->state();
    entry.showing = parentShowing && !state.invisible && !state.offscreen;
    if (QAccessibleActionInterface *actions = node->actionInterface()) {
        for (const QString &action : actions->actionNames()) {
            if (action != QAccessibleActionInterface::setFocusAction() && !entry.actions.contains(action)) {
                entry.actions.append(action);
            }
        }
    }
    entry.enclosingNames = enclosing;
    entry.path = path + u'/' + QString::number(int(entry.role), 16) + u'"' + entry.name + u'"';
    out.append(entry);
    if (isControl(entry.role) && !entry.name.isEmpty()) {
        enclosing.prepend(entry.name);
    }
    for (int i = 0; i < node->childCount(); ++i) {
        collect(node->child(i), entry.showing, enclosing, entry.path, out);
    }
}

void collectTexts(QQuickItem *item, bool fields, QStringList &texts)
{
    if (!item->isVisible() || qFuzzyIsNull(item->opacity())) {
        return;
    }
    const bool field = item->inherits("QQuickTextInput") || item->inherits("QQuickTextEdit");
    if (item->inherits("QQuickText") || (fields && field)) {
        for (const char *property : {"text", "placeholderText"}) {
            const QString text = item->property(property).toString();
            if (!text.trimmed().isEmpty()) {
                texts.append(text);
            }
        }
    }
    for (QQuickItem *child : item->childItems()) {
        collectTexts(child, fields, texts);
    }
}

} // namespace

QList<Node> walk(QQuickWindow *window)
{
    // As when a screen reader listens: Qt's controls offer themselves (their roles, names and actions) only then,
    // each one made since included.
    QAccessible::setActive(true);
    QList<Node> nodes;
    collect(QAccessible::queryAccessibleInterface(window), window && window->isVisible(), {}, QString(), nodes);
    return nodes;
}

QList<Node> showing(QQuickWindow *window)
{
    QList<Node> nodes = walk(window);
    nodes.removeIf([](const Node &node) { return !node.showing; });
    return nodes;
}

void perform(QObject *object, const QString &action)
{
    if (QAccessibleInterface *node = QAccessible::queryAccessibleInterface(object)) {
        if (QAccessibleActionInterface *actions = node->actionInterface()) {
            actions->doAction(action);
        }
    }
}

bool isPlainText(const QString &text)
{
    static const QRegularExpression markup(uR"(<\s*/?\s*[a-zA-Z][^>]*>|&[a-zA-Z]+;|&#\d+;|\*\*|__|\]\()"_qs);
    return !markup.match(text).hasMatch();
}

bool repeatsEnclosingName(const Node &node)
{
    const QString own = node.name.simplified();
    if (node.role != QAccessible::StaticText || own.isEmpty()) {
        return false;
    }
    return std::any_of(node.enclosingNames.cbegin(), node.enclosingNames.cend(), [&own](const QString &enclosing) {
        return enclosing.simplified().contains(own, Qt::CaseInsensitive);
    });
}

QStringList drawnTexts(QQuickWindow *window)
{
    QStringList texts;
    if (window && window->isVisible()) {
        collectTexts(window->contentItem(), false, texts);
    }
    texts.removeDuplicates();
    return texts;
}

QStringList visibleTexts(QQuickWindow *window)
{
    QStringList texts;
    if (!window || !window->isVisible()) {
        return texts;
    }
    collectTexts(window->contentItem(), true, texts);
    for (const Node &node : showing(window)) {
        if (!node.name.trimmed().isEmpty()) {
            texts.append(node.name);
        }
    }
    texts.removeDuplicates();
    return texts;
}

QString plainText(const QString &text)
{
    // Tags, Markdown emphasis, and a menu title's mnemonic mark ("&View" is drawn as "View", the V underlined).
    static const QRegularExpression marks(uR"(<[^>]*>|\*\*|__|&(?=\w))"_qs);
    static const QRegularExpression link(uR"(\[([^\]]*)\]\([^)]*\))"_qs);
    QString plain = text;
    plain.replace(link, u"\\1"_qs).remove(marks);
    return plain.simplified();
}

} // namespace AccessibleTree
