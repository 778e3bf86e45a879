#include "ui/SymbolMap.h"

#include <QHash>

#include <algorithm>

namespace SymbolMap {
namespace {

const QHash<QString, QString>& table() {
    static const QHash<QString, QString> map = {
        // Catalogue categories.
        {QStringLiteral("safari"), QStringLiteral("compass-bold.svg")},
        {QStringLiteral("app.badge"), QStringLiteral("app-window-bold.svg")},
        {QStringLiteral("shippingbox"), QStringLiteral("package-bold.svg")},
        {QStringLiteral("film.stack"), QStringLiteral("film-strip-bold.svg")},
        {QStringLiteral("hammer.circle"), QStringLiteral("hammer-bold.svg")},
        {QStringLiteral("iphone.gen3"), QStringLiteral("device-mobile-camera-bold.svg")},
        {QStringLiteral("archivebox"), QStringLiteral("archive-bold.svg")},
        {QStringLiteral("shippingbox.circle"), QStringLiteral("box-arrow-down-bold.svg")},
        {QStringLiteral("books.vertical"), QStringLiteral("books-bold.svg")},
        {QStringLiteral("trash"), QStringLiteral("trash-bold.svg")},
        {QStringLiteral("envelope"), QStringLiteral("envelope-simple-bold.svg")},
        {QStringLiteral("iphone"), QStringLiteral("device-mobile-bold.svg")},
        {QStringLiteral("clock.arrow.circlepath"), QStringLiteral("hourglass-medium-bold.svg")},
        {QStringLiteral("macwindow.on.rectangle"), QStringLiteral("browsers-bold.svg")},
        {QStringLiteral("internaldrive"), QStringLiteral("hard-drive-bold.svg")},
        {QStringLiteral("doc.text.magnifyingglass"), QStringLiteral("file-magnifying-glass-bold.svg")},
        {QStringLiteral("arrow.down.circle"), QStringLiteral("arrow-circle-down-bold.svg")},
        {QStringLiteral("cpu"), QStringLiteral("cpu-bold.svg")},
        {QStringLiteral("list.bullet.rectangle"), QStringLiteral("article-bold.svg")},
        {QStringLiteral("arrow.triangle.2.circlepath"), QStringLiteral("arrows-clockwise-bold.svg")},
        {QStringLiteral("clock.badge.checkmark"), QStringLiteral("clock-counter-clockwise-bold.svg")},
        {QStringLiteral("doc.zipper"), QStringLiteral("file-zip-bold.svg")},
        // System Data areas.
        {QStringLiteral("memorychip"), QStringLiteral("memory-bold.svg")},
        {QStringLiteral("list.bullet.rectangle.portrait"), QStringLiteral("notepad-bold.svg")},
        {QStringLiteral("magnifyingglass.circle"), QStringLiteral("list-magnifying-glass-bold.svg")},
        {QStringLiteral("iphone.gen3.radiowaves.left.and.right"), QStringLiteral("vibrate-bold.svg")},
        {QStringLiteral("folder.badge.gearshape"), QStringLiteral("folder-dashed-bold.svg")},
        {QStringLiteral("apple.logo"), QStringLiteral("apple-logo-bold.svg")},
        {QStringLiteral("cylinder.split.1x2"), QStringLiteral("database-bold.svg")},
        {QStringLiteral("folder"), QStringLiteral("folder-bold.svg")},
        {QStringLiteral("square.stack.3d.up"), QStringLiteral("stack-bold.svg")},
        {QStringLiteral("envelope.badge"), QStringLiteral("envelope-open-bold.svg")},
        // Screens, sheets, menus and the kit.
        {QStringLiteral("lock"), QStringLiteral("lock-bold.svg")},
        {QStringLiteral("lock.fill"), QStringLiteral("lock-fill.svg")},
        {QStringLiteral("arrow.3.trianglepath"), QStringLiteral("recycle-bold.svg")},
        {QStringLiteral("chart.pie"), QStringLiteral("chart-pie-slice-bold.svg")},
        {QStringLiteral("chart.pie.fill"), QStringLiteral("chart-pie-slice-fill.svg")},
        {QStringLiteral("info.circle"), QStringLiteral("info-bold.svg")},
        {QStringLiteral("stop.fill"), QStringLiteral("stop-fill.svg")},
        {QStringLiteral("arrow.clockwise"), QStringLiteral("arrow-clockwise-bold.svg")},
        {QStringLiteral("wand.and.sparkles"), QStringLiteral("magic-wand-bold.svg")},
        {QStringLiteral("xmark.circle.fill"), QStringLiteral("x-circle-fill.svg")},
        {QStringLiteral("sparkles"), QStringLiteral("sparkle-fill.svg")},
        {QStringLiteral("sparkle.magnifyingglass"), QStringLiteral("magnifying-glass-bold.svg")},
        {QStringLiteral("terminal"), QStringLiteral("terminal-window-bold.svg")},
        {QStringLiteral("terminal.fill"), QStringLiteral("terminal-window-fill.svg")},
        {QStringLiteral("exclamationmark.triangle.fill"), QStringLiteral("warning-fill.svg")},
        {QStringLiteral("checkmark.seal.fill"), QStringLiteral("seal-check-fill.svg")},
        {QStringLiteral("checkmark.seal"), QStringLiteral("seal-check-bold.svg")},
        {QStringLiteral("checkmark.circle"), QStringLiteral("check-circle-bold.svg")},
        {QStringLiteral("checkmark.circle.fill"), QStringLiteral("check-circle-fill.svg")},
        {QStringLiteral("circle"), QStringLiteral("circle-bold.svg")},
        {QStringLiteral("minus.circle.fill"), QStringLiteral("minus-circle-fill.svg")},
        {QStringLiteral("folder.badge.plus"), QStringLiteral("folder-plus-bold.svg")},
        {QStringLiteral("cup.and.saucer.fill"), QStringLiteral("coffee-fill.svg")},
        {QStringLiteral("arrow.up.right"), QStringLiteral("arrow-up-right-bold.svg")},
        {QStringLiteral("gauge.with.dots.needle.67percent"), QStringLiteral("gauge-bold.svg")},
        {QStringLiteral("lock.shield.fill"), QStringLiteral("shield-check-fill.svg")},
        {QStringLiteral("chart.bar.xaxis"), QStringLiteral("chart-bar-bold.svg")},
        {QStringLiteral("square.stack.3d.down.right"), QStringLiteral("stack-simple-bold.svg")},
        {QStringLiteral("magnifyingglass.circle.fill"), QStringLiteral("magnifying-glass-fill.svg")},
        {QStringLiteral("magnifyingglass"), QStringLiteral("magnifying-glass-bold.svg")},
        {QStringLiteral("xmark"), QStringLiteral("x-bold.svg")},
        {QStringLiteral("chevron.right"), QStringLiteral("caret-right-bold.svg")},
        {QStringLiteral("chevron.down"), QStringLiteral("caret-down-bold.svg")},
        {QStringLiteral("checkmark"), QStringLiteral("check-bold.svg")},
        {QStringLiteral("doc"), QStringLiteral("file-bold.svg")},
        {QStringLiteral("trash.slash"), QStringLiteral("trash-slash-bold.svg")},
    };
    return map;
}

} // namespace

QString fileName(const QString& symbol) {
    return table().value(symbol);
}

QString resourcePath(const QString& symbol) {
    const QString file = fileName(symbol);
    return file.isEmpty() ? QString() : QLatin1String(iconFolder) + file;
}

QStringList symbolNames() {
    QStringList names = table().keys();
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace SymbolMap
