#pragma once

#include "VCardContact.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

#include <functional>

/// A tolerant reader of vCard 2.1, 3.0 and 4.0 as phones, mail programs and address books export them.
///
/// Linear in the size of the input. A property that cannot be read is dropped and its card kept; a card that cannot
/// be read does not spoil the other cards of the file. Remote pictures are never fetched.
class VCardReader
{
public:
    static constexpr qsizetype maximumFileSize = 64 * 1024 * 1024;
    /// Longest logical line, pictures aside.
    static constexpr qsizetype maximumLineLength = 1024 * 1024;
    /// Longest text kept in one value (a name, a number, an address).
    static constexpr qsizetype maximumValueLength = 64 * 1024;
    /// Largest picture kept, decoded.
    static constexpr qsizetype maximumPhotoSize = 16 * 1024 * 1024;

    /// The cards in the data. A card without a UID is given an identifier made from `source` and its position, so it
    /// stays the same as long as the file does.
    static QList<VCardContact> read(QByteArrayView data, const QString &source);
    /// Labels met in the cards read, so that every card with the same label shares one text.
    using Labels = QSet<QString>;
    /// The same, with the source's name made only when a card needs it; labels are shared through `labels` when given.
    static QList<VCardContact> read(QByteArrayView data, const std::function<QString()> &source,
                                    Labels *labels = nullptr);

    /// Reads a regular file of at most maximumFileSize bytes; anything else (a FIFO, a device, a larger file) yields
    /// no cards.
    static QList<VCardContact> readFile(const QString &path);
    /// Reads the file `name` of the folder open as `directory` (or AT_FDCWD) into `buffer`, whose storage is reused
    /// from call to call. Only a regular file of at most maximumFileSize bytes is read; a FIFO or a device is never
    /// waited on or read from.
    static bool readRegularFile(int directory, const char *name, QByteArray &buffer);

    /// Decodes quoted-printable text; a broken escape is kept as written and a final "=" is dropped.
    static QByteArray decodeQuotedPrintable(const QByteArray &encoded);
    /// Decodes text in the character set a CHARSET parameter names (any the platform knows: Shift_JIS, Big5, KOI8-R,
    /// Windows-1252 …); bytes that are no character become U+FFFD; an unknown set is read as UTF-8.
    static QString decodeCharset(QByteArrayView bytes, QByteArrayView charset);
};
