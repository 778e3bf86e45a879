// The category screen's content states through a scan, its header, and its action
// row with the select-all and clean buttons and the large-file options.

#include "CategoryDetailFixture.h"
#include "ui/Format.h"

#include <vector>

namespace {

// What the screen shows below its header, with the placeholder's headline.
QString lookOf(QQuickItem* view) {
    const QString content = view->property("content").toString();
    auto* headline = view->findChild<QQuickItem*>(QStringLiteral("scanningHeadline"));
    return content != QLatin1String("scanning") || !headline
               ? content
               : content + ":" + headline->property("text").toString();
}

} // namespace

TEST_F(CategoryDetail, EmptyCategoryGoesFromNotScannedThroughScanningToAllCleanAndFoundOnesHeadTheirItems) {
    QQuickItem* screen = show(QStringLiteral("user.mail"));
    ASSERT_NE(screen, nullptr);
    EXPECT_TRUE(visible("notScannedState"));
    EXPECT_FALSE(visible("categoryActionRow")) << "nothing to act on before a scan";
    EXPECT_EQ(text("categoryTotal"), "—");
    EXPECT_EQ(text("categoryItemCount"), "0 items");

    // While waiting: the category's own tile, pulsing, over the scan's progress.
    std::vector<QString> looks{lookOf(screen)};
    QString waitingTile;
    auto note = [&] {
        if (lookOf(screen) == looks.back())
            return;
        looks.push_back(lookOf(screen));
        if (looks.back() == "scanning:Waiting…")
            waitingTile = read("scanningIconTile", "symbol").toString() +
                          (read("scanningIconTile", "pulsing").toBool() ? " pulsing" : "");
    };
    QObject::connect(&model(), &AppModel::phaseChanged, screen, note);
    QObject::connect(&model(), &AppModel::categoryStateChanged, screen, note);
    QObject::connect(&model(), &AppModel::itemsByCategoryChanged, screen, note);

    ASSERT_TRUE(startsScan([&] { click(item("startScanButton")); })) << "the prompt's button starts a scan";
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_EQ(waitingTile, "envelope pulsing");

    EXPECT_EQ(looks,
              (std::vector<QString>{"notScanned", "scanning:Waiting…", "scanning:Scanning…", "allClean"}));
    EXPECT_TRUE(visible("allCleanState"));
    EXPECT_FALSE(visible("categoryActionRow"));
    EXPECT_EQ(text("categoryTotal"), "—");

    // A category that found something: its title (the window's too), risk, total and count.
    const std::vector<std::pair<QString, QString>> cases{
        {"user.caches", "Safe"}, {"user.trash", "Caution"}, {"user.downloads", "Review"}};
    for (const auto& [id, risk] : cases) {
        ASSERT_NE(show(id), nullptr);
        const QString title = model().categoryInfo(id).value("title").toString();
        EXPECT_EQ(window()->title(), title);
        EXPECT_EQ(text("categoryTitle"), title);
        EXPECT_EQ(read("riskPill", "text").toString(), risk);
        const int count = model().itemCountOf(id);
        ASSERT_GT(count, 0) << id.toStdString();
        EXPECT_EQ(text("categoryTotal"), Format::byteCount(model().totalSize(id)));
        EXPECT_EQ(text("categoryItemCount"), QString("%1 items").arg(count));
    }
}

