#include "RandomQuoteDataService.h"

#include "common/StrictJson.h"
#include "common/Trace.h"
#include "settings/DeploymentSettings.h"

#include <QCoreApplication>
#include <QPointer>
#include <QRandomGenerator>
#include <QUrl>
#include <QtConcurrent>

RandomQuoteDataService::RandomQuoteDataService(QNetworkAccessManager &network, const DeploymentSettings &deployment,
                                               const QString &languageLocale, QObject *parent,
                                               const QString &fortuneRoot)
    : QObject(parent)
    , m_languageLocale(languageLocale)
    , m_network(network)
{
    const QString host = deployment.baseUrl(QStringLiteral("QUOTE_SERVICE_BASE_URL"));
    if (host.isEmpty()) {
        pickLocally(fortuneRoot);
        return;
    }
    m_fromHost = true;
    fetch(host, {});
}

void RandomQuoteDataService::pickLocally(const QString &fortuneRoot)
{
    m_picking = true;
    const QString folder = FortuneQuotes::folderFor(fortuneRoot, quotePath(m_languageLocale).endsWith(u"es_ES"));
    QPointer<RandomQuoteDataService> self(this);
    (void)QtConcurrent::run([self, folder] {
        std::optional<QString> quote = FortuneQuotes::pick(folder, *QRandomGenerator::global());
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, quote = std::move(quote)] {
                if (!self) {
                    return;
                }
                self->m_picking = false;
                if (quote) {
                    self->m_randomQuote = *quote;
                    Q_EMIT self->randomQuoteChanged();
                }
                Q_EMIT self->awaitsQuoteChanged();
            },
            Qt::QueuedConnection);
    });
}

QString RandomQuoteDataService::quotePath(const QString &languageLocale)
{
    static const QString spanish = QStringLiteral("/randomquote/es_ES");
    static const QString english = QStringLiteral("/randomquote/en_US");
    if (languageLocale == u"es-ES" || languageLocale.contains(u"es")) {
        return spanish;
    }
    if (languageLocale == u"en" || languageLocale.contains(u"en")) {
        return english;
    }
    return spanish;
}

void RandomQuoteDataService::fetch(const QString &baseUrl, FetchLimits limits)
{
    const QUrl url(baseUrl + quotePath(m_languageLocale), QUrl::StrictMode);
    if (baseUrl.isEmpty() || !isFetchableUrl(url)) {
        return;
    }
    m_randomQuoteSubscription = true;
    boundedGet(
        m_network, url, this,
        [this](const FetchResult &result) {
            m_randomQuoteSubscription = false;
            if (!result.transferred) {
                Trace::line(result.errorText);
                return;
            }
            if (!result.isSuccessStatus()) {
                Trace::line(QStringLiteral("The operation couldn’t be completed. (NSURLErrorDomain error -1011.)"));
                return;
            }
            QString failure;
            const std::optional<QString> text = decodeQuote(result.body, &failure);
            if (!text) {
                Trace::line(failure);
                return;
            }
            m_randomQuote = *text;
            Q_EMIT randomQuoteChanged();
        },
        limits);
}

std::optional<QString> RandomQuoteDataService::decodeQuote(const QByteArray &body, QString *failure)
{
    StrictJson json;
    const QJsonObject object = json.document(body);
    json.text(object, QStringLiteral("language"));
    const QString text = json.text(object, QStringLiteral("text"));
    if (!json.ok()) {
        if (failure) {
            *failure = json.failureText();
        }
        return std::nullopt;
    }
    return text;
}

namespace Welcome {

QString greeting(int hour)
{
    if (hour >= 5 && hour <= 11) {
        return QCoreApplication::translate("Welcome", "Good morning !!!");
    }
    if (hour >= 12 && hour <= 17) {
        return QCoreApplication::translate("Welcome", "Good afternoon !!!");
    }
    if (hour >= 18 && hour <= 21) {
        return QCoreApplication::translate("Welcome", "Good evening !!!");
    }
    return QCoreApplication::translate("Welcome", "Good night !!!");
}

int nextIndicatorCount(int count)
{
    return count == 3 ? 0 : count + 1;
}

} // namespace Welcome
