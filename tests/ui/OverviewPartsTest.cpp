// The overview's parts given exact figures: the ring's arcs, the capacity bar's capped
// segments and legend, the scan progress panel and the last-result line. Each part is
// loaded on its own with a real model behind its defaults.

#include "UiHarness.h"

#include "model/AppModel.h"
#include "support/FakeHome.h"
#include "ui/Format.h"

#include <QColor>
#include <QQuickItem>

#include <memory>

namespace {

class OverviewParts : public QmlTest {
protected:
    void SetUp() override {
        QmlTest::SetUp();
        model_ = std::make_unique<AppModel>();
    }
    void TearDown() override {
        QmlTest::TearDown();
        model_.reset();
    }

    QString text(const QString& name) {
        QObject* object = find(name);
        EXPECT_NE(object, nullptr) << name.toStdString();
        return object ? object->property("text").toString() : QString();
    }

    FakeHome home_;
    std::unique_ptr<AppModel> model_;
};

struct Arc {
    QColor color;
    double start, end, from, to;
};

std::vector<Arc> arcsOf(QObject* donut) {
    std::vector<Arc> arcs;
    for (const QVariant& entry : donut->property("arcs").toList()) {
        const QVariantMap arc = entry.toMap();
        arcs.push_back({arc.value("color").value<QColor>(), arc.value("start").toDouble(),
                        arc.value("end").toDouble(), arc.value("from").toDouble(),
                        arc.value("to").toDouble()});
    }
    return arcs;
}

// The drawn arcs: each Shape's path, in turns from twelve o'clock.
std::vector<std::pair<double, double>> drawnSpans(QQuickItem* donut) {
    std::vector<std::pair<double, double>> spans;
    for (QQuickItem* child : donut->childItems())
        if (child->objectName() == QLatin1String("donutArc"))
            spans.emplace_back(child->property("from").toDouble(), child->property("to").toDouble());
    return spans;
}

} // namespace

TEST_F(OverviewParts, DonutLeavesOutSliversAndPartsTheRestWithGaps) {
    ASSERT_NE(loadInWindow(R"(
        BreakdownDonut {
            objectName: "donut"
            width: 240; height: 240
            segments: [{ color: "red", value: 600 }, { color: "green", value: 3 },
                       { color: "blue", value: 0 }, { color: "black", value: 397 }]
        })"),
              nullptr);
    QObject* donut = find("donut");
    ASSERT_NE(donut, nullptr);

    // 3 of 1000 is under 0.4 %: no arc, but its share still counts in the total.
    const std::vector<Arc> arcs = arcsOf(donut);
    ASSERT_EQ(arcs.size(), 2u);
    EXPECT_EQ(arcs[0].color, QColor("red"));
    EXPECT_DOUBLE_EQ(arcs[0].start, 0.0);
    EXPECT_DOUBLE_EQ(arcs[0].end, 0.6);
    EXPECT_DOUBLE_EQ(arcs[0].from, 0.006);
    EXPECT_DOUBLE_EQ(arcs[0].to, 0.594);
    EXPECT_EQ(arcs[1].color, QColor("black"));
    EXPECT_DOUBLE_EQ(arcs[1].start, 0.6);
    EXPECT_DOUBLE_EQ(arcs[1].end, 0.997);
    EXPECT_DOUBLE_EQ(arcs[1].from, 0.606);
    EXPECT_DOUBLE_EQ(arcs[1].to, 0.991);
    EXPECT_EQ(drawnSpans(qobject_cast<QQuickItem*>(donut)).size(), 2u);

    // A segment too small for its gap collapses to nothing rather than running backwards.
    donut->setProperty("segments", QVariantList{QVariantMap{{"color", "red"}, {"value", 995}},
                                                QVariantMap{{"color", "blue"}, {"value", 5}}});
    const std::vector<Arc> thin = arcsOf(donut);
    ASSERT_EQ(thin.size(), 2u);
    EXPECT_DOUBLE_EQ(thin[1].from, 0.995 + 0.006);
    EXPECT_DOUBLE_EQ(thin[1].to, thin[1].from);

    // One visible group is a whole circle without a gap.
    donut->setProperty("segments", QVariantList{QVariantMap{{"color", "red"}, {"value", 0}},
                                                QVariantMap{{"color", "green"}, {"value", 5000}}});
    const std::vector<Arc> single = arcsOf(donut);
    ASSERT_EQ(single.size(), 1u);
    EXPECT_EQ(single[0].color, QColor("green"));
    EXPECT_DOUBLE_EQ(single[0].from, 0.0);
    EXPECT_DOUBLE_EQ(single[0].to, 1.0);
    ASSERT_TRUE(UiHarness::waitFor([&] {
        const auto spans = drawnSpans(qobject_cast<QQuickItem*>(donut));
        return spans.size() == 1 && spans[0].first == 0.0 && spans[0].second == 1.0;
    }));

    // Nothing found: only the track.
    donut->setProperty("segments", QVariantList{QVariantMap{{"color", "red"}, {"value", 0}}});
    EXPECT_TRUE(arcsOf(donut).empty());
    EXPECT_TRUE(UiHarness::waitFor([&] { return drawnSpans(qobject_cast<QQuickItem*>(donut)).empty(); }));
}

