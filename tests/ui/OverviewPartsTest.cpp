// The overview's figures given exact inputs: the ring's arcs and the capacity bar's
// capped segments and legend, each part loaded on its own.

#include "UiHarness.h"

#include "model/AppModel.h"
#include "support/FakeHome.h"
#include "ui/Format.h"

#include <QColor>
#include <QQuickItem>

namespace {

// The parts' defaults read the application's model: a real one, over a fake home.
class OverviewParts : public QmlTest {
protected:
    FakeHome home_;
    AppModel model_;
};

// The arcs the ring computed: colour, then start, end, from, to in turns.
std::vector<std::pair<QColor, std::vector<double>>> arcsOf(QObject* donut) {
    std::vector<std::pair<QColor, std::vector<double>>> arcs;
    for (const QVariant& entry : donut->property("arcs").toList()) {
        const QVariantMap arc = entry.toMap();
        arcs.push_back({arc.value("color").value<QColor>(),
                        {arc.value("start").toDouble(), arc.value("end").toDouble(),
                         arc.value("from").toDouble(), arc.value("to").toDouble()}});
    }
    return arcs;
}

// How many arcs the ring draws.
int drawnArcs(QQuickItem* donut) {
    int drawn = 0;
    for (QQuickItem* child : donut->childItems())
        drawn += child->objectName() == QLatin1String("donutArc");
    return drawn;
}

QVariantList segments(std::initializer_list<std::pair<const char*, double>> values) {
    QVariantList out;
    for (const auto& [colour, value] : values)
        out << QVariantMap{{"color", colour}, {"value", value}};
    return out;
}

} // namespace

TEST_F(OverviewParts, DonutLeavesOutSliversAndPartsTheRestWithGaps) {
    ASSERT_NE(loadInWindow("BreakdownDonut { objectName: 'donut'; width: 240; height: 240 }"), nullptr);
    auto* donut = find<QQuickItem>("donut");
    ASSERT_NE(donut, nullptr);
    using Arcs = std::vector<std::pair<QColor, std::vector<double>>>;
    const std::pair<QVariantList, Arcs> cases[] = {
        // 3 of 1000 is under 0.4 %: no arc, but its share still counts in the total.
        {segments({{"red", 600}, {"green", 3}, {"blue", 0}, {"black", 397}}),
         {{QColor("red"), {0.0, 0.6, 0.006, 0.594}}, {QColor("black"), {0.6, 0.997, 0.606, 0.991}}}},
        // A segment too small for its gap collapses to nothing rather than running backwards.
        {segments({{"red", 995}, {"blue", 5}}),
         {{QColor("red"), {0.0, 0.995, 0.006, 0.989}}, {QColor("blue"), {0.995, 1.0, 1.001, 1.001}}}},
        // One visible group is a whole circle without a gap.
        {segments({{"red", 0}, {"green", 5000}}), {{QColor("green"), {0.0, 1.0, 0.0, 1.0}}}},
        // Nothing found: only the track.
        {segments({{"red", 0}}), {}},
    };
    for (const auto& [given, expected] : cases) {
        donut->setProperty("segments", given);
        const Arcs arcs = arcsOf(donut);
        ASSERT_EQ(arcs.size(), expected.size());
        for (size_t i = 0; i < arcs.size(); ++i) {
            EXPECT_EQ(arcs[i].first, expected[i].first) << i;
            for (size_t j = 0; j < 4; ++j)
                EXPECT_NEAR(arcs[i].second[j], expected[i].second[j], 1e-9) << i << "," << j;
        }
        EXPECT_TRUE(UiHarness::waitFor([&] { return drawnArcs(donut) == int(expected.size()); }));
    }
}

TEST_F(OverviewParts, CapacityBarCapsWhatWasFoundAtWhatIsUsed) {
    ReduceMotionScope still(true);
    ASSERT_NE(loadInWindow("CapacityBar { objectName: 'capacity'; width: 500 }", 600), nullptr);
    QObject* bar = find("capacity");
    ASSERT_NE(bar, nullptr);
    auto legend = [&](const char* entry) { return find(entry)->property("sizeText").toString(); };
    auto widths = [&] { return UiHarness::numbersOf(bar->property("segmentWidths")); };
    struct Case {
        double total, available, found, selected;
        std::vector<double> widths; // used outside what was found, checked, found not checked, free
        qint64 used, cleanable, checked;
    };
    const Case cases[] = {
        // Found more than is used: cleanable stops at the used 600 GB, all of it checked.
        {1000e9, 400e9, 750e9, 900e9, {0, 300, 0, 200}, 0, 600'000'000'000, 600'000'000'000},
        // A part checked: the gold splits into checked and not checked.
        {1000e9, 400e9, 200e9, 50e9, {200, 25, 75, 200}, 400'000'000'000, 200'000'000'000, 50'000'000'000},
        // A disk of 0 or 1 byte divides by 1.
        {0, 0, 0, 0, {0, 0, 0, 0}, 0, 0, 0},
        {1, 0, 0, 0, {500, 0, 0, 0}, 1, 0, 0},
        // More available than the total (a volume reporting odd figures): used counts as nothing.
        {100, 150, 30, 0, {0, 0, 0, 750}, 0, 0, 0},
    };
    for (const Case& each : cases) {
        bar->setProperty("diskTotal", each.total);
        bar->setProperty("diskAvailable", each.available);
        bar->setProperty("foundTotal", each.found);
        bar->setProperty("selectedTotal", each.selected);
        EXPECT_TRUE(UiHarness::waitFor([&] { return widths() == each.widths; }))
            << each.total << " " << each.found;
        EXPECT_EQ(legend("legendUsed"), Format::byteCount(each.used));
        EXPECT_EQ(legend("legendCleanable"), Format::byteCount(each.cleanable));
        EXPECT_EQ(legend("legendSelected"), Format::byteCount(each.checked));
        if (each.available <= each.total) {
            EXPECT_EQ(legend("legendFree"), Format::byteCount(qint64(each.available)));
        }
    }
}
