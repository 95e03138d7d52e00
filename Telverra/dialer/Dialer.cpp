#include "Dialer.h"

#include "calls/CallsManager.h"
#include "common/Trace.h"

#include <QTextBoundaryFinder>

#include <limits>

namespace {

// What a strict base-10 parse into a signed 64-bit integer accepts: one optional sign, then ASCII digits only,
// within range.
bool parsesAsInt64(QStringView text)
{
    qsizetype i = 0;
    bool negative = false;
    if (!text.isEmpty() && (text[0] == u'+' || text[0] == u'-')) {
        negative = text[0] == u'-';
        i = 1;
    }
    if (i == text.size()) {
        return false;
    }
    // Accumulate as a negative number so that the most negative value fits.
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    qint64 value = 0;
    for (; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < u'0' || c > u'9') {
            return false;
        }
        const int digit = c - u'0';
        if (value < (lowest + digit) / 10) {
            return false;
        }
        value = value * 10 - digit;
    }
    return negative || value != lowest;
}

} // namespace

bool Dialer::isValidNumber(const QString &text)
{
    if (text.isEmpty()) {
        return false;
    }
    QString rest = text;
    if (rest.startsWith(u'+') && rest.size() >= 2) {
        rest.remove(0, 1);
    }
    const QString cleaned = CallsManager::cleanNumber(rest);
    return !cleaned.isEmpty() && parsesAsInt64(cleaned);
}

bool Dialer::validate(const QString &text)
{
    display = text;
    const bool valid = isValidNumber(text);
    isInvalidNumber = !valid;
    return valid;
}

void Dialer::pressKey(const QString &key, bool &longPressDetected)
{
    Trace::line(key);
    if (longPressDetected) {
        longPressDetected = false;
        validate(display + u'+');
        return;
    }
    validate(display + key);
}

void Dialer::longPress(const QString &key, bool &longPressDetected)
{
    if (key == u"0") {
        Trace::line(QStringLiteral("long press detected !!!"));
        longPressDetected = true;
    }
}

void Dialer::deleteLast()
{
    QString text = display;
    if (!text.isEmpty()) {
        QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text);
        graphemes.toEnd();
        const qsizetype start = graphemes.toPreviousBoundary();
        text.truncate(start < 0 ? text.size() - 1 : start);
    }
    validate(text);
}

const QList<QStringList> &Dialer::keypadRows()
{
    static const QList<QStringList> rows = {
        {QStringLiteral("7"), QStringLiteral("8"), QStringLiteral("9")},
        {QStringLiteral("4"), QStringLiteral("5"), QStringLiteral("6")},
        {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3")},
        {QStringLiteral("*"), QStringLiteral("0"), QStringLiteral("#")},
    };
    return rows;
}
