#pragma once

#include "common/BoundedFetch.h"
#include "welcome/FortuneQuotes.h"

#include <QObject>

class DeploymentSettings;
class QNetworkAccessManager;

/// Publishes one saying in the user's language (Spanish or English), looked for at construction. With a quote host
/// in Info.ini (QUOTE_SERVICE_BASE_URL) it is fetched from there, and a failure is one log line, the quote then
/// staying empty for the run; without one it is picked from the fortune files installed (off the GUI thread), and
/// there is none when none are.
class RandomQuoteDataService : public QObject
{
    Q_OBJECT
public:
    /// `fortuneRoot`: the folder of the English fortune files, the Spanish ones being in its "es".
    RandomQuoteDataService(QNetworkAccessManager &network, const DeploymentSettings &deployment,
                           const QString &languageLocale, QObject *parent = nullptr,
                           const QString &fortuneRoot = QString::fromLatin1(FortuneQuotes::debianFolder));

    const QString &randomQuote() const { return m_randomQuote; }
    const QString &languageLocale() const { return m_languageLocale; }
    /// Whether the fetch is still under way.
    bool isFetching() const { return m_randomQuoteSubscription; }
    /// Whether a saying may still come, for the welcome screen's waiting indicator: always from a quote host (a
    /// failed fetch leaves it waiting), while the local files are read otherwise.
    bool awaitsQuote() const { return m_fromHost || m_picking; }

    /// "/randomquote/es_ES" or "/randomquote/en_US" for a language tag: Spanish unless the tag is English (and not
    /// also Spanish).
    static QString quotePath(const QString &languageLocale);
    /// The saying of an answer ({"language": …, "text": …}, other fields allowed); nothing, with the decoder's failure
    /// text in `failure`, for any other body.
    static std::optional<QString> decodeQuote(const QByteArray &body, QString *failure = nullptr);

Q_SIGNALS:
    void randomQuoteChanged();
    void awaitsQuoteChanged();

private:
    void fetch(const QString &baseUrl, FetchLimits limits);
    void pickLocally(const QString &fortuneRoot);

    QString m_randomQuote;
    bool m_randomQuoteSubscription = false;
    QString m_languageLocale;
    QNetworkAccessManager &m_network;
    bool m_fromHost = false;
    bool m_picking = false;
};

namespace Welcome {

/// The greeting for an hour of the day (0-23).
QString greeting(int hour);
/// The waiting indicator's next step: 0, 1, 2, 3, 0, …
int nextIndicatorCount(int count);

} // namespace Welcome
