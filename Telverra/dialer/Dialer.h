#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

/// The dialer's state: the number as typed, pasted or placed by other screens, and its two warnings.
struct Dialer
{
    Q_GADGET
    Q_PROPERTY(QString display MEMBER display)
    Q_PROPERTY(bool isInvalidNumberFromClipBoard MEMBER isInvalidNumberFromClipBoard)
    Q_PROPERTY(bool isInvalidNumber MEMBER isInvalidNumber)

public:
    QString display;
    bool isInvalidNumberFromClipBoard = false;
    bool isInvalidNumber = false;

    /// Stores the text as the display and tells whether it is a number that can be called; sets isInvalidNumber to
    /// the opposite. Linear in the length of the text.
    bool validate(const QString &text);

    /// The rule alone: one leading "+" dropped (when more follows), the launcher's cleaning, then a base-10 signed
    /// 64-bit integer with at most one sign of its own.
    static bool isValidNumber(const QString &text);

    /// A key of the pad: appends it ("+" instead when a long press on "0" came first) and validates.
    void pressKey(const QString &key, bool &longPressDetected);
    /// A long press that ended on a key: only "0" counts, arming the next key press to enter "+".
    static void longPress(const QString &key, bool &longPressDetected);
    /// Removes the last character (a whole grapheme) and validates.
    void deleteLast();

    /// The pad, top row first, laid out like a computer keypad: 7 8 9 / 4 5 6 / 1 2 3 / * 0 #.
    static const QList<QStringList> &keypadRows();

    friend bool operator==(const Dialer &, const Dialer &) = default;
};
