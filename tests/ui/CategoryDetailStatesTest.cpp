// The category screen's content states through a scan, its header, and its action
// row with the select-all and clean buttons and the large-file options.

#include "CategoryDetailFixture.h"
#include "UiHarness.h"
#include "ui/Format.h"

#include <QColor>
#include <QDir>
#include <QTemporaryDir>

#include <vector>

namespace {

// What the screen shows below its header, with the placeholder's headline.
QString lookOf(QQuickItem* view) {
    const QString content = view->property("content").toString();
    if (content != QLatin1String("scanning"))
        return content;
    auto* headline = view->findChild<QQuickItem*>(QStringLiteral("scanningHeadline"));
    return content + ":" + (headline ? headline->property("text").toString() : QString());
}

} // namespace

TEST_F(CategoryDetail, EmptyCategoryGoesFromNotScannedThroughWaitingAndScanningToAllClean) {
    QQuickItem* screen = show(QStringLiteral("user.mail"));
    ASSERT_NE(screen, nullptr);
    EXPECT_EQ(window()->title(), "Mail Downloads");
    EXPECT_EQ(content(), "notScanned");
    QQuickItem* prompt = item("notScannedState");
    EXPECT_TRUE(prompt->isVisible());
    EXPECT_EQ(prompt->property("title").toString(), "Not Scanned Yet");
    EXPECT_EQ(prompt->property("symbol").toString(), "sparkle.magnifyingglass");
    EXPECT_EQ(prompt->property("description").toString(), "Scan to find files in this category.");
    EXPECT_EQ(text("startScanButton"), "Start Scan");
    EXPECT_FALSE(item("categoryActionRow")->isVisible()) << "nothing to act on before a scan";
    EXPECT_EQ(text("categoryTotal"), "—");
    EXPECT_EQ(text("categoryItemCount"), "0 items");

    std::vector<QString> looks{lookOf(screen)};
    auto note = [&] {
        if (lookOf(screen) != looks.back())
            looks.push_back(lookOf(screen));
    };
    QObject::connect(&model(), &AppModel::phaseChanged, screen, note);
    QObject::connect(&model(), &AppModel::categoryStateChanged, screen, note);
    QObject::connect(&model(), &AppModel::itemsByCategoryChanged, screen, note);

    click(item("startScanButton"));
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning) << "the prompt's button starts a scan";
    // While waiting: the category's tile, pulsing, over the scan's progress.
    auto* tile = item("scanningIconTile");
    EXPECT_EQ(tile->property("size").toDouble(), 56);
    EXPECT_FALSE(tile->property("active").toBool());
    EXPECT_TRUE(tile->property("pulsing").toBool());
    EXPECT_EQ(tile->property("symbol").toString(), "envelope");
    EXPECT_EQ(item("scanningProgress")->width(), 220);
    EXPECT_EQ(text("scanningStatus"), model().statusText());
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));

    EXPECT_EQ(looks,
              (std::vector<QString>{"notScanned", "scanning:Waiting…", "scanning:Scanning…", "allClean"}));
    QQuickItem* clean = item("allCleanState");
    EXPECT_TRUE(clean->isVisible());
    EXPECT_FALSE(prompt->isVisible());
    EXPECT_FALSE(item("scanningState")->isVisible());
    EXPECT_FALSE(item("categoryTable")->isVisible());
    EXPECT_EQ(clean->property("title").toString(), "All Clean");
    EXPECT_EQ(clean->property("symbol").toString(), "checkmark.seal");
    EXPECT_EQ(clean->property("description").toString(), "Nothing to clean in this category.");
    EXPECT_FALSE(item("categoryActionRow")->isVisible());
    EXPECT_EQ(text("categoryTotal"), "—");
}

TEST_F(CategoryDetail, TableReplacesThePlaceholderWhileTheScanGoesOn) {
    QQuickItem* screen = show(QStringLiteral("user.caches"));
    ASSERT_NE(screen, nullptr);
    QString firstTableLook;
    bool scanningWhenTableCame = false;
    QObject::connect(&model(), &AppModel::itemsByCategoryChanged, screen, [&] {
        if (firstTableLook.isEmpty() && content() == "table") {
            firstTableLook = content();
            scanningWhenTableCame = model().phase() == AppModel::Phase::scanning;
        }
    });
    model().scan();
    EXPECT_EQ(lookOf(screen), "scanning:Waiting…");
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_EQ(firstTableLook, "table");
    EXPECT_TRUE(scanningWhenTableCame) << "later groups were still to be scanned";
    EXPECT_TRUE(item("categoryTable")->isVisible());

    // A rescan starts from empty lists: the category waits again until its items are in.
    model().scan();
    EXPECT_EQ(lookOf(screen), "scanning:Waiting…");
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_EQ(content(), "table");
}

