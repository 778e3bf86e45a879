#include "ui/SymbolImageProvider.h"

#include "ui/SymbolMap.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QUrlQuery>
#include <QtGlobal>

namespace {

constexpr int defaultSide = 64;

int sideFor(const QSize& requested) {
    const int side = std::max(requested.width(), requested.height());
    return side > 0 ? side : defaultSide;
}

} // namespace

SymbolImageProvider::SymbolImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

void SymbolImageProvider::parseId(const QString& id, QString* symbol, QColor* color) {
    const qsizetype question = id.indexOf(QLatin1Char('?'));
    *symbol = question < 0 ? id : id.left(question);
    *color = QColor(Qt::white);
    if (question < 0)
        return;
    const QUrlQuery query(id.mid(question + 1));
    QString value = query.queryItemValue(QStringLiteral("color"), QUrl::FullyDecoded);
    if (value.startsWith(QLatin1Char('#')))
        value.remove(0, 1);
    const QColor parsed = QColor::fromString(QLatin1Char('#') + value);
    if (parsed.isValid())
        *color = parsed;
}

QImage SymbolImageProvider::render(const QString& symbol, const QColor& color, int side) {
    const QString path = SymbolMap::resourcePath(symbol);
    if (path.isEmpty())
        return {};
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(0, 0, side, side));
    // Keep the icon's coverage, replace its colour.
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QImage SymbolImageProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    QString symbol;
    QColor color;
    parseId(id, &symbol, &color);
    const int side = sideFor(requestedSize);
    QImage image = render(symbol, color, side);
    if (image.isNull()) {
        qWarning("No icon for the symbol name \"%s\"", qPrintable(symbol));
        image = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
    }
    if (size)
        *size = image.size();
    return image;
}
