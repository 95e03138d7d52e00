#include "Clipboard.h"

#include "common/Trace.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>
#include <QTimer>
#include <QWindow>

#include <utility>

Clipboard::~Clipboard() = default;

namespace {

QClipboard *systemClipboard()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) ? QGuiApplication::clipboard() : nullptr;
}

bool onWayland()
{
    return QGuiApplication::platformName().startsWith(u"wayland");
}

// How a copy and a read stay true to the desktop's clipboard on Wayland.
//
// The compositor hands the clipboard (wl_data_device.selection) only to the client with the keyboard focus, sends it
// again each time that client gains the focus, and takes a copy (set_selection) only with the serial of an input
// event newer than that of the copy it replaces (GNOME's, also only from the focused client). Anything else it refuses
// (cancelled) or, for a stale serial, ignores without a word. Qt 6.4 sends the serial of the window's last key or
// button event (0 before the first), not that of the focus it gained; and while it has a copy of its own it answers
// every read with it, until the compositor cancels it. So a copy made without fresh input, such as after a launch that
// came from outside, is ignored by the compositor while Qt goes on reading it back as the clipboard: the wrong number
// is dialled.
//
// Hence the two rules:
// - Read only while a window of ours has the keyboard focus: then the compositor has told us the clipboard as it is,
//   and a copy of ours that Qt still holds is one the compositor took (by the second rule none is ever ignored, and
//   the compositor cancels ours when another program copies).
// - Copy only while a window of ours has the focus and the user has pressed a key or a button in it since it gained
//   the focus: that event's serial is newer than any copy made by another program, which could copy only while it
//   had the focus, before us. A copy asked for at another moment is held, and made at the first press in the window
//   once it is in front; it is dropped when the window loses the focus first or is not brought to the front soon.
//   A held copy is never read back: Qt only learns of it when it is made.
//
// X11 has neither limit: any client may read the selection at any time, and the server tells the owner when another
// client takes it (SelectionClear), so Qt never answers with a copy that is no longer there. There a copy is made at
// once and a read answered always, as before.
class WaylandCopyGate : public QObject
{
public:
    // How long a held copy waits for the window to come to the front.
    static constexpr int holdMilliseconds = 10000;

    static WaylandCopyGate &instance()
    {
        static QPointer<WaylandCopyGate> gate;
        if (!gate) {
            gate = new WaylandCopyGate(QCoreApplication::instance());
        }
        return *gate;
    }

    void copy(const QString &text)
    {
        if (QGuiApplication::focusWindow() && m_pressedSinceFocus) {
            m_held.reset();
            m_holdLimit.stop();
            place(text);
            return;
        }
        m_held = text;
        m_heldSawFocus = QGuiApplication::focusWindow() != nullptr;
        if (!m_heldSawFocus) {
            m_holdLimit.start();
        }
        Trace::line(u"clipboard: copy held until the window is in front and used: " + text);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::KeyPress:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::TouchBegin:
            if (watched->isWindowType() && QGuiApplication::focusWindow()) {
                m_pressedSinceFocus = true;
                if (m_held) {
                    // Before the press is handled: a copy that landed at once would be on the clipboard by now.
                    place(*std::exchange(m_held, std::nullopt));
                }
            }
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    explicit WaylandCopyGate(QObject *parent)
        : QObject(parent)
    {
        m_holdLimit.setSingleShot(true);
        m_holdLimit.setInterval(holdMilliseconds);
        connect(&m_holdLimit, &QTimer::timeout, this, [this] { drop(u"the window did not come to the front"_qs); });
        connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow *window) {
            const bool focused = window != nullptr;
            if (focused == m_focused) {
                return; // from one window of ours to another: the same focus
            }
            m_focused = focused;
            m_pressedSinceFocus = false;
            if (focused && m_held) {
                m_heldSawFocus = true;
                m_holdLimit.stop();
            } else if (!focused && m_held && m_heldSawFocus) {
                drop(u"the window lost the focus before it was used"_qs);
            }
        });
        m_focused = QGuiApplication::focusWindow() != nullptr;
        QCoreApplication::instance()->installEventFilter(this);
    }

    static void place(const QString &text)
    {
        QClipboard *clipboard = QGuiApplication::clipboard();
        clipboard->clear();
        clipboard->setText(text);
    }

    void drop(const QString &reason)
    {
        if (m_held) {
            Trace::line(u"clipboard: held copy dropped, " + reason + u": " + *m_held);
            m_held.reset();
        }
        m_holdLimit.stop();
    }

    bool m_focused = false;
    bool m_pressedSinceFocus = false;
    std::optional<QString> m_held;
    bool m_heldSawFocus = false;
    QTimer m_holdLimit;
};

} // namespace

bool SystemClipboard::isReadable() const
{
    return systemClipboard() && (!onWayland() || QGuiApplication::focusWindow());
}

std::optional<QString> SystemClipboard::plainText() const
{
    if (!isReadable()) {
        return std::nullopt;
    }
    const QMimeData *data = systemClipboard()->mimeData();
    if (!data || !data->hasText()) {
        return std::nullopt;
    }
    return data->text();
}

void SystemClipboard::setPlainText(const QString &text)
{
    QClipboard *clipboard = systemClipboard();
    if (!clipboard) {
        return;
    }
    if (onWayland()) {
        WaylandCopyGate::instance().copy(text);
        return;
    }
    clipboard->clear();
    clipboard->setText(text);
}

QString ClipboardText::meetingAddress(const QString &text)
{
    // What "\\s+$" removes, in one pass from the end: a regular expression backtracks quadratically over a long run of
    // white space that something else follows.
    qsizetype end = text.size();
    while (end > 0 && text[end - 1].isSpace()) {
        --end;
    }
    qsizetype start = 0;
    while (start < end && (text[start] == u'\t' || text[start].category() == QChar::Separator_Space)) {
        ++start;
    }
    return text.sliced(start, end - start);
}
