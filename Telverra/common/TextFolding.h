#pragma once

#include <QString>

/// The text with its diacritics removed (NFD, non-spacing marks dropped, NFC); case is kept: "Álvarez" -> "Alvarez".
QString foldDiacritics(const QString &text);
