// The menu bar: its commands in order, enabled by phase and selection, and their
// shortcuts.

#include "UiHarness.h"
#include "WindowFixture.h"

#include <QStringList>

namespace {

QStringList itemTexts(QObject* menu) {
    QStringList texts;
    const int count = menu->property("count").toInt();
    for (int i = 0; i < count; ++i) {
        QQuickItem* entry = nullptr;
        QMetaObject::invokeMethod(menu, "itemAt", Q_RETURN_ARG(QQuickItem*, entry), Q_ARG(int, i));
        texts << (entry ? entry->property("text").toString() : QStringLiteral("?"));
    }
    return texts;
}

} // namespace

TEST_F(WindowTest, MenusHoldTheirCommandsInOrder) {
    EXPECT_EQ(read("applicationMenu", "title").toString(), "Veltro");
    EXPECT_EQ(itemTexts(find("applicationMenu")).first(), "Buy Me a Coffee…");
    EXPECT_EQ(itemTexts(find("scanMenu")), (QStringList{"Rescan", "Stop Scan", "", "Select Recommended",
                                                        "Deselect All", "Clean Selected Items…"}));
    EXPECT_EQ(itemTexts(find("helpMenu")),
              (QStringList{"Veltro Website", "Buy Me a Coffee…", "", "Terms of Use", "Privacy Policy"}));

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
    auto trigger = [&](const char* name) {
        auto* action = read(name, "action").value<QObject*>();
        ASSERT_NE(action, nullptr) << name;
        QMetaObject::invokeMethod(action, "trigger");
    };

    EXPECT_EQ(state(), (Enabled{true, false, false, false, false}));
    // Ctrl+. does nothing unless a scan runs.
    key(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_EQ(model().phase(), AppModel::Phase::idle);

    trigger("menuRescan");
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning);
    EXPECT_EQ(state(), (Enabled{false, true, false, false, false}));
    trigger("menuStopScan");
    EXPECT_NE(model().phase(), AppModel::Phase::scanning);

    key(Qt::Key_R, Qt::ControlModifier);
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning);
    key(Qt::Key_Period, Qt::ControlModifier);
    EXPECT_NE(model().phase(), AppModel::Phase::scanning);

    ASSERT_TRUE(scanToEnd());
    EXPECT_EQ(state(), (Enabled{true, false, true, false, false}));
    trigger("menuSelectRecommended");
    ASSERT_GT(model().selectionCount(), 0);
    EXPECT_EQ(state(), (Enabled{true, false, true, true, true}));
    trigger("menuDeselectAll");
    EXPECT_EQ(model().selectionCount(), 0);
    EXPECT_EQ(state(), (Enabled{true, false, true, false, false}));

    // A category scope asked for earlier is dropped: the menu cleans everything checked.
    const QString cacheItem = someItemKey("user.caches");
    ASSERT_FALSE(cacheItem.isEmpty());
    model().setItemSelected(cacheItem, true);
    model().requestClean("user.logs");
    EXPECT_EQ(model().cleanScope(), "user.logs");
    EXPECT_FALSE(model().showConfirm());
    key(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(model().cleanScope(), "");
    EXPECT_TRUE(model().showConfirm());
    model().setShowConfirm(false);

    model().clean();
    ASSERT_EQ(model().phase(), AppModel::Phase::cleaning);
    EXPECT_EQ(state(), (Enabled{false, false, false, false, false}));
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    model().setShowResult(false);
}
