// The overview in the real window over a real model: the hero card and the group
// chips from the first launch through a scan, the Full Disk Access banner and the summary of
// the last clean.

#include "WindowFixture.h"

#include "catalogue/CategoryGroup.h"
#include "support/SandboxRoot.h"
#include "ui/Format.h"
#include "ui/Platform.h"
#include "ui/WindowSearch.h"

#include <QColor>

#include <filesystem>

using OverviewScreen = WindowTest;

namespace {

QColor groupTint(const QString& group) {
    const Rgb tint = CategoryGroups::tint(*CategoryGroups::fromRawValue(group.toStdString()));
    return QColor::fromRgbF(float(tint.red), float(tint.green), float(tint.blue));
}

} // namespace

TEST_F(OverviewScreen, HeroCardAndGroupChipsFollowTheScan) {
    struct Started {
        QString category, title;
        QColor tint;
    };
    std::vector<Started> started;
    QObject::connect(&model(), &AppModel::scanningCategoryChanged, window(), [&] {
        if (!model().scanningCategory().isEmpty())
            started.push_back(
                {model().scanningCategory(), text("scanTitle"), read("scanBar", "tint").value<QColor>()});
    });

    // Before any scan: the magnifier and no ring.
    EXPECT_TRUE(visible("heroMagnifier"));
    EXPECT_FALSE(visible("heroFoundTotal"));
    EXPECT_TRUE(read("breakdownDonut", "arcs").toList().isEmpty());
    EXPECT_EQ(text("heroCapacity"), text("subtitle"));

    model().scan();
    // Before the first category starts.
    EXPECT_TRUE(visible("scanProgressPanel"));
    EXPECT_EQ(text("scanTitle"), "Preparing scan…");
    EXPECT_EQ(text("scanStep"), QStringLiteral("0 of %1").arg(model().categories().size()));
    EXPECT_TRUE(visible("heroSweep"));
    EXPECT_FALSE(visible("heroMagnifier"));
    EXPECT_EQ(text("heroFoundCaption"), "found so far");
    EXPECT_TRUE(visible("resultsGrid"));
    EXPECT_FALSE(visible("groupChips"));
    EXPECT_TRUE(visible("rankingPlaceholder"));

    // Each category named, in its group's tint.
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    ASSERT_FALSE(started.empty());
    for (const Started& each : started) {
        const QVariantMap info = model().categoryInfo(each.category);
        EXPECT_EQ(each.title, "Scanning " + info.value("title").toString() + "…");
        EXPECT_EQ(each.tint, groupTint(info.value("group").toString())) << each.category.toStdString();
    }

    EXPECT_FALSE(visible("scanProgressPanel"));
    EXPECT_TRUE(visible("groupChips"));
    EXPECT_EQ(text("heroFoundCaption"), "can be cleaned");
    EXPECT_EQ(text("heroFoundTotal"), Format::byteCount(model().foundTotal()));
    EXPECT_TRUE(UiHarness::waitFor([&] { return !visible("heroSweep"); }));

    // One arc per group that found something, in group order, in its tint; each group's
    // chip with its total, an empty group's dot a faint grey rather than its tint.
    const QStringList expectedGroups{"user", "developer"};
    const QVariantList arcs = read("breakdownDonut", "arcs").toList();
    ASSERT_EQ(arcs.size(), expectedGroups.size());
    for (int i = 0; i < arcs.size(); ++i)
        EXPECT_EQ(arcs[i].toMap().value("color").value<QColor>(), groupTint(expectedGroups[i]));
    for (const char* group : {"user", "system", "developer", "apps", "large"}) {
        QObject* chip = find(QStringLiteral("groupChip_") + group);
        ASSERT_NE(chip, nullptr);
        const qint64 total = model().groupTotalSize(group);
        ASSERT_EQ(total >= 1, expectedGroups.contains(group)) << group;
        EXPECT_EQ(chip->property("sizeText").toString(), Format::byteCount(total)) << group;
        const QColor dot = chip->property("dotColor").value<QColor>();
        EXPECT_EQ(dot.rgb() == groupTint(group).rgb(), total >= 1) << group;
        EXPECT_NEAR(dot.alphaF(), total < 1 ? 0.4 : 1.0, 0.01) << group;
    }

    // The bar now shows what was found as cleanable.
    EXPECT_EQ(read("legendCleanable", "sizeText").toString(), Format::byteCount(model().foundTotal()));

    // User: the caches hold the most. System: nothing anywhere, so the first one.
    ASSERT_GT(model().totalSize("user.caches"), model().totalSize("user.trash"));
    clickInScroller("overviewPage", item("groupChip_user"));
    EXPECT_EQ(read("contentView", "routeCategory").toString(), "user.caches");

    navigate("overview");
    // The old overview goes away and a new one takes its place.
    ASSERT_TRUE(UiHarness::waitFor([&] {
        auto* chip = qobject_cast<QQuickItem*>(WindowSearch::firstNamed(window(), "groupChip_system"));
        return chip && chip->isVisible() && chip->width() > 0;
    }));
    clickInScroller("overviewPage", item("groupChip_system"));
    EXPECT_EQ(read("contentView", "routeCategory").toString(), "system.caches");
}

