// The category table: its order and sorting, the filter, rows with their location,
// note, badge and icon, the two selections (check boxes and row highlight), the
// context menu and the primary action, and what a change of category resets.

#include "CategoryDetailFixture.h"
#include "support/SnapshotStandIn.h"
#include "support/TempTree.h"
#include "ui/Format.h"
#include "ui/Platform.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

#include <ctime>

namespace {

const QString npmCache = QStringLiteral("_cacache");
const QString npmLogs = QStringLiteral("_logs");
const QString gradle = QStringLiteral("caches");
const QString brew = QStringLiteral("brew cleanup (remove old Homebrew package versions)");
const QString brewCommand = QStringLiteral("brew cleanup -s --prune=all");

} // namespace

class CategoryTable : public CategoryDetail {
protected:
    // Package caches of three sizes and ages, and the Homebrew clean-up command, whose
    // size and date are unknown.
    void scanPackages() {
        home().makeFileOfSize(".npm/_logs/debug-1.log", 120'000);
        home().makeFileOfSize(".gradle/caches/modules-2/files.bin", 300'000);
        home().installTool("brew", "exit 0");
        for (const auto& [folder, days] :
             {std::pair{".npm/_cacache", 10}, {".npm/_logs", 3}, {".gradle/caches", 30}})
            setModificationTime(home().path(folder), std::time(nullptr) - days * 86400);
        ASSERT_TRUE(scanToEnd());
        ASSERT_NE(show(QStringLiteral("dev.packages")), nullptr);
        ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 4; }));
    }

    QString homePath(const char* relative) { return QString::fromStdString(home().path(relative)); }
    // Types `text` into whatever has the keyboard focus, replacing what it held.
    void type(const QString& text) {
        QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
        for (QChar c : text)
            QTest::keyClick(window(), c.toLatin1());
    }
    QStringList rowsWhere(const char* property) {
        QStringList names;
        for (QQuickItem* each : rows())
            if (each->property(property).toBool())
                names << each->property("name").toString();
        return names;
    }
    QStringList highlighted() { return rowsWhere("highlighted"); }
    QStringList checked() { return rowsWhere("checked"); }
    ::testing::AssertionResult shows(const QStringList& names) {
        if (UiHarness::waitFor([&] { return shownNames() == names; }))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "shown: " << shownNames().join(", ").toStdString();
    }
};

TEST_F(CategoryTable, HeadersSortAndTheFieldFiltersNamesAndLocationsWhateverTheCase) {
    scanPackages();
    // Largest first; the command's unknown size sorts after every known one.
    EXPECT_TRUE(shows({gradle, npmLogs, npmCache, brew}));
    EXPECT_EQ(partText(row(brew), "itemSize"), "—");
    EXPECT_EQ(partText(row(brew), "itemModified"), "—");
    EXPECT_EQ(partText(row(npmLogs), "itemSize"),
              Format::byteCount(row(npmLogs)->property("size").toLongLong()));
    EXPECT_EQ(partText(row(npmLogs), "itemModified"), "3 days ago");

    // A header sorts by its column, a second click reverses; an unknown date is the
    // oldest of all.
    const std::vector<std::pair<const char*, QStringList>> clicks{
        {"sortHeader_modified", {npmLogs, npmCache, gradle, brew}},
        {"sortHeader_modified", {brew, gradle, npmCache, npmLogs}},
        {"sortHeader_name", {npmCache, npmLogs, brew, gradle}},
        {"sortHeader_size", {gradle, npmLogs, npmCache, brew}},
        {"sortHeader_size", {brew, npmCache, npmLogs, gradle}},
    };
    for (const auto& [header, order] : clicks) {
        click(item(header));
        EXPECT_TRUE(shows(order)) << header;
    }

    // The filter keeps that order: by the location ~/.npm, by name, and a command by its
    // command text; its clear button shows every row again.
    click(item("filterField"));
    const std::vector<std::pair<QString, QStringList>> filters{
        {"NPM", {npmCache, npmLogs}}, {"CACHE", {npmCache, gradle}}, {"Prune=", {brew}}};
    for (const auto& [filter, found] : filters) {
        type(filter);
        EXPECT_TRUE(shows(found)) << filter.toStdString();
    }
    click(item("filterClearButton"));
    EXPECT_TRUE(shows({brew, npmCache, npmLogs, gradle}));
}

