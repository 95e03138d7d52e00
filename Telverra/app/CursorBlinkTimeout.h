#pragma once

#include <QObject>
#include <QTimer>

#include <chrono>

/// Stops the text cursor's blinking once the keyboard and the mouse have been left alone for a while; the cursor
/// stays shown, and the next key press or click makes it blink again (GNOME's cursor-blink-timeout). A focused text
/// field would otherwise redraw its window twice a second for as long as the window stays open. Works as the
/// application's event filter.
class CursorBlinkTimeout : public QObject
{
    Q_OBJECT
public:
    static constexpr std::chrono::milliseconds defaultTimeout{10000};

    /// Installs itself on the application; the cursor stops blinking `timeout` after the last input.
    explicit CursorBlinkTimeout(std::chrono::milliseconds timeout = defaultTimeout, QObject *parent = nullptr);
    /// The cursor blinks again, as the desktop has it.
    ~CursorBlinkTimeout() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setBlinking(bool blinking);

    QTimer m_timer;
    int m_desktopFlashTime; // what the desktop asks for, in milliseconds (0: no blinking at all)
    bool m_stopped = false;
};
