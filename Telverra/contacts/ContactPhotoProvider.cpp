#include "ContactPhotoProvider.h"

#include <QBuffer>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>
#include <QRunnable>
#include <QUrl>

namespace {

// Decodes on a pool thread and hands the picture over through a queued signal, so a response the view has dropped
// meanwhile is simply never told.
class DecodeJob : public QObject, public QRunnable
{
    Q_OBJECT
public:
    explicit DecodeJob(std::function<QImage()> decode)
        : m_decode(std::move(decode))
    {}
    void run() override { Q_EMIT decoded(m_decode()); }

Q_SIGNALS:
    void decoded(const QImage &image);

private:
    std::function<QImage()> m_decode;
};

class PhotoResponse : public QQuickImageResponse
{
public:
    explicit PhotoResponse(DecodeJob *job)
    {
        connect(job, &DecodeJob::decoded, this, [this](const QImage &image) {
            m_image = image;
            Q_EMIT finished();
        });
    }
    QQuickTextureFactory *textureFactory() const override
    {
        return QQuickTextureFactory::textureFactoryForImage(m_image);
    }
    QString errorString() const override { return m_image.isNull() ? QStringLiteral("No picture") : QString(); }

private:
    QImage m_image;
};

} // namespace

ContactPhotoProvider::ContactPhotoProvider(Lookup lookup)
    : m_lookup(std::move(lookup))
    , m_cache(8 * 1024)
{
    m_decoders.setMaxThreadCount(1);
}

ContactPhotoProvider::~ContactPhotoProvider()
{
    m_decoders.waitForDone();
}

QImage ContactPhotoProvider::roundPicture(const QByteArray &bytes, int side)
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    reader.setAllocationLimit(maximumDecodedMegabytes);
    const QSize size = reader.size();
    if (size.isValid() && !size.isEmpty()) {
        // Decoded straight at about the size shown (JPEG scales while decoding), covering the circle.
        reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatioByExpanding));
    }
    const QImage picture = reader.read();
    if (picture.isNull()) {
        return {};
    }
    QImage round(side, side, QImage::Format_ARGB32_Premultiplied);
    round.fill(Qt::transparent);
    QPainter painter(&round);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    QPainterPath circle;
    circle.addEllipse(QRectF(0, 0, side, side));
    painter.setClipPath(circle);
    const QSize cover = picture.size().scaled(side, side, Qt::KeepAspectRatioByExpanding);
    painter.drawImage(QRect(QPoint((side - cover.width()) / 2, (side - cover.height()) / 2), cover), picture);
    return round;
}

QQuickImageResponse *ContactPhotoProvider::requestImageResponse(const QString &id, const QSize &requestedSize)
{
    // "<version>/<identifier>": the version only tells one reading of the card from the next.
    const QString identifier = QUrl::fromPercentEncoding(id.section(u'/', 1).toLatin1());
    const int side = std::clamp(
        requestedSize.isValid() ? std::max(requestedSize.width(), requestedSize.height()) : defaultSide, 8, 512);
    const QString cacheKey = id + u'@' + QString::number(side);
    auto *job = new DecodeJob([this, identifier, side, cacheKey] {
        {
            QMutexLocker lock(&m_cacheMutex);
            if (const QImage *cached = m_cache.object(cacheKey)) {
                return *cached;
            }
        }
        const SharedVCardContact record = m_lookup(identifier);
        if (!record || !record->imageDataAvailable()) {
            return QImage();
        }
        QImage image = roundPicture(record->thumbnailImageData, side);
        if (!image.isNull()) {
            QMutexLocker lock(&m_cacheMutex);
            m_cache.insert(cacheKey, new QImage(image), int(std::max<qsizetype>(1, image.sizeInBytes() / 1024)));
        }
        return image;
    });
    auto *response = new PhotoResponse(job);
    m_decoders.start(job);
    return response;
}

#include "ContactPhotoProvider.moc"
