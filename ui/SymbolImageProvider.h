#pragma once
// Serves `image://symbol/<name>?color=<rrggbb or aarrggbb>`: the vendored icon of a
// symbol name (SymbolMap), rendered at the requested size and tinted with the colour.
// An unknown name gives a transparent image and one warning.

#include <QColor>
#include <QImage>
#include <QQuickImageProvider>
#include <QSize>
#include <QString>

class SymbolImageProvider : public QQuickImageProvider {
public:
    SymbolImageProvider();

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    // The symbol drawn into a square image of `side` pixels, filled with `color`
    // wherever the icon has ink; null when the name is unknown.
    static QImage render(const QString& symbol, const QColor& color, int side);

    // Splits an image id into the symbol name and its colour (white when absent).
    static void parseId(const QString& id, QString* symbol, QColor* color);
};