TEST_F(CategoryDetail, TableComesWhileTheScanGoesOnAndSelectAllAndCleanFollowTheChecks) {
    home().makeFileOfSize("Library/Caches/net.example.third/big.bin", 500'000);
    QQuickItem* screen = show(QStringLiteral("user.caches"));
    ASSERT_NE(screen, nullptr);
    bool scanningWhenTableCame = false;
    QObject::connect(&model(), &AppModel::itemsByCategoryChanged, screen, [&] {
        if (content() == "table" && !scanningWhenTableCame)
            scanningWhenTableCame = model().phase() == AppModel::Phase::scanning;
    });
    // A rescan starts from empty lists as well: the category waits again until its items are in.
    for (int scan = 0; scan < 2; ++scan) {
        model().scan();
        EXPECT_EQ(lookOf(screen), "scanning:Waiting…") << scan;
        ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
        EXPECT_EQ(content(), "table");
        EXPECT_TRUE(scanningWhenTableCame) << "later groups were still to be scanned";
    }
    QQuickItem* selectAll = item("selectAllButton");
    QQuickItem* cleanButton = item("cleanCategoryButton");
    ASSERT_TRUE(selectAll && cleanButton);
    EXPECT_FALSE(visible("largeFileOptions"));
    EXPECT_FALSE(cleanButton->isVisible()) << "nothing is checked";

    // Checking rows one by one: the button shows the checked size; only the last check
    // turns "Select All" into "Deselect All".
    const std::vector<QQuickItem*> shown = rows();
    ASSERT_EQ(shown.size(), 3u);
    for (size_t i = 0; i < shown.size(); ++i) {
        click(part(shown[i], "itemCheck"));
        EXPECT_TRUE(UiHarness::waitFor([&] { return cleanButton->isVisible(); }));
        EXPECT_EQ(cleanButton->property("text").toString(),
                  "Clean " + Format::byteCount(model().selectedSize("user.caches")));
        const bool all = i + 1 == shown.size();
        EXPECT_EQ(selectAll->property("text").toString(), all ? "Deselect All" : "Select All");
    }

    click(selectAll);
    EXPECT_EQ(model().selectedCount("user.caches"), 0);
    EXPECT_EQ(selectAll->property("text").toString(), "Select All");
    EXPECT_TRUE(UiHarness::waitFor([&] { return !cleanButton->isVisible(); }));
    click(selectAll);
    EXPECT_EQ(model().selectedCount("user.caches"), 3);

    // Ticks of another category do not count here.
    model().setItemSelected(someItemKey("user.trash"), true);
    ASSERT_TRUE(UiHarness::waitFor([&] { return cleanButton->isVisible(); }));
    EXPECT_EQ(cleanButton->property("text").toString(),
              "Clean " + Format::byteCount(model().totalSize("user.caches")));

    // The row and the check boxes wait while a scan runs.
    model().scan();
    EXPECT_FALSE(item("categoryActionRow")->isEnabled());
    for (QQuickItem* each : rows())
        EXPECT_FALSE(part(each, "itemCheck")->isEnabled());
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_TRUE(item("categoryActionRow")->isEnabled());
    for (QQuickItem* each : rows())
        EXPECT_TRUE(part(each, "itemCheck")->isEnabled());
}

TEST_F(CategoryDetail, LargeFilesShowOnlyTheirOptionsWhenEmpty) {
    ASSERT_NE(show(QStringLiteral("large.files")), nullptr);
    EXPECT_EQ(content(), "notScanned") << "even the large files wait for a first scan";
    EXPECT_TRUE(visible("largeFileOptions"));
    EXPECT_FALSE(visible("selectAllButton"));
    EXPECT_FALSE(visible("cleanCategoryButton"));

    // The threshold picker follows the model both ways.
    QObject* picker = find("minimumSizePicker");
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->property("displayText").toString(), "1 GB");
    QMetaObject::invokeMethod(picker, "activated", Q_ARG(int, 3));
    EXPECT_EQ(model().largeThresholdGB(), 5.0);
    model().setLargeThresholdGB(0.5);
    EXPECT_EQ(picker->property("displayText").toString(), "500 MB");

    // Search locations: home always, plus each added folder, each removable.
    const std::string folder = home().makeDir("Media Drive");
    model().setFolderChooser(
        [&](std::function<void(std::vector<std::string>)> onChosen) { onChosen({folder}); });
    EXPECT_EQ(text("searchLocationsButton"), "Search Locations (1)");
    click(item("searchLocationsButton"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("searchLocationsMenu", "opened").toBool(); }));
    EXPECT_FALSE(read("homeFolderEntry", "enabled").toBool());
    trigger("addRootEntry");
    EXPECT_EQ(text("searchLocationsButton"), "Search Locations (2)");
    EXPECT_EQ(text("removeRoot_0"), "Remove Media Drive");
    trigger("removeRoot_0");
    EXPECT_EQ(text("searchLocationsButton"), "Search Locations (1)");
    QMetaObject::invokeMethod(find("searchLocationsMenu"), "close");

    EXPECT_TRUE(startsScan([&] { click(item("largeRescanButton")); }));
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_EQ(content(), "allClean");
    EXPECT_TRUE(visible("largeFileOptions"));
    EXPECT_FALSE(visible("cleanCategoryButton"));
}
