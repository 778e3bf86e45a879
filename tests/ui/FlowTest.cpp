// One whole session through the window, as a person would go: the first-run
// invitation, a scan, ticking items on a category screen, the confirmation, the clean
// on the fake home, the result, and deleting from the Trash what the clean moved there.

#include "WindowFixture.h"

#include "support/PathQueries.h"
#include "ui/Format.h"

#include <QQuickItem>

#include <string>

using Flow = WindowTest;

TEST_F(Flow, ScanTickCleanAndDeleteFromTheTrash) {
    // The desktop's Trash; the old ~/.Trash only holds what the user trashed long ago.
    const std::string trash = home().path(".local/share/Trash");
    const std::string oldTrash = home().path(".Trash/old-report.pdf");

    // First launch: the invitation, and nothing found yet.
    ASSERT_TRUE(
        UiHarness::waitFor([&] { return window()->findChild<QObject*>("firstRunInvitation") != nullptr; }));
    EXPECT_TRUE(visible("firstRunInvitation"));
    EXPECT_EQ(text("startScanButton"), "Start Scan");

    // Start Scan fills the sidebar and the results.
    ASSERT_TRUE(startsScan([&] { click(item("startScanButton")); }));
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_TRUE(UiHarness::waitFor([&] { return !visible("firstRunInvitation"); }));
    const QString cachesTotal = Format::byteCount(model().totalSize("user.caches"));
    ASSERT_GT(model().totalSize("user.caches"), 0);
    EXPECT_TRUE(UiHarness::waitFor([&] { return visible("resultsGrid"); }));

    // The category screen, reached from the sidebar, ticks both of its items.
    click(item("categoryRow_user.caches"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return rowsOf("itemList", "itemRow").size() == 2; }));
    for (QQuickItem* row : rowsOf("itemList", "itemRow"))
        click(row->findChild<QQuickItem*>("itemCheck"));
    ASSERT_EQ(model().selectedCount("user.caches"), 2);

    // Clean from the category: the confirmation names it and counts both items.
    ASSERT_TRUE(UiHarness::waitFor([&] { return visible("cleanCategoryButton"); }));
    click(item("cleanCategoryButton"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("confirmSheet", "opened").toBool(); }));
    EXPECT_EQ(text("confirmScopeTitle"), "User Caches");
    EXPECT_EQ(text("confirmTitle"), "Clean 2 Items");
    EXPECT_EQ(text("confirmTotal"), "About " + cachesTotal + " in total");
    EXPECT_EQ(read("confirmTrashRow", "valueText").toString(), "2 items · " + cachesTotal);
    EXPECT_EQ(read("confirmPermanentRow", "valueText").toString(), "0 items · 0 KB");
    EXPECT_FALSE(visible("confirmCommandsRow"));
    EXPECT_FALSE(visible("confirmWarnings"));

    // Clean Now removes them from the home folder into its Trash.
    click(item("confirmClean"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return model().showResult(); }, 30000));
    EXPECT_FALSE(exists(home().path("Library/Caches/com.example.editor")));
    EXPECT_FALSE(exists(home().path("Library/Caches/org.example.player")));
    EXPECT_TRUE(exists(home().path("Library/Logs/example.log")));
    EXPECT_EQ(entriesOf(trash + "/files"),
              (std::vector<std::string>{"com.example.editor", "org.example.player"}));

    // The result counts them.
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("resultSheet", "opened").toBool(); }));
    EXPECT_EQ(read("resultSymbol", "name").toString(), "checkmark.seal.fill");
    EXPECT_EQ(text("resultTitle"), "Cleaned 2 Items");
    EXPECT_EQ(text("resultBytes"), cachesTotal + " moved to Trash · 0 KB deleted");
    EXPECT_FALSE(visible("failureSection"));

    // Deleting from the Trash empties exactly what the clean moved there.
    EXPECT_EQ(text("purgeButton"), "Delete " + cachesTotal + " from Trash");
    click(item("purgeButton"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return visible("purgeMessage"); }, 30000));
    EXPECT_TRUE(text("purgeMessage").startsWith("Deleted permanently — freed "))
        << text("purgeMessage").toStdString();
    EXPECT_FALSE(visible("trashCard"));
    EXPECT_EQ(entriesOf(trash + "/files"), std::vector<std::string>{});
    EXPECT_TRUE(exists(oldTrash));

    click(item("resultDone"));
    EXPECT_TRUE(UiHarness::waitFor([&] { return !read("resultSheet", "visible").toBool(); }));
    EXPECT_FALSE(model().showResult());
}
