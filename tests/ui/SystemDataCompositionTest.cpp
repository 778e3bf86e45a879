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
// gap each, and a tiny area still shows 2 pixels; each area a colour of its own.
TEST_F(SystemDataComposition, OrdersBySizeSharesTheWidthAndColoursEachArea) {
    const QList<qint64> sizes{300, 5'000'000, 1, 2'000'000, 5'000'000};
    const QStringList order{"a1", "a4", "a3", "a0", "a2"};
    ASSERT_NE(loadInWindow(barWith(sizes), 640, 200), nullptr);
    EXPECT_EQ(find("bar")->property("order").toStringList(), order);
    const double total = std::accumulate(sizes.begin(), sizes.end(), 0.0);
    QSet<QRgb> colours;
    for (int i = 0; i < order.size(); ++i) {
        auto* piece = find<QQuickItem>(QStringLiteral("compositionSegment_%1").arg(i));
        ASSERT_NE(piece, nullptr) << i;
        const QString id = order[i];
        const qint64 size = sizes[id.mid(1).toInt()];
        EXPECT_EQ(piece->property("entryId").toString(), id);
        EXPECT_NEAR(piece->width(), std::max(2.0, 600 * size / total - 2), 0.01) << i;
        EXPECT_EQ(piece->property("toolTipText").toString(),
                  "Area " + id.mid(1) + " — " + Format::byteCount(size));
        EXPECT_EQ(find(QStringLiteral("compositionLegend_%1").arg(i))->property("text").toString(),
                  "Area " + id.mid(1) + " " + Format::byteCount(size));
        colours << piece->property("segmentColor").value<QColor>().rgba();
    }
    EXPECT_EQ(colours.size(), order.size());
}
