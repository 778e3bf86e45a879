// The clean result over real cleans of a fake home: the header, the Trash card, the
// failures with the Full Disk Access note, and the sheet before any clean. The purge
// itself is part of the whole session's flow.

#include "WindowFixture.h"

#include "support/SandboxRoot.h"
#include "ui/Format.h"

#include <filesystem>

class SheetsResult : public WindowTest {
protected:
    // Cleans what is ticked and waits for the result sheet.
    ::testing::AssertionResult cleanToResult() {
        model().clean();
        if (model().phase() != AppModel::Phase::cleaning)
            return ::testing::AssertionFailure() << "the clean did not start";
        if (!waitForPhase(AppModel::Phase::ready))
            return ::testing::AssertionFailure() << "the clean did not end";
        if (!UiHarness::waitFor([&] { return read("resultSheet", "opened").toBool(); }))
            return ::testing::AssertionFailure() << "the result sheet did not open";
        return ::testing::AssertionSuccess();
    }
    bool closes() {
        return UiHarness::waitFor([&] { return !read("resultSheet", "visible").toBool(); }) &&
               !model().showResult();
    }
};

TEST_F(SheetsResult, ShowsOnlyItsButtonWithoutAResultAndAfterACleanCountsBothWaysAndOffersTheTrashedBytes) {
    // Before any clean: nothing but the button.
    model().setShowResult(true);
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("resultSheet", "opened").toBool(); }));
    for (const char* part : {"resultHeader", "trashCard", "purgeMessage", "failureSection"})
        EXPECT_FALSE(visible(part)) << part;
    click(item("resultDone"));
    EXPECT_TRUE(closes());

    ASSERT_TRUE(scanToEnd());
    const std::string cache = idOf("Library/Caches/com.example.editor");
    const std::string trashed = idOf(".Trash/old-report.pdf");
    const int64_t cacheSize = *model().findItem(cache)->size;
    const int64_t trashedSize = *model().findItem(trashed)->size;
    tick(cache);
    tick(trashed);
    ASSERT_TRUE(cleanToResult());

    EXPECT_EQ(text("resultBytes"), Format::byteCount(cacheSize) + " moved to Trash · " +
                                       Format::byteCount(trashedSize) + " deleted");
    const CleanResult& result = *model().lastResult();
    EXPECT_EQ(text("resultAvailable"), "Now " + Format::byteCount(model().diskAvailable()) + " available (+" +
                                           Format::byteCount(result.freeAfter - result.freeBefore) + ")");
    EXPECT_TRUE(visible("trashCard"));
    EXPECT_EQ(text("purgeButton"), "Delete " + Format::byteCount(cacheSize) + " from Trash");

    // Return closes the sheet.
    key(Qt::Key_Return);
    EXPECT_TRUE(closes());
}

TEST_F(SheetsResult, FailuresShowTheTriangleTheListAndTheAccessNote) {
    home().installTool("brew", "echo 'Error: permission denied' >&2\nexit 1");
    ASSERT_TRUE(scanToEnd());
    const std::string gone = idOf("Library/Caches/org.example.player");
    for (const std::string& id : {idOf("Library/Caches/com.example.editor"), gone, std::string("cmd.brew")})
        tick(id);
    // Taken away between scan and clean: its move to the Trash fails.
    std::filesystem::remove_all(gone);
    // Cleaned in a sandbox that hides the home folder, where access is missing.
    SandboxRoot sandbox;
    if (!sandbox.entered())
        GTEST_SKIP() << "building a sandbox root takes root";
    model().refreshEnvironment();
    ASSERT_TRUE(cleanToResult());

    EXPECT_EQ(read("resultSymbol", "name").toString(), "exclamationmark.triangle.fill");
    EXPECT_EQ(text("resultTitle"), "Cleaned 1 Items");
    EXPECT_EQ(text("failuresTitle"), "2 Items Could Not Be Cleaned");
    ASSERT_EQ(read("failureList", "count").toInt(), 2);
    const qreal frame = item("failureList")->parentItem()->height();
    EXPECT_TRUE(frame >= 140 && frame <= 240) << frame;

    // Each failure: name, reason, path cut in the middle.
    QMap<QString, QStringList> shown;
    for (int row = 0; row < 2; ++row) {
        QObject* entry = find(QStringLiteral("failure_%1").arg(row));
        ASSERT_NE(entry, nullptr);
        auto child = [&](const char* name) {
            return entry->findChild<QObject*>(name)->property("text").toString();
        };
        EXPECT_EQ(entry->findChild<QObject*>("failurePath")->property("elide").toInt(), Qt::ElideMiddle);
        shown.insert(child("failureName"), {child("failureReason"), child("failurePath")});
    }
    EXPECT_EQ(shown.value("org.example.player"),
              QStringList({"No such file or directory", QString::fromStdString(gone)}));
    EXPECT_EQ(shown.value("brew cleanup (remove old Homebrew package versions)").value(0),
              "Error: permission denied");
    EXPECT_TRUE(visible("fullDiskAccessNote"));

    // With access granted the note goes; the list stays.
    sandbox.leave();
    model().refreshEnvironment();
    EXPECT_FALSE(visible("fullDiskAccessNote"));
    EXPECT_TRUE(visible("failureSection"));
    click(item("resultDone"));
    EXPECT_TRUE(closes());
}
