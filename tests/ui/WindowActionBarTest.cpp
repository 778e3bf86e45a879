// The floating action bar and its scan pill, state by state.

#include "WindowFixture.h"
#include "ui/Format.h"

TEST_F(WindowTest, ActionBarShowsWhatCanBeDoneNext) {
    const QString bar = QStringLiteral("actionBar");
    EXPECT_EQ(read(bar, "mode").toString(), "empty");

    // A scan stopped before it found anything leaves the bar empty.
    model().scan();
    EXPECT_EQ(read(bar, "mode").toString(), "scanning");
    model().cancelScan();
    ASSERT_FALSE(model().hasLastScan());
    EXPECT_EQ(read(bar, "mode").toString(), "empty");

    // Before the first category starts, the pill is preparing, at step 0 of all.
    model().scan();
    EXPECT_EQ(text("scanPillTitle"), "Preparing scan…");
    EXPECT_EQ(text("scanPillStep"), QString("0 of %1").arg(model().categories().size()));

    // While a category is measured the pill names it, with its symbol and step.
    int checkedSteps = 0;
    QObject::connect(&model(), &AppModel::categoryStateChanged, window(), [&] {
        const QString id = model().scanningCategory();
        if (id.isEmpty())
            return;
        const auto category = model().category(id);
        ASSERT_TRUE(category.has_value());
        EXPECT_EQ(text("scanPillTitle"), "Scanning " + QString::fromStdString(category->title) + "…");
        EXPECT_EQ(read("scanPillTile", "symbol").toString(), QString::fromStdString(category->symbol));
        EXPECT_EQ(text("scanPillStep"),
                  QString("%1 of %2").arg(model().scanStep()).arg(model().scanStepCount()));
        EXPECT_EQ(text("scanPillPercent"), Format::percent(model().scanProgress()));
        ++checkedSteps;
    });
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_GT(checkedSteps, 0);

    // Nothing checked: the hint, whose button checks the recommended items.
    EXPECT_EQ(read(bar, "mode").toString(), "hint");
    ASSERT_TRUE(UiHarness::waitFor([&] { return item("selectRecommendedButton")->isVisible(); }));
    click(item("selectRecommendedButton"));
    EXPECT_EQ(read(bar, "mode").toString(), "summary");
    EXPECT_EQ(text("selectionCountText"), QString("%1 items selected").arg(model().selectionCount()));
    EXPECT_EQ(text("selectedTotalText"), Format::byteCount(model().selectedTotal()));

    ASSERT_TRUE(UiHarness::waitFor([&] { return item("deselectButton")->isVisible(); }));
    click(item("deselectButton"));
    EXPECT_EQ(read(bar, "mode").toString(), "hint");

    // Cleaning: progress and the cleaner's message.
    model().setItemSelected(someItemKey("user.caches"), true);
    model().clean();
    EXPECT_EQ(read(bar, "mode").toString(), "cleaning");
    EXPECT_EQ(text("cleanStatus"), model().statusText());
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    model().setShowResult(false);

    // The Stop button ends a scan.
    holdScans();
    model().scan();
    ASSERT_TRUE(UiHarness::waitFor([&] { return item("stopButton")->isVisible(); }));
    click(item("stopButton"));
    EXPECT_NE(model().phase(), AppModel::Phase::scanning);
    releaseScans();
}
