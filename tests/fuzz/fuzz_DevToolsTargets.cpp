// The DevTools answers: /json/list gives pages in order (never more than its targets), /json/version gives a WebSocket
// endpoint on the loopback address or nothing; a browser's tab address is only recorded when a browser may open it.
#include "FuzzSupport.h"
#include "calls/CallsManager.h"
#include "calls/DevToolsTabSource.h"
#include "calls/LaunchAddress.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray body = fuzzBytes(data, size);
    const QList<DevToolsTabSource::Page> pages = DevToolsTabSource::pages(body);
    FUZZ_REQUIRE(pages.size() <= QJsonDocument::fromJson(body).array().size());
    QJsonArray printed;
    QList<Tab> tabs;
    for (const DevToolsTabSource::Page &page : pages) {
        printed.append(QJsonObject{
            {u"id"_qs, page.id}, {u"type"_qs, u"page"_qs}, {u"title"_qs, page.title}, {u"url"_qs, page.url}});
        tabs.append({page.title, page.url});
    }
    const QList<DevToolsTabSource::Page> again = DevToolsTabSource::pages(QJsonDocument(printed).toJson());
    FUZZ_REQUIRE(again.size() == pages.size());
    for (qsizetype i = 0; i < pages.size(); ++i) {
        FUZZ_REQUIRE(again[i].id == pages[i].id && again[i].title == pages[i].title && again[i].url == pages[i].url);
    }
    const QString found = CallsManager::meetingURL({BrowserWindow{u"Window ID: 1"_qs, tabs}});
    FUZZ_REQUIRE(found.isEmpty() || LaunchAddress::parseForBrowser(found).has_value());

    if (const std::optional<QUrl> endpoint = DevToolsTabSource::browserEndpoint(body)) {
        FUZZ_REQUIRE(endpoint->scheme() == u"ws" && endpoint->host() == u"127.0.0.1");
    }
    return 0;
}