TEST_F(OverviewParts, CapacityBarCapsWhatWasFoundAtWhatIsUsed) {
    ReduceMotionScope still(true);
    // 1000 GB disk, 400 GB free, the scan found 750 GB, 900 GB of it checked.
    ASSERT_NE(loadInWindow(R"(
        CapacityBar {
            objectName: "capacity"
            width: 500
            diskTotal: 1000e9; diskAvailable: 400e9
            foundTotal: 750e9; selectedTotal: 900e9
        })",
                           600),
              nullptr);
    QObject* bar = find("capacity");
    ASSERT_NE(bar, nullptr);
    auto legend = [&](const char* entry) {
        QObject* row = find(entry);
        return row ? row->property("sizeText").toString() : QString();
    };
    auto widths = [&] {
        std::vector<double> out;
        for (const QVariant& width : bar->property("segmentWidths").toList())
            out.push_back(width.toDouble());
        return out;
    };

    // Found more than is used: cleanable stops at the used 600 GB, all of it checked,
    // and nothing of the used space is left outside what was found.
    EXPECT_EQ(legend("legendUsed"), "0 KB");
    EXPECT_EQ(legend("legendCleanable"), Format::byteCount(600'000'000'000));
    EXPECT_EQ(legend("legendSelected"), Format::byteCount(600'000'000'000));
    EXPECT_EQ(legend("legendFree"), Format::byteCount(400'000'000'000));
    EXPECT_TRUE(UiHarness::waitFor([&] {
        return widths() == std::vector<double>{0, 300, 0, 200};
    })) << widths()[0]
        << " " << widths()[1] << " " << widths()[2] << " " << widths()[3];

    // A part checked: the gold splits into checked and not checked.
    bar->setProperty("foundTotal", 200e9);
    bar->setProperty("selectedTotal", 50e9);
    EXPECT_EQ(legend("legendUsed"), Format::byteCount(400'000'000'000));
    EXPECT_EQ(legend("legendCleanable"), Format::byteCount(200'000'000'000));
    EXPECT_EQ(legend("legendSelected"), Format::byteCount(50'000'000'000));
    EXPECT_TRUE(UiHarness::waitFor([&] { return widths() == std::vector<double>{200, 25, 75, 200}; }));

    // A disk of 0 or 1 byte divides by 1, and negative spans clamp to nothing.
    for (double total : {0.0, 1.0}) {
        bar->setProperty("diskTotal", total);
        bar->setProperty("diskAvailable", 0.0);
        bar->setProperty("foundTotal", 0.0);
        bar->setProperty("selectedTotal", 0.0);
        EXPECT_DOUBLE_EQ(bar->property("divisor").toDouble(), 1.0);
        EXPECT_TRUE(UiHarness::waitFor([&] {
            return widths() == std::vector<double>{total * 500, 0, 0, 0};
        })) << total;
        EXPECT_EQ(legend("legendUsed"), total == 0 ? "0 KB" : "1 byte");
    }
    // More available than the total (a volume reporting odd figures): used is
    // negative and counts as nothing.
    bar->setProperty("diskTotal", 100.0);
    bar->setProperty("diskAvailable", 150.0);
    bar->setProperty("foundTotal", 30.0);
    EXPECT_EQ(legend("legendUsed"), "0 KB");
    EXPECT_EQ(legend("legendCleanable"), "0 KB");
    EXPECT_TRUE(UiHarness::waitFor([&] { return widths() == std::vector<double>{0, 0, 0, 750}; }));
}

TEST_F(OverviewParts, ScanPanelNamesTheCategoryAndCountsOnlyWithSteps) {
    ASSERT_NE(loadInWindow(R"(
        ScanProgressPanel {
            objectName: "panel"
            width: 460
            scanningCategory: ""
            progress: 0.424
            statusText: "Looking at /home/someone/a/very/long/path/that/does/not/fit/in/one/line/at/all/file.txt"
            step: 0
            stepCount: 0
        })",
                           500),
              nullptr);
    QObject* panel = find("panel");
    ASSERT_NE(panel, nullptr);
    const QColor accent(QStringLiteral("#5b72d6"));

    EXPECT_EQ(text("scanTitle"), "Preparing scan…");
    EXPECT_EQ(find("scanBar")->property("tint").value<QColor>(), accent);
    EXPECT_EQ(text("scanPercent"), Format::percent(0.424));
    EXPECT_FALSE(find<QQuickItem>("scanStep")->isVisible());
    auto* status = find<QQuickItem>("scanStatus");
    ASSERT_NE(status, nullptr);
    EXPECT_TRUE(status->property("truncated").toBool());
    EXPECT_EQ(status->property("elide").toInt(), int(Qt::ElideMiddle));

    // An id the catalogue does not know is still "preparing".
    panel->setProperty("scanningCategory", "no.such.category");
    EXPECT_EQ(text("scanTitle"), "Preparing scan…");

    panel->setProperty("scanningCategory", "dev.packages");
    panel->setProperty("step", 9);
    panel->setProperty("stepCount", 22);
    EXPECT_EQ(text("scanTitle"), "Scanning Package Manager Caches…");
    EXPECT_TRUE(UiHarness::waitFor([&] {
        return find("scanBar")->property("tint").value<QColor>() == QColor::fromRgbF(0.89f, 0.64f, 0.31f);
    }));
    EXPECT_TRUE(find<QQuickItem>("scanStep")->isVisible());
    EXPECT_EQ(text("scanStep"), "9 of 22");
}

TEST_F(OverviewParts, LastResultNamesFailuresOnlyWhenThereAreSome) {
    ASSERT_NE(loadInWindow(R"(
        LastResultCard {
            objectName: "card"
            width: 500
            result: ({ present: true, succeededCount: 12, movedToTrashBytes: 1200000000,
                       deletedBytes: 300000000, failures: [] })
        })",
                           560),
              nullptr);
    QObject* card = find("card");
    ASSERT_NE(card, nullptr);
    EXPECT_EQ(text("lastResultTitle"), "Last Cleanup: 12 Items");
    EXPECT_EQ(text("lastResultDetail"), "1.2 GB moved to Trash · 300 MB deleted");

    QVariantList failures{QVariantMap{{"id", "a"}}, QVariantMap{{"id", "b"}}};
    card->setProperty("result", QVariantMap{{"present", true},
                                            {"succeededCount", 1},
                                            {"movedToTrashBytes", 0},
                                            {"deletedBytes", 0},
                                            {"failures", failures}});
    EXPECT_EQ(text("lastResultTitle"), "Last Cleanup: 1 Items");
    EXPECT_EQ(text("lastResultDetail"), "0 KB moved to Trash · 0 KB deleted · 2 failed");
}