TEST_F(CategoryTable, RowsShowLocationNoteBadgeAndIcon) {
    home().installTool("snapper", snapperWithSnapshots(2));
    scanPackages();

    // Different folders: every row its own line.
    QQuickItem* command = row(brew);
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(partText(command, "itemLocation"), brewCommand);
    EXPECT_EQ(partText(row(gradle), "itemLocation"), "~/.gradle");
    EXPECT_EQ(part(command, "nameCell")->property("help").toString(), brewCommand);
    EXPECT_EQ(part(row(gradle), "nameCell")->property("help").toString(), homePath(".gradle/caches"));

    // Command: a terminal for icon and badge; file: its icon and no badge.
    EXPECT_TRUE(part(command, "itemCommandIcon")->isVisible());
    EXPECT_FALSE(part(command, "itemFileIcon")->isVisible());
    EXPECT_EQ(part(command, "methodBadge")->property("symbolName").toString(), "terminal");
    EXPECT_TRUE(part(row(gradle), "itemFileIcon")->isVisible());
    EXPECT_FALSE(part(row(gradle), "itemCommandIcon")->isVisible());
    EXPECT_FALSE(part(row(gradle), "methodBadge")->isVisible());

    // An administrator command with a note: the note instead of a location; permanent
    // deletion: the crossed-out bin.
    const std::vector<std::tuple<QString, const char*, bool>> badges{
        {"system.snapshots", "terminal.fill", true}, {"user.trash", "trash.slash", false}};
    for (const auto& [category, symbol, noted] : badges) {
        ASSERT_NE(show(category), nullptr);
        ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 1; }));
        QQuickItem* only = rows().front();
        EXPECT_EQ(part(only, "methodBadge")->property("symbolName").toString(), symbol);
        EXPECT_EQ(only->property("noteShown").toBool(), noted) << symbol;
        EXPECT_FALSE(noted && only->property("locationShown").toBool()) << "a note replaces the location";
    }
}

TEST_F(CategoryTable, HighlightIsNotTheCheckSelectionAndTheMenuActsOnIt) {
    scanPackages();
    // Click, Ctrl-click: two rows highlighted, none checked.
    click(row(npmCache));
    click(row(npmLogs), Qt::LeftButton, Qt::ControlModifier);
    EXPECT_EQ(highlighted(), QStringList({npmLogs, npmCache}));
    EXPECT_TRUE(checked().isEmpty());

    // The menu on a highlighted row checks the whole highlight.
    ASSERT_TRUE(openMenuOn(row(npmLogs)));
    trigger("menuCheckItems");
    EXPECT_EQ(checked(), QStringList({npmLogs, npmCache}));

    // On another row it acts on that row only, and leaves the highlight alone.
    ASSERT_TRUE(openMenuOn(row(gradle)));
    trigger("menuCheckItems");
    EXPECT_EQ(checked(), QStringList({gradle, npmLogs, npmCache}));
    EXPECT_EQ(highlighted(), QStringList({npmLogs, npmCache}));

    // Shift-click extends from the last row clicked; Uncheck clears the range.
    click(row(gradle));
    click(row(npmCache), Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(highlighted(), QStringList({gradle, npmLogs, npmCache}));
    ASSERT_TRUE(openMenuOn(row(npmLogs)));
    trigger("menuUncheckItems");
    EXPECT_TRUE(checked().isEmpty());
    QMetaObject::invokeMethod(find("itemContextMenu"), "close");
}

TEST_F(CategoryTable, RevealAndCopyPathSkipWhatHasNoPlaceOnDisk) {
    scanPackages();
    UrlRecorder opened({QStringLiteral("file")});
    QSignalSpy revealed(Platform::instance(), &Platform::revealFinished);
    auto closeMenu = [&] {
        QMetaObject::invokeMethod(find("itemContextMenu"), "close");
        ASSERT_TRUE(UiHarness::waitFor([&] { return !read("itemContextMenu", "visible").toBool(); }));
    };

    // A command: no reveal entry; its path is its command text. A folder is revealed.
    ASSERT_TRUE(openMenuOn(row(brew)));
    EXPECT_FALSE(menuEntryShown("menuShowInFileViewer"));
    trigger("menuCopyPath");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), brewCommand);
    ASSERT_TRUE(openMenuOn(row(gradle)));
    EXPECT_TRUE(menuEntryShown("menuShowInFileViewer"));
    trigger("menuShowInFileViewer");
    ASSERT_TRUE(UiHarness::waitFor([&] { return revealed.count() == 1; }));
    EXPECT_EQ(revealed.takeFirst().at(0).toString(), homePath(".gradle/caches"));
    closeMenu();

    // Blank space: nothing to act on, so nothing but the check entries.
    click(item("filterField"));
    type("gradle");
    ASSERT_TRUE(shows({gradle}));
    QQuickItem* list = item("itemList");
    const QPointF blank = list->mapToScene(QPointF(list->width() / 2, list->height() - 10));
    QTest::mouseClick(window(), Qt::RightButton, Qt::NoModifier, blank.toPoint());
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("itemContextMenu", "opened").toBool(); }));
    EXPECT_FALSE(menuEntryShown("menuShowInFileViewer"));
    EXPECT_FALSE(menuEntryShown("menuCopyPath"));
    EXPECT_FALSE(read("menuCheckItems", "enabled").toBool());
    closeMenu();
    click(item("filterClearButton"));
    ASSERT_TRUE(shows({gradle, npmLogs, npmCache, brew}));

    // Return on a highlighted command does nothing; on a folder it reveals it, and so
    // does a double-click. A reveal of the command would have come first.
    click(row(brew));
    QTest::keyClick(window(), Qt::Key_Return);
    click(row(npmLogs));
    QTest::keyClick(window(), Qt::Key_Return);
    ASSERT_TRUE(UiHarness::waitFor([&] { return revealed.count() >= 1; }));
    EXPECT_EQ(revealed.takeFirst().at(0).toString(), homePath(".npm/_logs"));
    QQuickItem* target = row(npmCache);
    ASSERT_TRUE(settled(target));
    const QPoint centre = target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
    QTest::mouseClick(window(), Qt::LeftButton, Qt::NoModifier, centre);
    QTest::mouseDClick(window(), Qt::LeftButton, Qt::NoModifier, centre);
    ASSERT_TRUE(UiHarness::waitFor([&] { return revealed.count() >= 1; }));
    EXPECT_EQ(revealed.takeFirst().at(0).toString(), homePath(".npm/_cacache"));
    EXPECT_EQ(revealed.count(), 0);
    EXPECT_TRUE(model().selection().empty()) << "revealing checks nothing";
}

