// The header bar: the primary action follows the phase, the subtitle the disk.

#include "UiHarness.h"
#include "WindowFixture.h"
#include "ui/Format.h"

TEST_F(WindowTest, ToolbarButtonFollowsThePhase) {
    const QString button = QStringLiteral("toolbarButton");
    EXPECT_EQ(text(button), "Scan");
    EXPECT_EQ(text("subtitle"), Format::byteCount(model().diskAvailable()) + " available of " +
                                    Format::byteCount(model().diskTotal()));

    // Start and stop through the button itself.
    click(item(button));
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning);
    EXPECT_EQ(text(button), "Stop Scan");
    EXPECT_EQ(read(button, "symbol").toString(), "stop.fill");
    // The small home may be scanned before the button has settled at its new width.
    if (settled(item(button)) && model().phase() == AppModel::Phase::scanning) {
        clickNow(item(button));
        EXPECT_NE(model().phase(), AppModel::Phase::scanning);
    }
    ASSERT_TRUE(UiHarness::waitFor([&] { return !model().hasRunningWork(); }, 30000));
    EXPECT_EQ(text(button), model().hasLastScan() ? "Rescan" : "Scan");

    // Ctrl+R starts a scan; once one has finished the button offers a rescan.
    key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning);
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_EQ(text(button), "Rescan");

    // A clean disables it, and its result sheet closes back into the model's flag.
    const QString key = someItemKey("user.caches");
    ASSERT_FALSE(key.isEmpty());
    model().setItemSelected(key, true);
    model().clean();
    ASSERT_EQ(model().phase(), AppModel::Phase::cleaning);
    EXPECT_FALSE(read(button, "enabled").toBool());
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_TRUE(read(button, "enabled").toBool());
    ASSERT_TRUE(model().showResult());
    EXPECT_TRUE(UiHarness::waitFor([&] { return read("resultSheet", "opened").toBool(); }));
    this->key(Qt::Key_Escape);
    EXPECT_TRUE(UiHarness::waitFor([&] { return !read("resultSheet", "visible").toBool(); }));
    EXPECT_FALSE(model().showResult());
}

TEST_F(WindowTest, RoutesChooseTheDetailScreen) {
    QObject* screen = find("detailScreen");
    ASSERT_NE(screen, nullptr);
    auto shown = [&] {
        auto* loaded = screen->property("item").value<QObject*>();
        return loaded ? loaded->objectName() : QString();
    };
    EXPECT_EQ(shown(), "overviewView");

    // An unknown category stays on the overview.
    navigate("category", "no.such.category");
    EXPECT_EQ(shown(), "overviewView");
    EXPECT_EQ(window()->title(), "Veltro");
    EXPECT_TRUE(read("actionBarArea", "visible").toBool());

    navigate("systemData");
    EXPECT_EQ(shown(), "systemDataView");
    EXPECT_FALSE(read("actionBarArea", "visible").toBool());

    navigate("category", "user.logs");
    EXPECT_EQ(shown(), "categoryDetailView");
    EXPECT_EQ(window()->title(), "Logs & Crash Reports");
    EXPECT_TRUE(read("actionBarArea", "visible").toBool());
    auto* logsScreen = screen->property("item").value<QObject*>();
    ASSERT_NE(logsScreen, nullptr);

    // Another category gets a screen of its own, not the old one re-pointed.
    QPointer<QObject> previous(logsScreen);
    navigate("category", "user.caches");
    auto* cachesScreen = screen->property("item").value<QObject*>();
    ASSERT_NE(cachesScreen, nullptr);
    EXPECT_EQ(cachesScreen->property("categoryId").toString(), "user.caches");
    EXPECT_TRUE(UiHarness::waitFor([&] { return previous.isNull(); }));
    EXPECT_EQ(window()->title(), "User Caches");

    // The sidebar's rows set the route.
    click(item("systemDataRow"));
    EXPECT_EQ(read("contentView", "routeKind").toString(), "systemData");
    click(item("overviewRow"));
    EXPECT_EQ(shown(), "overviewView");
}
