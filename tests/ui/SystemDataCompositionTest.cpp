// The composition bar of the System Data screen on its own: order, palette, widths,
// tooltips and legend.

#include "UiHarness.h"

#include "ui/Format.h"

#include <QColor>
#include <QQuickItem>

namespace {

// `count` areas named a0, a1, … with the given sizes, as the screen hands them over.
QByteArray barWith(const QList<qint64>& sizes) {
    QByteArray entries;
    for (int i = 0; i < sizes.size(); ++i)
        entries +=
            QStringLiteral("{ id: \"a%1\", title: \"Area %1\", size: %2 },").arg(i).arg(sizes[i]).toUtf8();
    return "CompositionBar { objectName: \"bar\"; x: 0; width: 600; entries: [" + entries + "] }";
}

const QList<QColor> palette{
    QColor::fromRgbF(91 / 255.0, 114 / 255.0, 214 / 255.0),
    QColor::fromRgbF(219 / 255.0, 182 / 255.0, 119 / 255.0),
    QColor::fromRgbF(0.25, 0.72, 0.69),
    QColor::fromRgbF(0.88, 0.38, 0.35),
    QColor::fromRgbF(0.61, 0.48, 0.88),
    QColor::fromRgbF(0.62, 0.66, 0.75),
    QColor::fromRgbF(52 / 255.0, 68 / 255.0, 137 / 255.0),
    QColor::fromRgbF(0.89, 0.64, 0.31),
};

// Repeater-made items are reached through the visual tree, not the object tree.
QQuickItem* findItem(QQuickItem* under, const QString& name) {
    if (!under)
        return nullptr;
    if (under->objectName() == name)
        return under;
    for (QQuickItem* child : under->childItems())
        if (QQuickItem* found = findItem(child, name))
            return found;
    return nullptr;
}

bool sameColour(const QColor& a, const QColor& b) {
    return std::abs(a.redF() - b.redF()) < 0.01 && std::abs(a.greenF() - b.greenF()) < 0.01 &&
           std::abs(a.blueF() - b.blueF()) < 0.01 && std::abs(a.alphaF() - b.alphaF()) < 0.01;
}

} // namespace

class SystemDataComposition : public QmlTest {
protected:
    QQuickItem* named(const QString& name) { return findItem(window()->contentItem(), name); }
    QQuickItem* segment(int position) { return named(QStringLiteral("compositionSegment_%1").arg(position)); }
};

TEST_F(SystemDataComposition, EqualSizesKeepTheirOrderAndThePaletteRepeatsAfterTwelve) {
    QList<qint64> sizes(13, 1000);
    ASSERT_NE(loadInWindow(barWith(sizes), 640, 200), nullptr);

    QStringList expected;
    for (int i = 0; i < 13; ++i)
        expected << QStringLiteral("a%1").arg(i);
    EXPECT_EQ(find("bar")->property("order").toStringList(), expected);

    for (int i = 0; i < 13; ++i) {
        QQuickItem* piece = segment(i);
        ASSERT_NE(piece, nullptr) << i;
        EXPECT_EQ(piece->property("entryId").toString(), expected[i]);
        EXPECT_NEAR(piece->width(), 600.0 / 13 - 2, 0.01) << i;
        EXPECT_EQ(piece->property("toolTipText").toString(),
                  QStringLiteral("Area %1 — ").arg(i) + Format::byteCount(1000));
        const QColor colour = piece->property("segmentColor").value<QColor>();
        if (i < palette.size()) {
            EXPECT_TRUE(sameColour(colour, palette[i])) << i << " " << colour.name().toStdString();
        }
        QQuickItem* legend = named(QStringLiteral("compositionLegend_%1").arg(i));
        ASSERT_NE(legend, nullptr) << i;
        EXPECT_EQ(legend->property("text").toString(),
                  QStringLiteral("Area %1 ").arg(i) + Format::byteCount(1000));
    }
    // Position 12 starts the palette again.
    EXPECT_TRUE(sameColour(segment(12)->property("segmentColor").value<QColor>(), palette[0]));
    EXPECT_FALSE(sameColour(segment(8)->property("segmentColor").value<QColor>(),
                            segment(9)->property("segmentColor").value<QColor>()));
}

TEST_F(SystemDataComposition, LargestFirstWithATinyAreaStillVisible) {
    ASSERT_NE(loadInWindow(barWith({300, 5'000'000, 1, 2'000'000, 5'000'000}), 640, 200), nullptr);
    for (int i = 0; i < 5; ++i)
        ASSERT_NE(segment(i), nullptr) << i;
    EXPECT_EQ(find("bar")->property("order").toStringList(), QStringList({"a1", "a4", "a3", "a0", "a2"}));
    const double total = 300.0 + 5'000'000 + 1 + 2'000'000 + 5'000'000;
    EXPECT_NEAR(segment(0)->width(), 600 * (5'000'000 / total) - 2, 0.01);
    EXPECT_NEAR(segment(2)->width(), 600 * (2'000'000 / total) - 2, 0.01);
    EXPECT_EQ(segment(3)->width(), 2);
    EXPECT_EQ(segment(4)->width(), 2);
    // The colours follow the position, not the area.
    EXPECT_TRUE(sameColour(segment(0)->property("segmentColor").value<QColor>(), palette[0]));
    EXPECT_TRUE(sameColour(segment(1)->property("segmentColor").value<QColor>(), palette[1]));
}
