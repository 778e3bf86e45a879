// Selection commands and the totals derived from them, on a scanned fake home with
// trash, permanent and command items; and the setters that must notify only on change.

#include "ModelTestSupport.h"

#include <cmath>

using namespace ModelTest;

namespace {

int64_t sizeOf(const AppModel& model, const std::string& id) {
    const ScanItem* item = find(model.items(), id);
    return item && item->size ? *item->size : -1;
}

} // namespace

TEST(Selection, CommandsQueriesAndScopedCleanList) {
    FakeHome home;
    const std::string big = makeCacheFolder(home, "com.example.big", 300'000);
    const std::string small = makeCacheFolder(home, "com.example.small", 100'000);
    const std::string log = idOf(home.makeFileOfSize("Library/Logs/app.log", 5'000));
    home.makeFileOfSize(".npm/_cacache/index", 50'000);
    const std::string npm = idOf(home.path(".npm/_cacache"));
    const std::string store = idOf(home.makeDir(".cache/models"));
    home.makeFileOfSize(".cache/models/weights.bin", 70'000);
    // A tool whose own clean-up command removes its cache, and one whose probe finds
    // something to remove but cannot tell its size.
    home.installTool("brew", "exit 0");
    home.installTool("xcrun", "echo 'iPhone 8 (unavailable, runtime profile not found)'");

    AppModel model;
    ASSERT_TRUE(scanToEnd(model));
    ASSERT_NE(find(model.items(), "cmd.brew"), nullptr);
    ASSERT_NE(find(model.items(), "cmd.simctl"), nullptr);

    // Recommended: every non-command item of a recommended category, nothing removed.
    SignalLog notified(model);
    model.setSelected(store, true); // a category that is not recommended
    model.selectRecommended();
    const ItemIDs recommended{big, small, log, npm, store};
    EXPECT_EQ(model.selection(), recommended);
    model.selectRecommended();
    EXPECT_EQ(notified.count("selectionChanged"), 2);

    // Per category: only that category's ids; a category without items changes nothing.
    model.setAll("user.caches", false);
    EXPECT_EQ(model.selection(), (ItemIDs{log, npm, store}));
    model.setAll("user.caches", true);
    EXPECT_EQ(model.selection(), recommended);
    notified.clear();
    model.setAll("user.trash", true);
    model.setSelected(big, true);
    EXPECT_EQ(notified.total(), 0);

    // Queries look items up: ticks of other categories and of ids not found are ignored.
    model.setSelected("/no/longer/there", true);
    EXPECT_EQ(model.selectedCount("user.caches"), 2);
    EXPECT_EQ(model.selectedSize("user.caches"), sizeOf(model, big) + sizeOf(model, small));
    EXPECT_EQ(model.selectedTotal(), sizeOf(model, big) + sizeOf(model, small) + sizeOf(model, log) +
                                         sizeOf(model, npm) + sizeOf(model, store));
    EXPECT_EQ(model.selectionCount(), 6);

    // Items without a size count 0: a category of one command item totals 0.
    EXPECT_EQ(model.itemCountOf("dev.devicesupport"), 1);
    EXPECT_EQ(model.totalSize("dev.devicesupport"), 0);
    EXPECT_EQ(model.totalSize(CategoryGroup::developer), sizeOf(model, npm) + sizeOf(model, store));

    // A scoped clean takes only that category's ticked items, largest first.
    model.requestClean("user.caches");
    EXPECT_EQ(idsOf(model.itemsToClean()), (std::vector<std::string>{big, small}));
    EXPECT_EQ(model.itemsToCleanTotal(), sizeOf(model, big) + sizeOf(model, small));
    EXPECT_EQ(model.cleanPlan().value("scopeTitle").toString(), QStringLiteral("User Caches"));
    model.setShowConfirm(false);
    // Unscoped, every ticked item that is still listed.
    model.requestClean();
    EXPECT_EQ(model.itemsToClean().size(), 5u);

    notified.clear();
    model.clearSelection();
    model.clearSelection();
    EXPECT_EQ(notified.count("selectionChanged"), 1);
    EXPECT_EQ(model.selectedTotal(), 0);
}

TEST(Selection, SettersNotifyOncePerRealChange) {
    FakeHome home;
    AppModel model;
    SignalLog notified(model);

    // The initial value, a change, the same again, and two that are not sizes.
    for (double gigabytes : {1.0, 2.5, 2.5, std::nan(""), -1.0})
        model.setLargeThresholdGB(gigabytes);
    EXPECT_EQ(notified.count("largeThresholdGBChanged"), 1);
    EXPECT_EQ(model.largeThresholdGB(), 2.5);

    for (bool shown : {false, true, true}) {
        model.setShowConfirm(shown);
        model.setShowResult(shown);
    }
    EXPECT_EQ(notified.count("showConfirmChanged"), 1);
    EXPECT_EQ(notified.count("showResultChanged"), 1);

    for (bool ticked : {true, true, false, false})
        model.setSelected("a", ticked);
    model.clearSelection();
    EXPECT_EQ(notified.count("selectionChanged"), 2);

    // Nothing else moved, and before any scan every group is pending.
    EXPECT_EQ(notified.total(), 5);
    EXPECT_EQ(model.state(CategoryGroup::user), AppModel::CategoryScanState::pending);
}
