// The category table: its order and sorting, the filter, rows with their location,
// note, badge and icon, the two selections (check boxes and row highlight), the
// context menu and the primary action, and what a change of category resets.

#include "CategoryDetailFixture.h"
#include "UiHarness.h"
#include "support/SnapshotStandIn.h"
#include "ui/Format.h"
#include "ui/Platform.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

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
        age(".npm/_cacache", 10);
        age(".npm/_logs", 3);
        age(".gradle/caches", 30);
        ASSERT_TRUE(scanToEnd());
        ASSERT_NE(show(QStringLiteral("dev.packages")), nullptr);
        ASSERT_EQ(model().itemCountOf("dev.packages"), 4);
        ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 4; }));
    }

    QString homePath(const char* relative) { return QString::fromStdString(home().path(relative)); }
    // Types `text` into whatever has the keyboard focus.
    void type(const QString& text) {
        for (QChar c : text)
            QTest::keyClick(window(), c.toLatin1());
    }

    QStringList highlighted() {
        QStringList names;
        for (QQuickItem* each : rows())
            if (each->property("highlighted").toBool())
                names << each->property("name").toString();
        return names;
    }
    QStringList checked() {
        QStringList names;
        for (QQuickItem* each : rows())
            if (each->property("checked").toBool())
                names << each->property("name").toString();
        return names;
    }
    bool shows(const QStringList& names) {
        return UiHarness::waitFor([&] { return shownNames() == names; });
    }
};

TEST_F(CategoryTable, SortsBySizeFirstAndByAnyColumnClicked) {
    scanPackages();
    EXPECT_EQ(read("sortHeader_name", "title").toString(), "Name");
    EXPECT_EQ(read("sortHeader_size", "title").toString(), "Size");
    EXPECT_EQ(read("sortHeader_modified", "title").toString(), "Modified");
    // Largest first; the command's unknown size sorts after every known one.
    EXPECT_TRUE(shows({gradle, npmLogs, npmCache, brew})) << shownNames().join(", ").toStdString();
    QQuickItem* command = row(brew);
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(part(command, "itemSize")->property("text").toString(), "—");
    EXPECT_EQ(part(command, "itemModified")->property("text").toString(), "—");
    QQuickItem* logs = row(npmLogs);
    EXPECT_EQ(part(logs, "itemSize")->property("text").toString(),
              Format::byteCount(logs->property("size").toLongLong()));
    EXPECT_EQ(part(logs, "itemSize")->property("horizontalAlignment").toInt(), Qt::AlignRight);
    EXPECT_EQ(part(logs, "itemModified")->property("text").toString(), "3 days ago");

    // Newest first, then oldest first: an unknown date is the oldest of all.
    click(item("sortHeader_modified"));
    EXPECT_TRUE(shows({npmLogs, npmCache, gradle, brew})) << shownNames().join(", ").toStdString();
    click(item("sortHeader_modified"));
    EXPECT_TRUE(shows({brew, gradle, npmCache, npmLogs})) << shownNames().join(", ").toStdString();

    // Names in the collator's order, then reversed.
    click(item("sortHeader_name"));
    EXPECT_TRUE(shows({npmCache, npmLogs, brew, gradle})) << shownNames().join(", ").toStdString();
    click(item("sortHeader_name"));
    EXPECT_TRUE(shows({gradle, brew, npmLogs, npmCache})) << shownNames().join(", ").toStdString();

    click(item("sortHeader_size"));
    EXPECT_TRUE(shows({gradle, npmLogs, npmCache, brew})) << shownNames().join(", ").toStdString();
    click(item("sortHeader_size"));
    EXPECT_TRUE(shows({brew, npmCache, npmLogs, gradle})) << shownNames().join(", ").toStdString();
}

TEST_F(CategoryTable, FilterMatchesNamesAndLocationsWhateverTheCase) {
    scanPackages();
    QQuickItem* field = item("filterField");
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->property("placeholderText").toString(), "Filter");

    click(field);
    type("NPM");
    EXPECT_EQ(model().categoryTable()->filterText(), "NPM");
    EXPECT_TRUE(shows({npmLogs, npmCache}))
        << "by location ~/.npm: " << shownNames().join(", ").toStdString();

    QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
    type("CACHE");
    EXPECT_TRUE(shows({gradle, npmCache})) << "by name: " << shownNames().join(", ").toStdString();

    // A command item's location is its command text.
    QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
    type("Prune=");
    EXPECT_TRUE(shows({brew})) << shownNames().join(", ").toStdString();

    // The clear button empties the filter: every row again.
    click(item("filterClearButton"));
    EXPECT_EQ(model().categoryTable()->filterText(), "");
    EXPECT_TRUE(shows({gradle, npmLogs, npmCache, brew})) << shownNames().join(", ").toStdString();
}

