#pragma once

#include <QString>

/// The text with its diacritics removed (NFD, non-spacing marks dropped, NFC); case is kept: "Álvarez" -> "Alvarez".
QString foldDiacritics(const QString &text);

/// The digits of the text, in order: "+34 (600) 11-22" -> "346001122", so numbers written in any layout compare.
QString digitsOnly(QStringView text);