TEST_F(CategoryDetail, HeaderShowsIdentityRiskTotalAndCount) {
    ASSERT_TRUE(scanToEnd());
    struct Case {
        QString id;
        QString risk;
        QColor colour;
    };
    // The offscreen palette is light: the light variants of the standard colours.
    for (const Case& each :
         {Case{"user.caches", "Safe", QColor("#34c759")}, Case{"user.trash", "Caution", QColor("#ff9500")},
          Case{"user.downloads", "Review", QColor("#ff3b30")}}) {
        ASSERT_NE(show(each.id), nullptr);
        const auto category = model().category(each.id);
        ASSERT_TRUE(category.has_value());
        EXPECT_EQ(window()->title(), QString::fromStdString(category->title));
        EXPECT_EQ(text("categoryTitle"), QString::fromStdString(category->title));
        EXPECT_EQ(read("riskPill", "text").toString(), each.risk);
        EXPECT_EQ(read("riskPill", "color").value<QColor>(), each.colour) << each.id.toStdString();
        EXPECT_EQ(text("categoryDetail"), QString::fromStdString(category->detail));
        EXPECT_TRUE(read("categoryIconTile", "active").toBool());
        EXPECT_EQ(read("categoryIconTile", "symbol").toString(), QString::fromStdString(category->symbol));
        const int count = model().itemCountOf(each.id);
        ASSERT_GT(count, 0) << each.id.toStdString();
        EXPECT_EQ(text("categoryTotal"), Format::byteCount(model().totalSize(each.id)));
        EXPECT_EQ(text("categoryItemCount"), QString("%1 items").arg(count));
    }
}

