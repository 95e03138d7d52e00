#pragma once

#include "common/BoundedFetch.h"

#include <QObject>

class DeploymentSettings;
class QNetworkAccessManager;

/// Fetches one saying in the user's language (Spanish or English) at construction and publishes its text.
/// A failure is one log line; the quote then stays empty for the run.
class RandomQuoteDataService : public QObject
{
    Q_OBJECT
public:
    /// The quote service's host comes from Info.ini (QUOTE_SERVICE_BASE_URL); without it nothing is fetched.
    RandomQuoteDataService(QNetworkAccessManager &network, const DeploymentSettings &deployment,
                           const QString &languageLocale, QObject *parent = nullptr);

    const QString &randomQuote() const { return m_randomQuote; }
    const QString &languageLocale() const { return m_languageLocale; }
    /// Whether the fetch is still under way.
    bool isFetching() const { return m_randomQuoteSubscription; }

    /// "/randomquote/es_ES" or "/randomquote/en_US" for a language tag: Spanish unless the tag is English (and not
    /// also Spanish).
    static QString quotePath(const QString &languageLocale);
    /// The saying of an answer ({"language": …, "text": …}, other fields allowed); nothing, with the decoder's failure
    /// text in `failure`, for any other body.
    static std::optional<QString> decodeQuote(const QByteArray &body, QString *failure = nullptr);

Q_SIGNALS:
    void randomQuoteChanged();

private:
    void fetch(const QString &baseUrl, FetchLimits limits);

    QString m_randomQuote;
    bool m_randomQuoteSubscription = false;
    QString m_languageLocale;
    QNetworkAccessManager &m_network;
};

namespace Welcome {

/// The greeting for an hour of the day (0-23).
QString greeting(int hour);
/// The waiting indicator's next step: 0, 1, 2, 3, 0, …
int nextIndicatorCount(int count);

} // namespace Welcome
