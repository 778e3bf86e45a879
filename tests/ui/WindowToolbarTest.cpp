// The header bar: the primary action follows the phase, the subtitle the disk; and the
// routes that choose the detail screen.

#include "WindowFixture.h"
#include "ui/Format.h"

TEST_F(WindowTest, ToolbarButtonFollowsThePhase) {
    const QString button = QStringLiteral("toolbarButton");
    EXPECT_EQ(text(button), "Scan");
    EXPECT_EQ(text("subtitle"), Format::byteCount(model().diskAvailable()) + " available of " +
                                    Format::byteCount(model().diskTotal()));

    // On first launch Return starts the scan the overview invites; once a scan has been
    // made it no longer does, and the button offers a rescan.
    ASSERT_TRUE(startsScan([&] { key(Qt::Key_Return); }));
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_FALSE(startsScan([&] { key(Qt::Key_Return); }));
    EXPECT_EQ(text(button), "Rescan");

    // The button starts a scan, and while one runs it stops it.
    holdScans();
    click(item(button));
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning);
    EXPECT_EQ(text(button), "Stop Scan");
    click(item(button));
    EXPECT_NE(model().phase(), AppModel::Phase::scanning);
    releaseScans();
}

TEST_F(WindowTest, RoutesChooseTheDetailScreen) {
    QObject* screen = find("detailScreen");
    ASSERT_NE(screen, nullptr);
    auto shown = [&] { return screen->property("item").value<QObject*>(); };
    const struct {
        const char* kind;
        const char* category;
        const char* view;
        bool actionBar;
    } routes[] = {{"category", "no.such.category", "overviewView", true},
                  {"systemData", "", "systemDataView", false},
                  {"category", "user.logs", "categoryDetailView", true}};
    for (const auto& route : routes) {
        navigate(route.kind, route.category);
        ASSERT_NE(shown(), nullptr);
        EXPECT_EQ(shown()->objectName(), route.view) << route.kind << " " << route.category;
        EXPECT_EQ(visible("actionBarArea"), route.actionBar) << route.kind;
    }

    // Another category gets a screen of its own, not the old one re-pointed.
    QPointer<QObject> previous(shown());
    navigate("category", "user.caches");
    EXPECT_EQ(shown()->property("categoryId").toString(), "user.caches");
    EXPECT_TRUE(UiHarness::waitFor([&] { return previous.isNull(); }));

    // The sidebar's rows set the route.
    click(item("systemDataRow"));
    EXPECT_EQ(shown()->objectName(), "systemDataView");
    click(item("overviewRow"));
    EXPECT_EQ(shown()->objectName(), "overviewView");
}
