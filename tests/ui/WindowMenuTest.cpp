// The menu bar: the links of the application and help menus, and the scan menu's
// commands, enabled by phase and selection, with their shortcuts.

#include "WindowFixture.h"

TEST_F(WindowTest, MenusOpenTheWebsitesPages) {
    UrlRecorder opened;
    for (const char* name : {"menuCoffee", "menuWebsite", "menuHelpCoffee", "menuTerms", "menuPrivacy"})
        QMetaObject::invokeMethod(find(name), "triggered");
    EXPECT_EQ(opened.urls(),
              (QList<QUrl>{QUrl("https://veltro.app/#coffee"), QUrl("https://veltro.app"),
                           QUrl("https://veltro.app/#coffee"), QUrl("https://veltro.app/terms.html"),
                           QUrl("https://veltro.app/privacy.html")}));
}

TEST_F(WindowTest, ScanMenuEnablesByPhaseAndSelection) {
    struct Enabled {
        bool rescan, stop, recommended, deselect, clean;
        bool operator==(const Enabled&) const = default;
    };
    auto state = [&] {
        auto on = [&](const char* name) { return read(name, "enabled").toBool(); };
        return Enabled{on("menuRescan"), on("menuStopScan"), on("menuSelectRecommended"),
                       on("menuDeselectAll"), on("menuCleanSelected")};
    };
    // A missing action triggers nothing, which the states after it show.
    auto trigger = [&](const char* name) {
        QMetaObject::invokeMethod(read(name, "action").value<QObject*>(), "trigger");
    };

    EXPECT_EQ(state(), (Enabled{true, false, false, false, false}));
    // Ctrl+. does nothing unless a scan runs.
    key(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_EQ(model().phase(), AppModel::Phase::idle);

    // Ctrl+R starts a scan and Ctrl+. stops one.
    holdScans();
    key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning);
    EXPECT_EQ(state(), (Enabled{false, true, false, false, false}));
    key(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_NE(model().phase(), AppModel::Phase::scanning);
    releaseScans();
    ASSERT_TRUE(UiHarness::waitFor([&] { return !model().hasRunningWork(); }, 30000));

    ASSERT_TRUE(scanToEnd());
    EXPECT_EQ(state(), (Enabled{true, false, true, false, false}));
    trigger("menuSelectRecommended");
    EXPECT_EQ(state(), (Enabled{true, false, true, true, true}));
    trigger("menuDeselectAll");
    EXPECT_EQ(state(), (Enabled{true, false, true, false, false}));

    // The menu's Ctrl+Backspace and the action bar's Ctrl+Return clean everything
    // checked: a category scope asked for earlier is dropped.
    const QString cacheItem = someItemKey("user.caches");
    ASSERT_FALSE(cacheItem.isEmpty());
    model().setItemSelected(cacheItem, true);
    for (const Qt::Key shortcut : {Qt::Key_Backspace, Qt::Key_Return}) {
        model().requestClean("user.logs");
        ASSERT_FALSE(model().showConfirm());
        key(shortcut, Qt::ControlModifier);
        EXPECT_EQ(model().cleanScope(), "") << shortcut;
        EXPECT_TRUE(model().showConfirm()) << shortcut;
        model().setShowConfirm(false);
    }
}