TEST_F(CategoryTable, AnotherCategoryClearsFilterAndHighlightKeepsTheSortAndShowsACommonLocationOnce) {
    home().makeFileOfSize("Library/Logs/second.log", 20'000);
    ASSERT_TRUE(scanToEnd());
    ASSERT_NE(show(QStringLiteral("user.caches")), nullptr);
    click(item("sortHeader_name"));
    click(item("filterField"));
    type("editor");
    ASSERT_TRUE(shows({"com.example.editor"}));
    click(row("com.example.editor"));
    ASSERT_EQ(highlighted(), QStringList{"com.example.editor"});

    // Two logs in one folder: its location once above the table, none on the rows.
    ASSERT_NE(show(QStringLiteral("user.logs")), nullptr);
    EXPECT_EQ(read("filterField", "text").toString(), "");
    EXPECT_EQ(model().categoryTable()->sortKey(), CategoryItemsProxy::SortKey::name);
    EXPECT_TRUE(shows({"example.log", "second.log"}));
    EXPECT_TRUE(highlighted().isEmpty());
    EXPECT_TRUE(visible("commonLocationLabel"));
    for (QQuickItem* each : rows())
        EXPECT_FALSE(part(each, "itemLocation")->isVisible());

    // And back: the first category's rows are all there, none highlighted.
    ASSERT_NE(show(QStringLiteral("user.caches")), nullptr);
    EXPECT_TRUE(shows({"com.example.editor", "org.example.player"}));
    EXPECT_TRUE(highlighted().isEmpty());

    // One log elsewhere: every row its own location.
    home().makeFileOfSize("Library/Logs/DiagnosticReports/editor.crash", 10'000);
    ASSERT_TRUE(scanToEnd());
    ASSERT_NE(show(QStringLiteral("user.logs")), nullptr);
    ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 3u; }));
    EXPECT_FALSE(visible("commonLocationLabel"));
    EXPECT_EQ(partText(row("editor.crash"), "itemLocation"), "~/Library/Logs/DiagnosticReports");
    EXPECT_EQ(partText(row("second.log"), "itemLocation"), "~/Library/Logs");
    for (QQuickItem* each : rows())
        EXPECT_TRUE(part(each, "itemLocation")->isVisible());
}
