// The sidebar: rows that live through a scan, the checked size in the accent colour,
// the category context menu, and following the scan.

#include "WindowFixture.h"
#include "ui/Format.h"

#include <QColor>
#include <QSet>

#include <tuple>
#include <vector>

namespace {

const QColor accentColour(QStringLiteral("#5b72d6"));

// What a row shows: spinner, dimmed title, trailing text.
using RowLook = std::tuple<bool, bool, QString>;

RowLook lookOf(QObject* row) {
    return {row->property("scanning").toBool(), row->property("dimTitle").toBool(),
            row->property("trailing").toString()};
}

} // namespace

TEST_F(WindowTest, CategoryRowsGoFromDimThroughScanningToTheirSize) {
    // Group headers show their totals once the group is done.
    auto groupTotal = [&](const char* group) {
        QObject* header = find(QString("groupHeader_") + group);
        return header ? header->findChild<QObject*>("groupTotal") : nullptr;
    };
    const char* groups[] = {"user", "system", "developer", "apps", "large"};
    for (const char* group : groups) {
        ASSERT_NE(groupTotal(group), nullptr) << group;
        EXPECT_FALSE(groupTotal(group)->property("visible").toBool()) << group;
    }

    // Each change of a row's look, as the views show it right after the model's step.
    QObject* found = find("categoryRow_user.caches");
    QObject* empty = find("categoryRow_user.mail");
    ASSERT_TRUE(found && empty);
    std::vector<RowLook> foundLooks{lookOf(found)}, emptyLooks{lookOf(empty)};
    QString lastStarted;
    QObject::connect(&model(), &AppModel::categoryStateChanged, found, [&] {
        if (lookOf(found) != foundLooks.back())
            foundLooks.push_back(lookOf(found));
        if (lookOf(empty) != emptyLooks.back())
            emptyLooks.push_back(lookOf(empty));
    });
    // Without motion the list jumps, so where it stands after each step is where it went.
    ReduceMotionScope still(true);
    auto* list = item("sidebarList");
    ASSERT_NE(list, nullptr);
    double followedTo = -1;
    QObject::connect(&model(), &AppModel::scanningCategoryChanged, found, [&] {
        if (model().scanningCategory().isEmpty())
            return;
        lastStarted = model().scanningCategory();
        followedTo = list->property("contentY").toDouble();
    });
    ASSERT_TRUE(scanToEnd());

    const QString cachesSize = Format::byteCount(model().totalSize("user.caches"));
    EXPECT_EQ(foundLooks,
              (std::vector<RowLook>{{false, true, ""}, {true, false, ""}, {false, false, cachesSize}}));
    EXPECT_EQ(emptyLooks.back(), RowLook(false, true, "—"));
    EXPECT_TRUE(found->property("active").toBool());
    EXPECT_FALSE(empty->property("active").toBool());

    for (const char* group : groups) {
        QObject* total = groupTotal(group);
        EXPECT_EQ(total->property("text").toString(), Format::byteCount(model().groupTotalSize(group)))
            << group;
        EXPECT_TRUE(UiHarness::waitFor([&] { return total->property("visible").toBool(); })) << group;
    }

    // The list followed the scan: the last category started sat in the middle (as far
    // as the list can scroll); at the end it came back to the chosen row, the overview.
    ASSERT_FALSE(lastStarted.isEmpty());
    auto* lastRow = item("categoryRow_" + lastStarted);
    ASSERT_NE(lastRow, nullptr);
    auto* content = list->property("contentItem").value<QQuickItem*>();
    const double middle = lastRow->mapToItem(content, QPointF(0, lastRow->height() / 2)).y();
    const double maxY = list->property("contentHeight").toDouble() - list->height();
    ASSERT_GT(maxY, 0) << "the sidebar should be taller than the window for this test";
    const double expected = std::clamp(middle - list->height() / 2, 0.0, maxY);
    EXPECT_GT(expected, 0);
    EXPECT_NEAR(followedTo, expected, 1);
    EXPECT_LE(list->property("contentY").toDouble(), item("overviewRow")->y());
}

