// The overview's result cards in the real window: the space ranking (top eight, ties
// in catalogue order, bars, the three-state check, opening a category) and the
// largest items (top eight, ties in model order, what is never listed, the row's
// check and reveal button), and the placeholder when nothing was found.

#include "OverviewSupport.h"

#include "UiHarness.h"
#include "model/ItemKey.h"
#include "ui/Format.h"
#include "ui/Platform.h"

#include <QColor>
#include <QSignalSpy>
#include <QTest>

#include <filesystem>
#include <sys/stat.h>

namespace {

class OverviewRanking : public OverviewTest {
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

    // A clean-up command that is found: an item without a size.
    void addCommand() { home().installTool("brew", "exit 0"); }

    QStringList idsOf(const std::vector<QQuickItem*>& rows, const char* property) {
        QStringList ids;
        for (QQuickItem* row : rows)
            ids << row->property(property).toString();
        return ids;
    }

    // The model's own lists, as the cards should show them.
    QStringList modelList(const QVariantList& rows, const char* field) {
        QStringList out;
        for (const QVariant& row : rows)
            out << row.toMap().value(QString::fromLatin1(field)).toString();
        return out;
    }

    QObject* childOf(QQuickItem* row, const char* name) {
        QObject* child = row ? row->findChild<QObject*>(QString::fromLatin1(name)) : nullptr;
        EXPECT_NE(child, nullptr) << name;
        return child;
    }
};

} // namespace

TEST_F(OverviewRanking, RanksTheEightLargestCategoriesWithProportionalBars) {
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
        return idsOf(rowsOf("rankingList", "rankRow_"), "categoryId") == expected;
    })) << idsOf(rowsOf("rankingList", "rankRow_"), "categoryId").join(' ').toStdString();
    EXPECT_EQ(read("spaceRankingCard", "shownIds").toStringList(), expected);
    EXPECT_FALSE(item("rankingPlaceholder")->isVisible());

    const std::vector<QQuickItem*> rows = rowsOf("rankingList", "rankRow_");
    for (QQuickItem* row : rows) {
        const QString id = row->property("categoryId").toString();
        EXPECT_EQ(childOf(row, "rankTitle")->property("text").toString(),
                  model().categoryInfo(id).value("title").toString());
        EXPECT_EQ(childOf(row, "rankSize")->property("text").toString(),
                  Format::byteCount(model().totalSize(id)));
    }

    // The largest fills its track; the smallest share is far under six pixels and
    // still shows six.
    QQuickItem* first = rows.front();
    QQuickItem* last = rows.back();
    EXPECT_TRUE(UiHarness::waitFor([&] {
        return first->property("fillWidth").toDouble() == first->property("barWidth").toDouble() &&
               last->property("fillWidth").toDouble() == 6;
    }));
    EXPECT_GT(first->property("barWidth").toDouble(), 300);
    EXPECT_LT(last->property("fraction").toDouble() * last->property("barWidth").toDouble(), 6);
    const QColor tint = last->property("tint").value<QColor>();
    const Rgb developer = CategoryGroups::tint(CategoryGroup::developer);
    EXPECT_EQ(tint, QColor::fromRgbF(float(developer.red), float(developer.green), float(developer.blue)));

    // A row opens its category.
    clickVisible(qobject_cast<QQuickItem*>(childOf(rows[2], "rankOpen")));
    EXPECT_EQ(read("contentView", "routeKind").toString(), "category");
    EXPECT_EQ(read("contentView", "routeCategory").toString(), "dev.derived");
}

TEST_F(OverviewRanking, RankCheckGoesFromPartialToAllToNone) {
    ReduceMotionScope still(true);
    ASSERT_TRUE(scanToEnd());
    ASSERT_TRUE(UiHarness::waitFor([&] {
        return idsOf(rowsOf("rankingList", "rankRow_"), "categoryId") ==
               modelList(model().ranking(), "categoryId");
    }));
    const CategoryItems caches = model().itemsOf("user.caches");
    ASSERT_EQ(caches.size(), 2u);
    QQuickItem* row = shownItem("rankRow_user.caches");
    ASSERT_NE(row, nullptr);
    QObject* check = childOf(row, "rankCheck");
    ASSERT_NE(check, nullptr);
    auto look = [&] {
        return QStringList{check->property("mark").toString(), check->property("symbolName").toString(),
                           check->property("toolTipText").toString()};
    };
    const QColor gold(QStringLiteral("#dbb677"));

    EXPECT_EQ(look(), QStringList({"off", "circle", "Select"}));
    EXPECT_NE(check->property("symbolColor").value<QColor>(), gold);

    model().setItemSelected(ItemKey::fromID(caches[0].id), true);
    EXPECT_EQ(look(), QStringList({"partial", "minus.circle.fill", "Select"}));
    EXPECT_EQ(check->property("symbolColor").value<QColor>(), gold);

    clickVisible(qobject_cast<QQuickItem*>(check));
    EXPECT_EQ(model().selectedCount("user.caches"), 2);
    EXPECT_EQ(look(), QStringList({"on", "checkmark.circle.fill", "Deselect"}));
    EXPECT_EQ(check->property("symbolColor").value<QColor>(), gold);

    clickVisible(qobject_cast<QQuickItem*>(check));
    EXPECT_EQ(model().selectedCount("user.caches"), 0);
    EXPECT_EQ(look(), QStringList({"off", "circle", "Select"}));
}