TEST_F(CategoryTable, RowsShowLocationNoteBadgeAndIcon) {
    home().installTool("snapper", snapperWithSnapshots(2));
    scanPackages();

    // Different folders: no common location, every row its own line.
    EXPECT_FALSE(item("commonLocationLabel")->isVisible());
    QQuickItem* command = row(brew);
    ASSERT_NE(command, nullptr);
    EXPECT_TRUE(command->property("locationShown").toBool());
    EXPECT_EQ(part(command, "itemLocation")->property("text").toString(), brewCommand);
    EXPECT_EQ(part(row(gradle), "itemLocation")->property("text").toString(), "~/.gradle");
    EXPECT_EQ(part(row(npmCache), "itemLocation")->property("text").toString(), "~/.npm");
    EXPECT_EQ(part(command, "nameCell")->property("help").toString(), brewCommand);
    EXPECT_EQ(part(row(gradle), "nameCell")->property("help").toString(), homePath(".gradle/caches"));

    // Command: a terminal for icon and badge; file: its icon and no badge.
    EXPECT_TRUE(part(command, "itemCommandIcon")->isVisible());
    EXPECT_FALSE(part(command, "itemFileIcon")->isVisible());
    QQuickItem* badge = part(command, "methodBadge");
    EXPECT_TRUE(badge->isVisible());
    EXPECT_EQ(badge->property("symbolName").toString(), "terminal");
    EXPECT_EQ(badge->property("help").toString(), "Runs a command");
    EXPECT_TRUE(part(row(gradle), "itemFileIcon")->isVisible());
    EXPECT_FALSE(part(row(gradle), "itemCommandIcon")->isVisible());
    EXPECT_FALSE(part(row(gradle), "methodBadge")->isVisible());

    // An administrator command with a note: the note in orange instead of a location.
    ASSERT_NE(show(QStringLiteral("system.snapshots")), nullptr);
    ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 1; }));
    QQuickItem* snapshots = rows().front();
    EXPECT_TRUE(snapshots->property("noteShown").toBool());
    EXPECT_FALSE(snapshots->property("locationShown").toBool());
    EXPECT_EQ(part(snapshots, "itemNote")->property("text").toString(),
              "2 snapshots found (actual size is unknown until deleted)");
    EXPECT_EQ(part(snapshots, "itemNote")->property("color").value<QColor>(), QColor("#ff9500"));
    EXPECT_EQ(part(snapshots, "methodBadge")->property("symbolName").toString(), "terminal.fill");
    EXPECT_EQ(part(snapshots, "methodBadge")->property("help").toString(), "Runs a command");

    // Permanent deletion: the crossed-out bin.
    ASSERT_NE(show(QStringLiteral("user.trash")), nullptr);
    ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 1; }));
    badge = part(rows().front(), "methodBadge");
    EXPECT_TRUE(badge->isVisible());
    EXPECT_EQ(badge->property("symbolName").toString(), "trash.slash");
    EXPECT_EQ(badge->property("help").toString(), "Deleted permanently");
}

TEST_F(CategoryTable, CommonLocationShowsOnceUntilOneItemLiesElsewhere) {
    home().makeFileOfSize("Library/Logs/second.log", 20'000);
    ASSERT_TRUE(scanToEnd());
    ASSERT_NE(show(QStringLiteral("user.logs")), nullptr);
    ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 2; }));
    EXPECT_TRUE(item("commonLocationLabel")->isVisible());
    EXPECT_EQ(text("commonLocationText"), "~/Library/Logs");
    for (QQuickItem* each : rows()) {
        EXPECT_FALSE(each->property("locationShown").toBool());
        EXPECT_FALSE(part(each, "itemLocation")->isVisible());
    }

    home().makeFileOfSize("Library/Logs/DiagnosticReports/editor.crash", 10'000);
    ASSERT_TRUE(scanToEnd());
    ASSERT_TRUE(UiHarness::waitFor([&] { return rows().size() == 3; }));
    EXPECT_FALSE(item("commonLocationLabel")->isVisible());
    for (QQuickItem* each : rows()) {
        EXPECT_TRUE(part(each, "itemLocation")->isVisible());
        EXPECT_EQ(part(each, "itemLocation")->property("text").toString(),
                  each->property("location").toString());
    }
    EXPECT_EQ(part(row("editor.crash"), "itemLocation")->property("text").toString(),
              "~/Library/Logs/DiagnosticReports");
    EXPECT_EQ(part(row("second.log"), "itemLocation")->property("text").toString(), "~/Library/Logs");
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
    EXPECT_EQ(text("menuCheckItems"), "Check");
    EXPECT_EQ(text("menuUncheckItems"), "Uncheck");
    trigger("menuCheckItems");
    EXPECT_EQ(checked(), QStringList({npmLogs, npmCache}));
    EXPECT_EQ(model().selectedCount("dev.packages"), 2);

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
    EXPECT_EQ(model().selectedCount("dev.packages"), 0);
    QMetaObject::invokeMethod(find("itemContextMenu"), "close");
}