TEST_F(OverviewScreen, FullDiskAccessBannerLeadsToHelpAndChecksAgain) {
    // Nothing is missing on an ordinary session; in a sandbox that hides the home
    // folder the banner explains.
    EXPECT_FALSE(visible("fullDiskAccessBanner"));
    SandboxRoot sandbox;
    if (!sandbox.entered())
        GTEST_SKIP() << "building a sandbox root takes root";
    model().refreshEnvironment();
    ASSERT_TRUE(visible("fullDiskAccessBanner"));

    UrlRecorder recorder;
    clickInScroller("overviewPage", item("openSettingsButton"));
    EXPECT_EQ(recorder.urls(), QList<QUrl>{Platform::instance()->fullDiskAccessHelpUrl()});

    // Nothing changed: the banner stays. Out of the sandbox: it goes.
    clickInScroller("overviewPage", item("checkAgainButton"));
    EXPECT_TRUE(visible("fullDiskAccessBanner"));
    sandbox.leave();
    clickInScroller("overviewPage", item("checkAgainButton"));
    EXPECT_FALSE(visible("fullDiskAccessBanner"));
}

TEST_F(OverviewScreen, LastCleanupShowsAfterACleanUntilTheNextScanAndCountsFailures) {
    ASSERT_TRUE(scanToEnd());
    EXPECT_FALSE(visible("lastResultCard"));
    auto cleaned = [&](const char* cache, const QString& failed) {
        tick(idOf(cache));
        if (!failed.isEmpty()) // taken away between scan and clean, so its move fails
            std::filesystem::remove_all(home().path(cache));
        model().clean();
        ASSERT_TRUE(UiHarness::waitFor(
            [&] { return model().phase() == AppModel::Phase::ready && model().hasLastResult(); }, 30000));
        const CleanResult& result = *model().lastResult();
        EXPECT_TRUE(visible("lastResultCard"));
        EXPECT_EQ(text("lastResultTitle"),
                  QStringLiteral("Last Cleanup: %1 Items").arg(result.succeeded.size()));
        EXPECT_EQ(text("lastResultDetail"), Format::byteCount(result.movedToTrashBytes) +
                                                " moved to Trash · " +
                                                Format::byteCount(result.deletedBytes) + " deleted" + failed);
        model().setShowResult(false);
    };
    cleaned("Library/Caches/com.example.editor", "");

    model().scan();
    EXPECT_FALSE(visible("lastResultCard"));
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_TRUE(visible("lastResultCard"));
    cleaned("Library/Caches/org.example.player", " · 1 failed");
}
