#include "BoundedFetch.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QTimer>

#include <memory>

namespace {

struct Transfer
{
    QByteArray body;
    QString cutText; // why the transfer was cut short, if it was
};

} // namespace

QByteArray FetchResult::header(QByteArrayView name) const
{
    for (const auto &[key, value] : headers) {
        if (key.compare(name, Qt::CaseInsensitive) == 0) {
            return value;
        }
    }
    return {};
}

QByteArray userAgent()
{
    return QByteArrayLiteral("Telverra/" TELVERRA_VERSION " (+" TELVERRA_HOMEPAGE ")");
}

bool isFetchableUrl(const QUrl &url)
{
    return url.isValid() && !url.host().isEmpty() && (url.scheme() == u"https" || url.scheme() == u"http");
}

void boundedGet(QNetworkAccessManager &network, const QUrl &url, QObject *context,
                std::function<void(const FetchResult &)> done, FetchLimits limits,
                const QList<QPair<QByteArray, QByteArray>> &headers)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader, userAgent());
    for (const auto &[name, value] : headers) {
        request.setRawHeader(name, value);
    }
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    QNetworkReply *reply = network.get(request);
    auto transfer = std::make_shared<Transfer>();
    QPointer<QObject> receiver(context);

    auto cut = [reply, transfer](const QString &why) {
        if (transfer->cutText.isEmpty()) {
            transfer->cutText = why;
            reply->abort();
        }
    };
    auto *deadline = new QTimer(reply);
    deadline->setSingleShot(true);
    QObject::connect(deadline, &QTimer::timeout, reply, [cut] { cut(QStringLiteral("The request timed out.")); });
    deadline->start(limits.deadlineMs);

    const qint64 cap = limits.maxBodyBytes;
    auto tooLarge = [cap] { return QStringLiteral("The response is larger than %1 bytes.").arg(cap); };
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [reply, cap, cut, tooLarge] {
        const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid() && length.toLongLong() > cap) {
            cut(tooLarge());
        }
    });
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [reply, transfer, cap, cut, tooLarge] {
        if (!transfer->cutText.isEmpty()) {
            return;
        }
        if (transfer->body.size() + reply->bytesAvailable() > cap) {
            cut(tooLarge());
            return;
        }
        transfer->body += reply->readAll();
    });
    QObject::connect(reply, &QNetworkReply::finished, reply,
                     [reply, transfer, receiver, done = std::move(done), cap, tooLarge] {
                         reply->deleteLater();
                         FetchResult result;
                         if (transfer->cutText.isEmpty() && transfer->body.size() + reply->bytesAvailable() <= cap) {
                             transfer->body += reply->readAll();
                         } else if (transfer->cutText.isEmpty()) {
                             transfer->cutText = tooLarge();
                         }
                         const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
                         result.status = status.isValid() ? status.toInt() : 0;
                         if (!transfer->cutText.isEmpty()) {
                             result.errorText = transfer->cutText;
                         } else if (reply->error() != QNetworkReply::NoError && result.status == 0) {
                             result.errorText = reply->errorString();
                         } else {
                             // An HTTP error status is still a transfer: the caller judges the status.
                             result.transferred = true;
                             result.body = std::move(transfer->body);
                             result.headers = reply->rawHeaderPairs();
                         }
                         if (receiver) {
                             done(result);
                         }
                     });
}