TEST_F(CategoryTable, RevealAndCopyPathSkipWhatHasNoPlaceOnDisk) {
    scanPackages();
    UrlRecorder opened({QStringLiteral("file")});
    QSignalSpy revealed(Platform::instance(), &Platform::revealFinished);
    QClipboard* clipboard = QGuiApplication::clipboard();

    // A command: no reveal entry; its path is its command text.
    ASSERT_TRUE(openMenuOn(row(brew)));
    EXPECT_FALSE(menuEntryShown("menuShowInFileViewer"));
    EXPECT_TRUE(menuEntryShown("menuCopyPath"));
    EXPECT_EQ(text("menuCopyPath"), "Copy Path");
    trigger("menuCopyPath");
    EXPECT_EQ(clipboard->text(), brewCommand);

    // A folder: both, and the reveal shows that folder.
    ASSERT_TRUE(openMenuOn(row(gradle)));
    EXPECT_TRUE(menuEntryShown("menuShowInFileViewer"));
    EXPECT_EQ(text("menuShowInFileViewer"), "Show in Finder");
    trigger("menuCopyPath");
    EXPECT_EQ(clipboard->text(), homePath(".gradle/caches"));
    ASSERT_TRUE(openMenuOn(row(gradle)));
    trigger("menuShowInFileViewer");
    ASSERT_TRUE(UiHarness::waitFor([&] { return revealed.count() == 1; }, 5000));
    EXPECT_EQ(revealed.takeFirst().at(0).toString(), homePath(".gradle/caches"));
    QMetaObject::invokeMethod(find("itemContextMenu"), "close");
    ASSERT_TRUE(UiHarness::waitFor([&] { return !read("itemContextMenu", "visible").toBool(); }));

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
    QMetaObject::invokeMethod(find("itemContextMenu"), "close");
    ASSERT_TRUE(UiHarness::waitFor([&] { return !read("itemContextMenu", "visible").toBool(); }));
    click(item("filterClearButton"));
    ASSERT_TRUE(shows({gradle, npmLogs, npmCache, brew}));

    // Return on a highlighted command does nothing; on a folder it reveals it, and so
    // does a double-click.
    click(row(brew));
    QTest::keyClick(window(), Qt::Key_Return);
    UiHarness::spin(300);
    EXPECT_EQ(revealed.count(), 0);
    click(row(npmLogs));
    QTest::keyClick(window(), Qt::Key_Return);
    ASSERT_TRUE(UiHarness::waitFor([&] { return revealed.count() == 1; }, 5000));
    EXPECT_EQ(revealed.takeFirst().at(0).toString(), homePath(".npm/_logs"));
    doubleClick(row(npmCache));
    ASSERT_TRUE(UiHarness::waitFor([&] { return revealed.count() == 1; }, 5000));
    EXPECT_EQ(revealed.takeFirst().at(0).toString(), homePath(".npm/_cacache"));
    EXPECT_TRUE(model().selection().empty()) << "revealing checks nothing";
}

TEST_F(CategoryTable, AnotherCategoryClearsFilterAndHighlightButKeepsTheSort) {
    home().makeFileOfSize("Library/Logs/second.log", 20'000);
    ASSERT_TRUE(scanToEnd());
    ASSERT_NE(show(QStringLiteral("user.caches")), nullptr);
    click(item("sortHeader_name"));
    ASSERT_EQ(model().categoryTable()->sortKey(), CategoryItemsProxy::SortKey::name);
    click(item("filterField"));
    type("editor");
    ASSERT_TRUE(shows({"com.example.editor"}));
    click(row("com.example.editor"));
    ASSERT_EQ(highlighted(), QStringList{"com.example.editor"});

    ASSERT_NE(show(QStringLiteral("user.logs")), nullptr);
    EXPECT_EQ(window()->title(), "Logs & Crash Reports");
    EXPECT_EQ(read("filterField", "text").toString(), "");
    EXPECT_EQ(model().categoryTable()->filterText(), "");
    EXPECT_EQ(model().categoryTable()->sortKey(), CategoryItemsProxy::SortKey::name);
    EXPECT_TRUE(model().categoryTable()->ascending());
    EXPECT_TRUE(shows({"example.log", "second.log"})) << shownNames().join(", ").toStdString();
    EXPECT_TRUE(highlighted().isEmpty());

    // And back: the first category's rows are all there, none highlighted.
    ASSERT_NE(show(QStringLiteral("user.caches")), nullptr);
    EXPECT_TRUE(shows({"com.example.editor", "org.example.player"})) << shownNames().join(", ").toStdString();
    EXPECT_TRUE(highlighted().isEmpty());
}