TEST_F(WindowTest, CategoryContextMenuSelectsAndCleansOnlyWhenItMay) {
    QObject* menu = find("categoryMenu");
    QObject* cleanItem = find("menuCleanCategory");
    ASSERT_TRUE(menu && cleanItem);
    ASSERT_TRUE(scanToEnd());

    click(item("categoryRow_user.caches"), Qt::RightButton);
    ASSERT_TRUE(UiHarness::waitFor([&] { return menu->property("opened").toBool(); }));
    EXPECT_EQ(menu->property("categoryId").toString(), "user.caches");
    EXPECT_FALSE(cleanItem->property("enabled").toBool()) << "nothing is checked yet";

    // The row shows its whole size until something in it is checked, then the checked
    // size in the accent colour.
    QObject* row = find("categoryRow_user.caches");
    auto* label = row->findChild<QObject*>("trailingLabel");
    const QString total = Format::byteCount(model().totalSize("user.caches"));
    auto shows = [&](const QString& size, bool accent) {
        EXPECT_EQ(label->property("text").toString(), size);
        EXPECT_EQ(label->property("color").value<QColor>() == accentColour, accent);
    };
    shows(total, false);
    model().setItemSelected(someItemKey("user.caches"), true);
    ASSERT_NE(model().selectedSize("user.caches"), model().totalSize("user.caches"));
    shows(Format::byteCount(model().selectedSize("user.caches")), true);
    QMetaObject::invokeMethod(find("menuDeselectAllInCategory"), "triggered");
    EXPECT_FALSE(cleanItem->property("enabled").toBool());
    shows(total, false);
    QMetaObject::invokeMethod(find("menuSelectAllInCategory"), "triggered");
    EXPECT_EQ(model().selectedCount("user.caches"), model().itemCountOf("user.caches"));
    EXPECT_TRUE(cleanItem->property("enabled").toBool());

    // Not while scanning, even with checked items (the previous ticks are kept aside).
    model().scan();
    ASSERT_EQ(model().phase(), AppModel::Phase::scanning);
    EXPECT_FALSE(cleanItem->property("enabled").toBool());
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    ASSERT_GT(model().selectedCount("user.caches"), 0);
    EXPECT_TRUE(cleanItem->property("enabled").toBool());

    QMetaObject::invokeMethod(cleanItem, "triggered");
    EXPECT_EQ(model().cleanScope(), "user.caches");
    EXPECT_TRUE(model().showConfirm());

    // A clean disables it, the toolbar's button and every command of the scan menu; its
    // result sheet closes back into the model's flag.
    model().setShowConfirm(false);
    QMetaObject::invokeMethod(menu, "close");
    model().clean();
    ASSERT_EQ(model().phase(), AppModel::Phase::cleaning);
    for (const char* name : {"menuCleanCategory", "toolbarButton", "menuRescan", "menuStopScan",
                             "menuSelectRecommended", "menuDeselectAll", "menuCleanSelected"})
        EXPECT_FALSE(read(name, "enabled").toBool()) << name;
    ASSERT_TRUE(waitForPhase(AppModel::Phase::ready));
    EXPECT_TRUE(read("toolbarButton", "enabled").toBool());
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("resultSheet", "opened").toBool(); }));
    key(Qt::Key_Escape);
    EXPECT_TRUE(UiHarness::waitFor([&] { return !read("resultSheet", "visible").toBool(); }));
    EXPECT_FALSE(model().showResult());
}

TEST_F(WindowTest, KeyboardReachesTheSidebarAndEveryControlInReadingOrder) {
    ASSERT_TRUE(scanToEnd());
    // Tab walks the sidebar first, then the detail column; whatever takes the focus is
    // brought into sight and shows it.
    QStringList walked;
    QSet<QQuickItem*> seen;
    bool inDetail = false;
    for (int step = 0; step < 80; ++step) {
        key(Qt::Key_Tab);
        QQuickItem* focused = window()->activeFocusItem();
        ASSERT_NE(focused, nullptr);
        if (seen.contains(focused))
            break;
        seen.insert(focused);
        walked << focused->objectName();
        const bool detail = item("detailColumn")->isAncestorOf(focused);
        EXPECT_FALSE(inDetail && !detail) << "back to the sidebar after the detail column";
        inDetail = detail;
        ASSERT_TRUE(settled(focused));
        EXPECT_TRUE(QRectF(0, 0, window()->width(), window()->height())
                        .contains(focused->mapRectToScene(focused->boundingRect())))
            << focused->objectName().toStdString() << " takes the focus out of sight";
        EXPECT_TRUE(focused->objectName() == "sidebarList" || focused->property("visualFocus").toBool())
            << focused->objectName().toStdString() << " hides its focus";
    }
    EXPECT_EQ(walked.value(0), "sidebarList");
    EXPECT_TRUE(walked.contains("toolbarButton"));

    // In the sidebar the arrows move from the chosen row and Return opens.
    item("sidebarList")->forceActiveFocus();
    ASSERT_TRUE(read("overviewRow", "cursor").toBool());
    key(Qt::Key_Down);
    key(Qt::Key_Down);
    EXPECT_TRUE(
        read("categoryRow_" + QString::fromStdString(model().categories().front().id), "cursor").toBool());
    key(Qt::Key_Up);
    key(Qt::Key_Return);
    EXPECT_EQ(read("contentView", "routeKind").toString(), "systemData");
    EXPECT_TRUE(read("systemDataRow", "cursor").toBool());
}