TEST_F(CategoryDetail, SelectAllAndCleanFollowTheChecks) {
    home().makeFileOfSize("Library/Caches/net.example.third/big.bin", 500'000);
    ASSERT_TRUE(scanToEnd());
    ASSERT_NE(show(QStringLiteral("user.caches")), nullptr);
    ASSERT_EQ(model().itemCountOf("user.caches"), 3);
    QQuickItem* selectAll = item("selectAllButton");
    QQuickItem* cleanButton = item("cleanCategoryButton");
    ASSERT_TRUE(selectAll && cleanButton);
    EXPECT_TRUE(item("categoryActionRow")->isVisible());
    EXPECT_FALSE(item("largeFileOptions")->isVisible());
    EXPECT_EQ(selectAll->property("text").toString(), "Select All");
    EXPECT_EQ(selectAll->property("symbol").toString(), "checkmark.circle");
    EXPECT_FALSE(cleanButton->isVisible()) << "nothing is checked";

    // Checking rows one by one: the button shows the checked size; only the last check
    // turns "Select All" into "Deselect All".
    const std::vector<QQuickItem*> shown = rows();
    ASSERT_EQ(shown.size(), 3u);
    for (size_t i = 0; i < shown.size(); ++i) {
        click(part(shown[i], "itemCheck"));
        EXPECT_TRUE(shown[i]->property("checked").toBool());
        EXPECT_TRUE(UiHarness::waitFor([&] { return cleanButton->isVisible(); }));
        EXPECT_EQ(cleanButton->property("text").toString(),
                  "Clean " + Format::byteCount(model().selectedSize("user.caches")));
        const bool all = i + 1 == shown.size();
        EXPECT_EQ(selectAll->property("text").toString(), all ? "Deselect All" : "Select All");
        EXPECT_EQ(selectAll->property("symbol").toString(), all ? "circle" : "checkmark.circle");
    }
    EXPECT_EQ(model().selectedSize("user.caches"), model().totalSize("user.caches"));

    click(selectAll);
    EXPECT_EQ(model().selectedCount("user.caches"), 0);
    EXPECT_EQ(selectAll->property("text").toString(), "Select All");
    EXPECT_TRUE(UiHarness::waitFor([&] { return !cleanButton->isVisible(); }));
    click(selectAll);
    EXPECT_EQ(model().selectedCount("user.caches"), 3);

    // Ticks of another category do not count here, and the clean is limited to this one.
    model().setItemSelected(someItemKey("user.trash"), true);
    ASSERT_TRUE(UiHarness::waitFor([&] { return cleanButton->isVisible(); }));
    EXPECT_EQ(cleanButton->property("text").toString(),
              "Clean " + Format::byteCount(model().totalSize("user.caches")));
    EXPECT_EQ(cleanButton->property("symbol").toString(), "sparkles");
    click(cleanButton);
    EXPECT_EQ(model().cleanScope(), "user.caches");
    EXPECT_TRUE(model().showConfirm());
    model().setShowConfirm(false);

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
    EXPECT_TRUE(item("categoryActionRow")->isVisible());
    EXPECT_TRUE(item("largeFileOptions")->isVisible());
    EXPECT_FALSE(item("selectAllButton")->isVisible());
    EXPECT_FALSE(item("cleanCategoryButton")->isVisible());

    // The threshold picker follows the model both ways.
    QObject* picker = find("minimumSizePicker");
    ASSERT_NE(picker, nullptr);
    EXPECT_EQ(picker->property("displayText").toString(), "1 GB");
    EXPECT_EQ(picker->property("count").toInt(), 5);
    QStringList choices;
    for (int i = 0; i < 5; ++i) {
        QString choice;
        QMetaObject::invokeMethod(picker, "textAt", Q_RETURN_ARG(QString, choice), Q_ARG(int, i));
        choices << choice;
    }
    EXPECT_EQ(choices, QStringList({"500 MB", "1 GB", "2 GB", "5 GB", "10 GB"}));
    QMetaObject::invokeMethod(picker, "activated", Q_ARG(int, 3));
    EXPECT_EQ(model().largeThresholdGB(), 5.0);
    model().setLargeThresholdGB(0.5);
    EXPECT_EQ(picker->property("displayText").toString(), "500 MB");

    // Search locations: home always, plus each added folder, each removable.
    QTemporaryDir drive;
    ASSERT_TRUE(drive.isValid());
    const QString folder = drive.path() + "/Media Drive";
    ASSERT_TRUE(QDir().mkpath(folder));
    model().setFolderChooser(
        [&](std::function<void(std::vector<std::string>)> onChosen) { onChosen({folder.toStdString()}); });
    EXPECT_EQ(text("searchLocationsButton"), "Search Locations (1)");
    EXPECT_EQ(read("searchLocationsButton", "symbol").toString(), "folder.badge.plus");
    click(item("searchLocationsButton"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("searchLocationsMenu", "opened").toBool(); }));
    EXPECT_EQ(text("homeFolderEntry"), "Home folder (always searched)");
    EXPECT_FALSE(read("homeFolderEntry", "enabled").toBool());
    EXPECT_EQ(text("addRootEntry"), "Add Folder or Drive…");
    trigger("addRootEntry");
    EXPECT_EQ(model().extraRootPaths(), QStringList{folder});
    EXPECT_EQ(text("searchLocationsButton"), "Search Locations (2)");
    EXPECT_EQ(text("removeRoot_0"), "Remove Media Drive");
    trigger("removeRoot_0");
    EXPECT_TRUE(model().extraRootPaths().isEmpty());
    EXPECT_EQ(text("searchLocationsButton"), "Search Locations (1)");
    EXPECT_TRUE(UiHarness::waitFor([&] { return window()->findChild<QObject*>("removeRoot_0") == nullptr; }));
    QMetaObject::invokeMethod(find("searchLocationsMenu"), "close");

    EXPECT_EQ(text("largeRescanButton"), "Rescan");
    EXPECT_EQ(read("largeRescanButton", "symbol").toString(), "arrow.clockwise");
    click(item("largeRescanButton"));
    EXPECT_EQ(model().phase(), AppModel::Phase::scanning);
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_EQ(content(), "allClean");
    EXPECT_TRUE(item("largeFileOptions")->isVisible());
    EXPECT_FALSE(item("selectAllButton")->isVisible());
    EXPECT_FALSE(item("cleanCategoryButton")->isVisible());
}
