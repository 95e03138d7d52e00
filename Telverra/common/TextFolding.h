#pragma once

#include <QString>

/// The text with its diacritics removed (NFD, non-spacing marks dropped, NFC); case is kept: "Álvarez" -> "Alvarez".
QString foldDiacritics(const QString &text);

/// The text as searches compare it, on both sides: diacritics removed, case folded, and the letters that are no
/// base letter with a mark spelt as people type them without them (ø o, æ ae, œ oe, ß ss, ł l, đ d, þ th):
/// "bodo" finds "Bodø", "strasse" "Straße".
QString foldForSearch(const QString &text);

/// The digits of the text, in order: "+34 (600) 11-22" -> "346001122", so numbers written in any layout compare.
QString digitsOnly(QStringView text);
