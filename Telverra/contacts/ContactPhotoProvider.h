#pragma once

#include "VCardContact.h"

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QQuickAsyncImageProvider>
#include <QThreadPool>

#include <functional>

/// Contact pictures for QML ("image://contactphoto/<version>/<identifier>"): the card's embedded picture decoded on a
/// thread of its own, cut to a circle of the size asked for, and kept in a small cache. Only the bytes the card holds
/// are read; a picture given as a web address is never fetched.
class ContactPhotoProvider : public QQuickAsyncImageProvider
{
public:
    /// Finds a contact's record by identifier; called from the decoding threads.
    using Lookup = std::function<SharedVCardContact(const QString &identifier)>;

    /// The side of a picture when the view asks for no size.
    static constexpr int defaultSide = 96;
    /// Pictures larger than this once decoded are refused (a hostile card could claim any size).
    static constexpr int maximumDecodedMegabytes = 32;

    explicit ContactPhotoProvider(Lookup lookup);
    ~ContactPhotoProvider() override;

    QQuickImageResponse *requestImageResponse(const QString &id, const QSize &requestedSize) override;

    /// The picture in these bytes as a circle of `side` pixels (transparent corners); a null image when the bytes are
    /// no picture.
    static QImage roundPicture(const QByteArray &bytes, int side);

private:
    Lookup m_lookup;
    QThreadPool m_decoders;
    QMutex m_cacheMutex;
    QCache<QString, QImage> m_cache; // by request, cost in kilobytes
};