TEST_F(OverviewRanking, ListsTheEightLargestItemsInModelOrderOnTies) {
    addCategories();
    ASSERT_TRUE(scanToEnd());
    const QStringList expected{"Google",         "com.example.editor", "Proj-abc",           "mod",
                               "old-report.pdf", "clip.mov",           "org.example.player", "installer.zip"};
    ASSERT_TRUE(UiHarness::waitFor([&] {
        return idsOf(rowsOf("largestList", "itemRow"), "name") == expected;
    })) << idsOf(rowsOf("largestList", "itemRow"), "name").join(' ').toStdString();
    EXPECT_GT(model().items().size(), 8u);
    EXPECT_FALSE(item("largestPlaceholder")->isVisible());

    const std::vector<QQuickItem*> rows = rowsOf("largestList", "itemRow");
    EXPECT_EQ(rows[2]->property("size").toLongLong(), rows[3]->property("size").toLongLong());
    for (QQuickItem* row : rows) {
        const QString key = row->property("key").toString();
        const ScanItem* found = model().findItem(ItemKey::toID(key));
        ASSERT_NE(found, nullptr);
        const auto category = model().category(QString::fromStdString(found->categoryID));
        ASSERT_TRUE(category.has_value());
        EXPECT_EQ(childOf(row, "itemName")->property("text").toString(), ItemKey::displayText(found->name));
        EXPECT_EQ(childOf(row, "itemCategory")->property("text").toString(),
                  QString::fromStdString(category->title));
        EXPECT_EQ(childOf(row, "itemLocation")->property("text").toString(),
                  ItemKey::displayText(found->location()));
        EXPECT_EQ(childOf(row, "itemSize")->property("text").toString(), Format::byteCount(*found->size));
        EXPECT_TRUE(qobject_cast<QQuickItem*>(childOf(row, "itemIcon"))->isVisible());
    }
}

TEST_F(OverviewRanking, LargestItemsLeaveOutCommands) {
    addCommand();
    std::filesystem::remove_all(home().path(".cache"));
    ASSERT_TRUE(scanToEnd());
    int commands = 0;
    QSet<QString> listable;
    for (const ScanItem& found : model().items()) {
        if (found.method.isCommand())
            ++commands;
        else if (found.size && *found.size > 0)
            listable << ItemKey::fromID(found.id);
    }
    ASSERT_EQ(commands, 1);
    ASSERT_LT(listable.size(), 8);
    ASSERT_TRUE(
        UiHarness::waitFor([&] { return int(rowsOf("largestList", "itemRow").size()) == listable.size(); }));
    for (QQuickItem* row : rowsOf("largestList", "itemRow"))
        EXPECT_TRUE(listable.contains(row->property("key").toString()))
            << row->property("name").toString().toStdString();
}

TEST_F(OverviewRanking, ItemRowChecksAndRevealsItsFile) {
    ReduceMotionScope still(true);
    ASSERT_TRUE(scanToEnd());
    ASSERT_FALSE(model().largestItems().isEmpty());
    ASSERT_TRUE(UiHarness::waitFor([&] {
        return idsOf(rowsOf("largestList", "itemRow"), "key") == modelList(model().largestItems(), "key");
    }));
    QQuickItem* row = rowsOf("largestList", "itemRow").front();
    const QString key = row->property("key").toString();
    QObject* check = childOf(row, "itemCheck");
    auto* reveal = qobject_cast<QQuickItem*>(childOf(row, "itemReveal"));
    ASSERT_TRUE(check && reveal);

    EXPECT_EQ(check->property("mark").toString(), "off");
    clickVisible(qobject_cast<QQuickItem*>(check));
    EXPECT_TRUE(model().isItemSelected(key));
    EXPECT_EQ(check->property("mark").toString(), "on");
    EXPECT_EQ(check->property("toolTipText").toString(), "Deselect");
    clickVisible(qobject_cast<QQuickItem*>(check));
    EXPECT_FALSE(model().isItemSelected(key));

    // The reveal button shows only under the pointer.
    QTest::mouseMove(window(), QPoint(2, 2));
    EXPECT_TRUE(UiHarness::waitFor([&] { return reveal->opacity() == 0; }));
    EXPECT_EQ(reveal->property("toolTip").toString(), "Show in Finder");
    UrlRecorder opened;
    QSignalSpy finished(Platform::instance(), &Platform::revealFinished);
    clickVisible(reveal);
    EXPECT_TRUE(UiHarness::waitFor([&] { return reveal->opacity() == 1; }));
    ASSERT_TRUE(UiHarness::waitFor([&] { return finished.count() == 1; }, 15000));
    EXPECT_EQ(finished.at(0).at(0).toString(), row->property("path").toString());
}

TEST_F(OverviewRanking, AScanThatFindsNothingLeavesBothCardsWaiting) {
    for (const char* junk : {"Library/Caches/com.example.editor", "Library/Caches/org.example.player",
                             "Library/Logs/example.log", ".Trash/old-report.pdf",
                             "Library/Saved Application State", ".npm", "Downloads/installer.zip", ".cache"})
        std::filesystem::remove_all(home().path(junk));
    ASSERT_TRUE(scanToEnd());
    ASSERT_TRUE(model().items().empty());
    EXPECT_TRUE(item("resultsGrid")->isVisible());
    EXPECT_TRUE(item("rankingPlaceholder")->isVisible());
    EXPECT_TRUE(item("largestPlaceholder")->isVisible());
    EXPECT_FALSE(item("rankingList")->isVisible());
    EXPECT_FALSE(item("largestList")->isVisible());
    for (QObject* line : window()->findChildren<QObject*>("waitingText"))
        EXPECT_EQ(line->property("text").toString(), "Results appear here as each category finishes.");
    EXPECT_EQ(window()->findChildren<QObject*>("waitingText").size(), 2);
    EXPECT_GE(item("rankingPlaceholder")->height(), 120);
}
