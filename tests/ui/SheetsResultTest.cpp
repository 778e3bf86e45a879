// The clean result over real cleans of a fake home: the header, the Trash card and its
// purge, the failures with the Full Disk Access note, and the sheet without a result.

#include "UiHarness.h"
#include "WindowFixture.h"

#include "platform/Paths.h"
#include "support/PathQueries.h"
#include "support/SandboxRoot.h"
#include "ui/Format.h"

#include <QQuickItem>
#include <QRegularExpression>

#include <filesystem>
#include <sys/stat.h>

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
};

TEST_F(SheetsResult, ASuccessfulCleanOffersToDeleteWhatWentToTheTrash) {
    ASSERT_TRUE(scanToEnd());
    const std::string cache = idOf("Library/Caches/com.example.editor");
    const std::string trashed = idOf(".Trash/old-report.pdf");
    const int64_t cacheSize = *model().findItem(cache)->size;
    const int64_t trashedSize = *model().findItem(trashed)->size;
    tick(cache);
    tick(trashed);
    ASSERT_TRUE(cleanToResult());

    EXPECT_EQ(read("resultSymbol", "name").toString(), "checkmark.seal.fill");
    EXPECT_EQ(text("resultTitle"), "Cleaned 2 Items");
    EXPECT_EQ(text("resultBytes"), Format::byteCount(cacheSize) + " moved to Trash · " +
                                       Format::byteCount(trashedSize) + " deleted");
    const CleanResult& result = *model().lastResult();
    EXPECT_EQ(text("resultAvailable"), "Now " + Format::byteCount(model().diskAvailable()) + " available (+" +
                                           Format::byteCount(result.freeAfter - result.freeBefore) + ")");
    EXPECT_FALSE(visible("failureSection"));
    EXPECT_FALSE(visible("purgeMessage"));
    ASSERT_TRUE(visible("trashCard"));
    EXPECT_EQ(
        text("trashCardText"),
        "Items in the Trash still use space. Delete them now to free it immediately (only the items just "
        "moved — nothing else in your Trash is touched).");
    EXPECT_EQ(text("purgeButton"), "Delete " + Format::byteCount(cacheSize) + " from Trash");
    EXPECT_EQ(read("purgeButton", "symbol").toString(), "trash.slash");

    // The purge: the card goes, the message comes with its green check.
    click(item("purgeButton"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return !model().purgeMessage().isEmpty(); }, 30000));
    EXPECT_TRUE(UiHarness::waitFor([&] { return !visible("trashCard"); }));
    EXPECT_TRUE(visible("purgeMessage"));
    EXPECT_TRUE(QRegularExpression("^Deleted permanently — freed \\S+ \\S+$")
                    .match(read("purgeMessage", "text").toString())
                    .hasMatch())
        << read("purgeMessage", "text").toString().toStdString();
    EXPECT_EQ(read("purgeMessage", "text").toString(), model().purgeMessage());
    // The header stays as it was.
    EXPECT_EQ(text("resultTitle"), "Cleaned 2 Items");

    // Return closes the sheet.
    key(Qt::Key_Return);
    EXPECT_TRUE(UiHarness::waitFor([&] { return !read("resultSheet", "visible").toBool(); }));
    EXPECT_FALSE(model().showResult());
}

TEST_F(SheetsResult, FailuresShowTheTriangleTheListAndTheAccessNote) {
    home().installTool("brew", "echo 'Error: permission denied' >&2\nexit 1");
    ASSERT_TRUE(scanToEnd());
    const std::string cache = idOf("Library/Caches/com.example.editor");
    const std::string gone = idOf("Library/Caches/org.example.player");
    tick(cache);
    tick(gone);
    tick("cmd.brew");
    // Taken away between scan and clean: its move to the Trash fails.
    std::filesystem::remove_all(gone);
    ASSERT_FALSE(exists(gone));
    // Cleaned in a sandbox that hides the home folder, where access is missing.
    SandboxRoot sandbox;
    if (!sandbox.entered())
        GTEST_SKIP() << "building a sandbox root takes root";
    model().refreshEnvironment();
    ASSERT_FALSE(model().hasFullDiskAccess());
    ASSERT_TRUE(cleanToResult());

    EXPECT_EQ(read("resultSymbol", "name").toString(), "exclamationmark.triangle.fill");
    EXPECT_EQ(text("resultTitle"), "Cleaned 1 Items");
    ASSERT_TRUE(visible("failureSection"));
    EXPECT_EQ(text("failuresTitle"), "2 Items Could Not Be Cleaned");
    auto* list = item("failureList");
    ASSERT_NE(list, nullptr);
    const qreal frame = list->parentItem()->height();
    EXPECT_GE(frame, 140);
    EXPECT_LE(frame, 240);
    EXPECT_EQ(list->property("count").toInt(), 2);

    // Each failure: name, reason, path cut in the middle.
    QMap<QString, QStringList> shown;
    for (int row = 0; row < 2; ++row) {
        QObject* entry = find(QStringLiteral("failure_%1").arg(row));
        ASSERT_NE(entry, nullptr);
        auto child = [&](const char* name) { return entry->findChild<QObject*>(name); };
        ASSERT_NE(child("failureName"), nullptr);
        EXPECT_EQ(child("failurePath")->property("elide").toInt(), Qt::ElideMiddle);
        shown.insert(child("failureName")->property("text").toString(),
                     {child("failureReason")->property("text").toString(),
                      child("failurePath")->property("text").toString()});
    }
    ASSERT_TRUE(shown.contains("org.example.player"));
    EXPECT_EQ(shown["org.example.player"].at(0), "No such file or directory");
    EXPECT_EQ(shown["org.example.player"].at(1), QString::fromStdString(gone));
    ASSERT_TRUE(shown.contains("brew cleanup (remove old Homebrew package versions)"));
    EXPECT_EQ(shown["brew cleanup (remove old Homebrew package versions)"].at(0), "Error: permission denied");

    EXPECT_TRUE(visible("fullDiskAccessNote"));
    EXPECT_EQ(text("fullDiskAccessNote"),
              "Some items may have failed because Full Disk Access hasn't been granted.");

    // With access granted the note goes; the list stays.
    sandbox.leave();
    model().refreshEnvironment();
    ASSERT_TRUE(model().hasFullDiskAccess());
    EXPECT_FALSE(visible("fullDiskAccessNote"));
    EXPECT_TRUE(visible("failureSection"));

    click(item("resultDone"));
    EXPECT_TRUE(UiHarness::waitFor([&] { return !read("resultSheet", "visible").toBool(); }));
    EXPECT_FALSE(model().showResult());
}

TEST_F(SheetsResult, WithoutAResultOnlyTheButtonShows) {
    ASSERT_FALSE(model().hasLastResult());
    model().setShowResult(true);
    ASSERT_TRUE(UiHarness::waitFor([&] { return read("resultSheet", "opened").toBool(); }));
    EXPECT_FALSE(visible("resultHeader"));
    EXPECT_FALSE(visible("trashCard"));
    EXPECT_FALSE(visible("purgeMessage"));
    EXPECT_FALSE(visible("failureSection"));
    EXPECT_TRUE(visible("resultDone"));
    EXPECT_EQ(text("resultDone"), "Done");
    click(item("resultDone"));
    EXPECT_TRUE(UiHarness::waitFor([&] { return !read("resultSheet", "visible").toBool(); }));
    EXPECT_FALSE(model().showResult());
}
