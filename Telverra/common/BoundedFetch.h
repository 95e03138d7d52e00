#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>

#include <functional>

class QNetworkAccessManager;
class QObject;

/// What one GET brought back.
struct FetchResult
{
    /// False when the transfer itself failed (no connection, TLS, the deadline, the size cap).
    bool transferred = false;
    /// 0 when the answer was not HTTP.
    int status = 0;
    QByteArray body;
    /// The transfer's error text when it failed.
    QString errorText;
    /// The answer's headers, as sent.
    QList<QPair<QByteArray, QByteArray>> headers;

    bool isSuccessStatus() const { return transferred && status >= 200 && status <= 299; }
    /// The value of a header (the name in any case), or a null array.
    QByteArray header(QByteArrayView name) const;
};

struct FetchLimits
{
    /// The whole request, from sending to the last byte (Qt's own timeout only counts idle time).
    int deadlineMs = 20'000;
    qint64 maxBodyBytes = 1 << 20;
};

/// An absolute http or https address with a host: what the services may fetch.
bool isFetchableUrl(const QUrl &url);

/// What every request says it is, "Telverra/<version> (+<project address>)": services such as MET Norway refuse
/// anonymous clients, and Qt's own agent names none.
QByteArray userAgent();

/// Starts one GET with the program's User-Agent and the extra `headers`. `done` is called exactly once on the main
/// thread, unless `context` is gone by then. Redirects are followed only to addresses at least as safe; TLS errors
/// are never ignored.
void boundedGet(QNetworkAccessManager &network, const QUrl &url, QObject *context,
                std::function<void(const FetchResult &)> done, FetchLimits limits = {},
                const QList<QPair<QByteArray, QByteArray>> &headers = {});
