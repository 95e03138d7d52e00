#include "CursorBlinkTimeout.h"

#include <QEvent>
#include <QGuiApplication>
#include <QStyleHints>

CursorBlinkTimeout::CursorBlinkTimeout(std::chrono::milliseconds timeout, QObject *parent)
    : QObject(parent)
    , m_desktopFlashTime(QGuiApplication::styleHints()->cursorFlashTime())
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(timeout);
    connect(&m_timer, &QTimer::timeout, this, [this] { setBlinking(false); });
    if (m_desktopFlashTime > 0) {
        QCoreApplication::instance()->installEventFilter(this);
        m_timer.start();
    }
}

CursorBlinkTimeout::~CursorBlinkTimeout()
{
    setBlinking(true);
}

bool CursorBlinkTimeout::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
        // Seen once for the window and again for the item it reaches: restarting a running timer costs nothing.
        setBlinking(true);
        m_timer.start();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void CursorBlinkTimeout::setBlinking(bool blinking)
{
    if (m_stopped == !blinking) {
        return;
    }
    m_stopped = !blinking;
    // A flash time of 0 makes every text field draw its cursor steadily, at once, the one in focus included.
    QGuiApplication::styleHints()->setCursorFlashTime(blinking ? m_desktopFlashTime : 0);
}
