#include "SymbolIconProvider.h"

#include <QColor>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrlQuery>

namespace {

struct Symbol
{
    const char16_t *name;
    const char16_t *file;
};

// Material Symbols (rounded, weight 400) and brand marks from simple-icons, under resources/icons.
constexpr Symbol symbols[] = {
    {u"menubar.dock.rectangle", u"material-symbols/dialpad.svg"},
    {u"list.dash", u"material-symbols/list.svg"},
    {u"heart.fill", u"material-symbols/favorite-fill.svg"},
    {u"person.circle.fill", u"material-symbols/account_circle-fill.svg"},
    {u"gear", u"material-symbols/settings-fill.svg"},
    {u"sidebar.left", u"material-symbols/left_panel_open.svg"},
    {u"video.bubble.left.fill", u"material-symbols/video_chat-fill.svg"},
    {u"doc.on.clipboard", u"material-symbols/content_paste.svg"},
    {u"delete.left.fill", u"material-symbols/backspace-fill.svg"},
    {u"star.fill", u"material-symbols/star-fill.svg"},
    {u"doc.on.doc.fill", u"material-symbols/content_copy-fill.svg"},
    {u"trash.circle.fill", u"material-symbols/delete-fill.svg"},
    {u"sun.max.fill", u"material-symbols/sunny-fill.svg"},
    {u"moon.fill", u"material-symbols/bedtime-fill.svg"},
    {u"cloud.sun.fill", u"material-symbols/partly_cloudy_day-fill.svg"},
    {u"cloud.moon.fill", u"material-symbols/partly_cloudy_night-fill.svg"},
    {u"cloud.fill", u"material-symbols/cloud-fill.svg"},
    {u"cloud.heavyrain.fill", u"material-symbols/rainy_heavy-fill.svg"},
    {u"cloud.moon.rain.fill", u"material-symbols/rainy-fill.svg"},
    {u"cloud.rain.fill", u"material-symbols/rainy-fill.svg"},
    {u"cloud.bolt.fill", u"material-symbols/thunderstorm-fill.svg"},
    {u"cloud.moon.bolt.fill", u"material-symbols/thunderstorm-fill.svg"},
    {u"cloud.snow.fill", u"material-symbols/weather_snowy-fill.svg"},
    {u"cloud.fog.fill", u"material-symbols/foggy-fill.svg"},
    {u"phone.fill", u"material-symbols/call-fill.svg"},
    {u"video.fill", u"material-symbols/videocam-fill.svg"},
    {u"waveform.circle.fill", u"material-symbols/graphic_eq-fill.svg"},
    {u"message.fill", u"material-symbols/chat-fill.svg"},
    {u"envelope.fill", u"material-symbols/mail-fill.svg"},
    {u"minus.circle.fill", u"material-symbols/do_not_disturb_on-fill.svg"},
    {u"phone.circle.fill", u"material-symbols/call-fill.svg"},
    {u"hand.wave.fill", u"material-symbols/waving_hand-fill.svg"},
    {u"magnifyingglass", u"material-symbols/search.svg"},
    {u"exclamationmark.triangle.fill", u"material-symbols/warning-fill.svg"},
    {u"arrow.clockwise", u"material-symbols/refresh.svg"},
    {u"clock.fill", u"material-symbols/schedule-fill.svg"},
    {u"location.fill", u"material-symbols/location_on-fill.svg"},
    {u"building.2.fill", u"material-symbols/domain-fill.svg"},
    {u"envelope.circle.fill", u"material-symbols/mail-fill.svg"},
    {u"message.circle.fill", u"material-symbols/chat-fill.svg"},
    {u"video.circle.fill", u"material-symbols/videocam-fill.svg"},
    {u"plus", u"material-symbols/add.svg"},
    {u"pencil.circle.fill", u"material-symbols/edit-fill.svg"},
    {u"trash.fill", u"material-symbols/delete-fill.svg"},
    {u"xmark.circle.fill", u"material-symbols/cancel-fill.svg"},
    {u"ellipsis.circle", u"material-symbols/more_horiz.svg"},
    {u"info.circle.fill", u"material-symbols/info-fill.svg"},
    {u"arrow.up", u"material-symbols/arrow_upward.svg"},
    {u"arrow.down", u"material-symbols/arrow_downward.svg"},
    {u"line.3.horizontal", u"material-symbols/drag_indicator.svg"},
    {u"textformat.abc", u"material-symbols/sort_by_alpha.svg"},
    {u"link", u"material-symbols/link.svg"},
    {u"icon_skype", u"material-symbols/forum-fill.svg"},
    {u"icon_googlemeet", u"simple-icons/googlemeet.svg"},
    {u"icon_zoom", u"simple-icons/zoom.svg"},
    {u"icon_webex", u"simple-icons/webex.svg"},
    {u"icon_telegram", u"simple-icons/telegram.svg"},
    {u"icon_jitsi", u"simple-icons/jitsi.svg"},
};

} // namespace

SymbolIconProvider::SymbolIconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{}

QString SymbolIconProvider::resourceFor(const QString &symbolName)
{
    for (const Symbol &symbol : symbols) {
        if (symbolName == QStringView(symbol.name)) {
            return u":/icons/" + QString::fromUtf16(symbol.file);
        }
    }
    return {};
}

QImage SymbolIconProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const qsizetype query = id.indexOf(u'?');
    const QString name = query < 0 ? id : id.left(query);
    // "rrggbb" or "aarrggbb": the "#" would end the image address.
    const QColor color(u'#' +
                       QUrlQuery(query < 0 ? QString() : id.mid(query + 1)).queryItemValue(QStringLiteral("color")));
    const QSize target(requestedSize.width() > 0 ? requestedSize.width() : 48,
                       requestedSize.height() > 0 ? requestedSize.height() : 48);
    QImage image(target, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QString file = resourceFor(name);
    if (file.isEmpty()) {
        file = resourceFor(QStringLiteral("minus.circle.fill"));
    }
    QSvgRenderer renderer(file);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(target)));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color.isValid() ? color : QColor(Qt::black));
    painter.end();
    if (size) {
        *size = target;
    }
    return image;
}
