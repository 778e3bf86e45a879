// The overview's result cards in the real window: the space ranking (top eight, ties
// in catalogue order, bars, the three-state check, opening a category) and the
// largest items (top eight, ties in model order, what is never listed, the row's
// check and reveal button), and the placeholders when nothing sized was found.

#include "WindowFixture.h"

#include "model/ItemKey.h"
#include "ui/Format.h"
#include "ui/Platform.h"
#include "ui/WindowSearch.h"

#include <QSignalSpy>
#include <QTest>

#include <filesystem>

namespace {

class OverviewRanking : public WindowTest {
protected:
    // More junk beside the window fixture's, so that eleven categories and more than
    // eight items qualify; dev.derived and dev.stores hold exactly the same.
    void addCategories() {
        // Caches the toolkit writes into the home (fonts) would count as library stores.
        std::filesystem::remove_all(home().path(".cache"));
        home().makeFileOfSize("Library/Caches/Google/Chrome/data_0", 20'000'000);
        home().makeFileOfSize("Movies/CacheClip/clip.mov", 150'000);
        home().makeFileOfSize("Library/Developer/Xcode/DerivedData/Proj-abc/build.o", 250'000);
        home().makeFileOfSize("go/pkg/mod/cache.bin", 250'000);
        home().makeFileOfSize("Library/Developer/Xcode/Archives/2024/App.xcarchive.zip", 60'000);
    }

    void clickVisible(QQuickItem* target) { clickInScroller(QStringLiteral("overviewPage"), target); }
};

} // namespace

TEST_F(OverviewRanking, RanksTheEightLargestCategoriesAndItemsWhoseRowsOpenCheckAndReveal) {
    // Rows reorder without sliding, so a row stays where it is clicked.
    ReduceMotionScope still(true);
    addCategories();
    ASSERT_TRUE(scanToEnd());
    int qualifying = 0;
    for (const CleanCategory& category : model().categories())
        qualifying += model().totalSize(QString::fromStdString(category.id)) > 0;
    ASSERT_EQ(qualifying, 11);
    ASSERT_EQ(model().totalSize("dev.derived"), model().totalSize("dev.stores"));

    const QStringList expected{"apps.browsers", "user.caches", "dev.derived",    "dev.stores",
                               "user.trash",    "apps.media",  "user.downloads", "dev.archives"};
    ASSERT_TRUE(UiHarness::waitFor([&] {
        return propertyOf(rowsOf("rankingList", "rankRow_"), "categoryId") == expected;
    })) << propertyOf(rowsOf("rankingList", "rankRow_"), "categoryId").join(' ').toStdString();
    EXPECT_FALSE(visible("rankingPlaceholder"));

    const std::vector<QQuickItem*> rows = rowsOf("rankingList", "rankRow_");
    for (QQuickItem* row : rows) {
        const QString id = row->property("categoryId").toString();
        EXPECT_EQ(partText(row, "rankTitle"), model().categoryInfo(id).value("title").toString());
        EXPECT_EQ(partText(row, "rankSize"), Format::byteCount(model().totalSize(id)));
    }

    // The largest fills its track; the smallest share is far under six pixels and
    // still shows six.
    QQuickItem* first = rows.front();
    QQuickItem* last = rows.back();
    EXPECT_TRUE(UiHarness::waitFor([&] {
        return first->property("fillWidth").toDouble() == first->property("barWidth").toDouble() &&
               last->property("fillWidth").toDouble() == 6;
    }));
    EXPECT_LT(last->property("fraction").toDouble() * last->property("barWidth").toDouble(), 6);

    // The largest items: ties in model order.
    const QStringList largest{"Google",         "com.example.editor", "Proj-abc",           "mod",
                              "old-report.pdf", "clip.mov",           "org.example.player", "installer.zip"};
    ASSERT_TRUE(UiHarness::waitFor([&] {
        return propertyOf(rowsOf("largestList", "itemRow"), "name") == largest;
    })) << propertyOf(rowsOf("largestList", "itemRow"), "name").join(' ').toStdString();
    EXPECT_GT(model().items().size(), 8u);
    EXPECT_FALSE(visible("largestPlaceholder"));
    const std::vector<QQuickItem*> itemRows = rowsOf("largestList", "itemRow");
    for (QQuickItem* row : itemRows) {
        const ScanItem* found = model().findItem(ItemKey::toID(row->property("key").toString()));
        ASSERT_NE(found, nullptr);
        EXPECT_EQ(partText(row, "itemCategory"),
                  model().categoryInfo(QString::fromStdString(found->categoryID)).value("title").toString());
        EXPECT_EQ(partText(row, "itemLocation"), ItemKey::displayText(found->location()));
        EXPECT_EQ(partText(row, "itemSize"), Format::byteCount(*found->size));
    }

    // A row's check ticks its item, which leaves its category's ranking check partial;
    // that check ticks all of the category, then none.
    QQuickItem* row = itemRows[1]; // com.example.editor, one of the two user caches
    QQuickItem* check = part(row, "itemCheck");
    QQuickItem* reveal = part(row, "itemReveal");
    QQuickItem* rankCheck = part(item("rankRow_user.caches"), "rankCheck");
    ASSERT_TRUE(check && reveal && rankCheck);
    auto look = [&] {
        return QStringList{rankCheck->property("mark").toString(),
                           rankCheck->property("symbolName").toString(),
                           rankCheck->property("toolTipText").toString()};
    };
    const QStringList off{"off", "circle", "Select"}, partial{"partial", "minus.circle.fill", "Select"},
        on{"on", "checkmark.circle.fill", "Deselect"};
    EXPECT_EQ(look(), off);
    struct Step {
        QQuickItem* target;
        int ticked;
        const char* itemMark;
        QStringList rankLook;
    };
    for (const Step& step :
         {Step{check, 1, "on", partial}, Step{rankCheck, 2, "on", on}, Step{check, 1, "off", partial},
          Step{rankCheck, 2, "on", on}, Step{rankCheck, 0, "off", off}}) {
        clickVisible(step.target);
        EXPECT_EQ(model().selectedCount("user.caches"), step.ticked);
        EXPECT_EQ(check->property("mark").toString(), step.itemMark);
        EXPECT_EQ(look(), step.rankLook);
    }

    // Its reveal button shows only under the pointer.
    QTest::mouseMove(window(), QPoint(2, 2));
    EXPECT_TRUE(UiHarness::waitFor([&] { return reveal->opacity() == 0; }));
    UrlRecorder opened;
    QSignalSpy finished(Platform::instance(), &Platform::revealFinished);
    clickVisible(reveal);
    EXPECT_TRUE(UiHarness::waitFor([&] { return reveal->opacity() == 1; }));
    ASSERT_TRUE(UiHarness::waitFor([&] { return finished.count() == 1; }, 15000));
    EXPECT_EQ(finished.at(0).at(0).toString(), row->property("path").toString());

    // A ranking row opens its category.
    clickVisible(part(rows[2], "rankOpen"));
    EXPECT_EQ(read("contentView", "routeKind").toString(), "category");
    EXPECT_EQ(read("contentView", "routeCategory").toString(), "dev.derived");
}

// A command has no size: it is never a largest item, and its category is not ranked.
TEST_F(OverviewRanking, AScanThatFindsOnlyACommandLeavesBothCardsWaiting) {
    for (const char* junk : {"Library/Caches/com.example.editor", "Library/Caches/org.example.player",
                             "Library/Logs/example.log", ".Trash/old-report.pdf",
                             "Library/Saved Application State", ".npm", "Downloads/installer.zip", ".cache"})
        std::filesystem::remove_all(home().path(junk));
    home().installTool("brew", "exit 0");
    ASSERT_TRUE(scanToEnd());
    ASSERT_EQ(model().items().size(), 1u);
    ASSERT_TRUE(model().items().front().method.isCommand());
    EXPECT_TRUE(visible("resultsGrid"));
    EXPECT_TRUE(visible("rankingPlaceholder"));
    EXPECT_TRUE(visible("largestPlaceholder"));
    EXPECT_EQ(WindowSearch::allNamed(window(), "waitingText").size(), 2);
    EXPECT_GE(item("rankingPlaceholder")->height(), 120);
}
