// The overview in the real window over a real model: the first-run state, the hero
// card through a scan, the group chips, the Full Disk Access banner and the summary of
// the last clean.

#include "OverviewSupport.h"

#include "UiHarness.h"
#include "support/SandboxRoot.h"
#include "ui/Format.h"
#include "ui/Platform.h"

#include <QColor>
#include <QSet>

using OverviewScreen = OverviewTest;

namespace {

const QColor accentColour(QStringLiteral("#5b72d6"));

QColor groupTint(const QString& group) {
    const Rgb tint = CategoryGroups::tint(*CategoryGroups::fromRawValue(group.toStdString()));
    return QColor::fromRgbF(float(tint.red), float(tint.green), float(tint.blue));
}

} // namespace

TEST_F(OverviewScreen, FirstLaunchInvitesAScanAndReturnStartsIt) {
    EXPECT_FALSE(item("resultsGrid")->isVisible());
    EXPECT_TRUE(item("heroMagnifier")->isVisible());
    EXPECT_FALSE(item("heroFoundTotal")->isVisible());
    EXPECT_FALSE(item("heroSweep")->isVisible());
    EXPECT_TRUE(read("breakdownDonut", "arcs").toList().isEmpty());
    EXPECT_EQ(text("heroVolumeName"), "Macintosh HD");
    EXPECT_EQ(text("heroCapacity"), Format::byteCount(model().diskAvailable()) + " available of " +
                                        Format::byteCount(model().diskTotal()));

    // Only used and free space on the bar.
    ASSERT_GT(model().diskTotal() - model().diskAvailable(), 0);
    const std::vector<double> widths = segmentWidths();
    ASSERT_EQ(widths.size(), 4u);
    EXPECT_GT(widths[0], 0);
    EXPECT_EQ(widths[1], 0);
    EXPECT_EQ(widths[2], 0);
    EXPECT_GT(widths[3], 0);
    EXPECT_EQ(read("legendCleanable", "sizeText").toString(), "0 KB");
    EXPECT_EQ(read("legendSelected", "sizeText").toString(), "0 KB");

    EXPECT_FALSE(item("scanProgressPanel")->isVisible());
    EXPECT_FALSE(item("groupChips")->isVisible());
    EXPECT_TRUE(item("firstRunInvitation")->isVisible());
    EXPECT_EQ(
        text("invitationText"),
        "Find caches, junk, logs and large files. Everything is shown for review first \u2014 nothing is "
        "removed until you confirm, and most items go to the Trash so they can be recovered.");
    EXPECT_EQ(text("startScanButton"), "Start Scan");

    key(Qt::Key_Return);
    EXPECT_NE(model().phase(), AppModel::Phase::idle);
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_FALSE(item("firstRunInvitation")->isVisible());
    EXPECT_TRUE(item("resultsGrid")->isVisible());

    // Once a scan has been made, Return no longer scans.
    key(Qt::Key_Return);
    EXPECT_EQ(model().phase(), AppModel::Phase::ready);
}

TEST_F(OverviewScreen, HeroCardFollowsTheScan) {
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

    model().scan();
    // Before the first category starts.
    EXPECT_TRUE(item("scanProgressPanel")->isVisible());
    EXPECT_EQ(text("scanTitle"), "Preparing scan…");
    EXPECT_EQ(read("scanBar", "tint").value<QColor>(), accentColour);
    EXPECT_TRUE(item("heroSweep")->isVisible());
    EXPECT_FALSE(item("heroMagnifier")->isVisible());
    EXPECT_EQ(text("heroFoundCaption"), "found so far");
    EXPECT_TRUE(item("resultsGrid")->isVisible());
    EXPECT_FALSE(item("firstRunInvitation")->isVisible());
    EXPECT_FALSE(item("groupChips")->isVisible());
    EXPECT_TRUE(item("rankingPlaceholder")->isVisible());
    EXPECT_TRUE(item("largestPlaceholder")->isVisible());
    EXPECT_EQ(text("scanStep"), QStringLiteral("0 of %1").arg(model().categories().size()));

    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    ASSERT_FALSE(started.empty());
    for (const Started& each : started) {
        const QVariantMap info = model().categoryInfo(each.category);
        EXPECT_EQ(each.title, "Scanning " + info.value("title").toString() + "…");
        EXPECT_EQ(each.tint, groupTint(info.value("group").toString())) << each.category.toStdString();
    }

    EXPECT_FALSE(item("scanProgressPanel")->isVisible());
    EXPECT_TRUE(item("groupChips")->isVisible());
    EXPECT_EQ(text("heroFoundCaption"), "can be cleaned");
    EXPECT_EQ(text("heroFoundTotal"), Format::byteCount(model().foundTotal()));
    EXPECT_TRUE(UiHarness::waitFor([&] { return !item("heroSweep")->isVisible(); }));

    // One arc per group that found something, in group order, in its tint.
    QStringList expectedGroups;
    for (const char* group : {"user", "system", "developer", "apps", "large"})
        if (double(model().groupTotalSize(group)) / double(model().foundTotal()) > 0.004)
            expectedGroups << group;
    ASSERT_EQ(expectedGroups, QStringList({"user", "developer"}));
    const QVariantList arcs = read("breakdownDonut", "arcs").toList();
    ASSERT_EQ(arcs.size(), expectedGroups.size());
    for (int i = 0; i < arcs.size(); ++i)
        EXPECT_EQ(arcs[i].toMap().value("color").value<QColor>(), groupTint(expectedGroups[i]));
    EXPECT_DOUBLE_EQ(arcs.back().toMap().value("end").toDouble(), 1.0);

    // The bar now shows what was found as cleanable.
    EXPECT_EQ(read("legendCleanable", "sizeText").toString(), Format::byteCount(model().foundTotal()));
    EXPECT_GT(segmentWidths()[2], 0);
}

