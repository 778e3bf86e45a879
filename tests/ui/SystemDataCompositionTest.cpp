// The composition bar of the System Data screen on its own: order, widths, colours,
// tooltips and legend.

#include "UiHarness.h"

#include "ui/Format.h"

#include <QColor>
#include <QQuickItem>
#include <QSet>

#include <numeric>

namespace {

// Areas named a0, a1, … with the given sizes, as the screen hands them over.
QByteArray barWith(const QList<qint64>& sizes) {
    QByteArray entries;
    for (int i = 0; i < sizes.size(); ++i)
        entries +=
            QStringLiteral("{ id: \"a%1\", title: \"Area %1\", size: %2 },").arg(i).arg(sizes[i]).toUtf8();
    return "CompositionBar { objectName: \"bar\"; x: 0; width: 600; entries: [" + entries + "] }";
}

using SystemDataComposition = QmlTest;

} // namespace

// Largest first, equal sizes in the order given; widths share the bar less a 2-pixel
// gap each, and a tiny area still shows 2 pixels; twelve colours by position, then
// the palette again.
TEST_F(SystemDataComposition, OrdersBySizeSharesTheWidthAndColoursByPosition) {
    struct Case {
        QList<qint64> sizes;
        QStringList order;
    };
    const Case cases[] = {
        {QList<qint64>(13, 1000),
         {"a0", "a1", "a2", "a3", "a4", "a5", "a6", "a7", "a8", "a9", "a10", "a11", "a12"}},
        {{300, 5'000'000, 1, 2'000'000, 5'000'000}, {"a1", "a4", "a3", "a0", "a2"}},
    };
    for (const Case& each : cases) {
        ASSERT_NE(loadInWindow(barWith(each.sizes), 640, 200), nullptr);
        EXPECT_EQ(find("bar")->property("order").toStringList(), each.order);
        const double total = std::accumulate(each.sizes.begin(), each.sizes.end(), 0.0);
        QSet<QRgb> colours;
        for (int i = 0; i < each.order.size(); ++i) {
            auto* piece = find<QQuickItem>(QStringLiteral("compositionSegment_%1").arg(i));
            ASSERT_NE(piece, nullptr) << i;
            const QString id = each.order[i];
            const qint64 size = each.sizes[id.mid(1).toInt()];
            EXPECT_EQ(piece->property("entryId").toString(), id);
            EXPECT_NEAR(piece->width(), std::max(2.0, 600 * size / total - 2), 0.01) << i;
            EXPECT_EQ(piece->property("toolTipText").toString(),
                      "Area " + id.mid(1) + " — " + Format::byteCount(size));
            EXPECT_EQ(find(QStringLiteral("compositionLegend_%1").arg(i))->property("text").toString(),
                      "Area " + id.mid(1) + " " + Format::byteCount(size));
            colours << piece->property("segmentColor").value<QColor>().rgba();
        }
        EXPECT_EQ(colours.size(), std::min<qsizetype>(each.order.size(), 12));
        if (each.order.size() > 12) {
            EXPECT_EQ(find("compositionSegment_12")->property("segmentColor"),
                      find("compositionSegment_0")->property("segmentColor"));
        }
    }
}