TEST_F(OverviewScreen, GroupChipsShowTotalsAndOpenTheLargestCategory) {
    ASSERT_TRUE(scanToEnd());
    ASSERT_EQ(model().phase(), AppModel::Phase::ready);
    for (const char* group : {"user", "system", "developer", "apps", "large"}) {
        QObject* chip = shownItem(QStringLiteral("groupChip_") + group);
        ASSERT_NE(chip, nullptr);
        const qint64 total = model().groupTotalSize(group);
        EXPECT_EQ(chip->property("sizeText").toString(), Format::byteCount(total)) << group;
        // An empty group's dot is a faint grey, not its tint.
        const QColor dot = chip->property("dotColor").value<QColor>();
        EXPECT_EQ(dot.rgb() == groupTint(group).rgb(), total >= 1) << group;
        EXPECT_NEAR(dot.alphaF(), total < 1 ? 0.4 : 1.0, 0.01) << group;
    }
    EXPECT_EQ(model().groupTotalSize("system"), 0);
    EXPECT_GT(model().groupTotalSize("user"), 0);

    // User: the caches hold the most. System: nothing anywhere, so the first one.
    ASSERT_GT(model().totalSize("user.caches"), model().totalSize("user.trash"));
    clickVisible(shownItem("groupChip_user"));
    EXPECT_EQ(read("contentView", "routeKind").toString(), "category");
    EXPECT_EQ(read("contentView", "routeCategory").toString(), "user.caches");

    navigate("overview");
    // The old overview goes away and a new one takes its place.
    ASSERT_TRUE(UiHarness::waitFor([&] {
        QQuickItem* chip = shownItem("groupChip_system", false);
        return chip && chip->isVisible() && chip->width() > 0;
    }));
    clickVisible(shownItem("groupChip_system"));
    EXPECT_EQ(read("contentView", "routeCategory").toString(), "system.caches");
}

TEST_F(OverviewScreen, FullDiskAccessBannerLeadsToHelpAndChecksAgain) {
    // Nothing is missing on an ordinary session; in a sandbox that hides the home
    // folder the banner explains.
    EXPECT_FALSE(item("fullDiskAccessBanner")->isVisible());
    SandboxRoot sandbox;
    if (!sandbox.entered())
        GTEST_SKIP() << "building a sandbox root takes root";
    model().refreshEnvironment();
    ASSERT_FALSE(model().hasFullDiskAccess());
    ASSERT_TRUE(item("fullDiskAccessBanner")->isVisible());
    EXPECT_EQ(text("accessTitle"), "Grant Full Disk Access for a Complete Scan");
    EXPECT_EQ(text("accessText"),
              "System Settings \u2192 Privacy & Security \u2192 Full Disk Access \u2192 turn on Veltro, then "
              "relaunch. Without it, App Store app caches, Mail downloads and iOS backups are skipped.");
    EXPECT_EQ(text("openSettingsButton"), "Open System Settings");
    EXPECT_EQ(text("checkAgainButton"), "Check Again");

    UrlRecorder recorder;
    clickVisible(item("openSettingsButton"));
    EXPECT_EQ(recorder.urls(), QList<QUrl>{Platform::instance()->fullDiskAccessHelpUrl()});

    // Nothing changed: the banner stays. Out of the sandbox: it goes.
    clickVisible(item("checkAgainButton"));
    EXPECT_TRUE(item("fullDiskAccessBanner")->isVisible());
    sandbox.leave();
    clickVisible(item("checkAgainButton"));
    EXPECT_TRUE(model().hasFullDiskAccess());
    EXPECT_FALSE(item("fullDiskAccessBanner")->isVisible());
}

TEST_F(OverviewScreen, LastCleanupShowsAfterACleanUntilTheNextScan) {
    ASSERT_TRUE(scanToEnd());
    EXPECT_FALSE(item("lastResultCard")->isVisible());
    const QString key = someItemKey("user.caches");
    ASSERT_FALSE(key.isEmpty());
    model().setItemSelected(key, true);
    model().clean();
    ASSERT_TRUE(UiHarness::waitFor(
        [&] { return model().phase() == AppModel::Phase::ready && model().hasLastResult(); }, 30000));
    const CleanResult& result = *model().lastResult();
    ASSERT_EQ(result.succeeded.size(), 1u);
    ASSERT_TRUE(result.failures.empty());
    EXPECT_TRUE(item("lastResultCard")->isVisible());
    EXPECT_EQ(text("lastResultTitle"), "Last Cleanup: 1 Items");
    EXPECT_EQ(text("lastResultDetail"), Format::byteCount(result.movedToTrashBytes) + " moved to Trash · " +
                                            Format::byteCount(result.deletedBytes) + " deleted");
    EXPECT_GT(result.movedToTrashBytes, 0);

    model().setShowResult(false);
    model().scan();
    EXPECT_FALSE(item("lastResultCard")->isVisible());
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_TRUE(item("lastResultCard")->isVisible());
}
