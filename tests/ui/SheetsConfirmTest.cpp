// The clean confirmation over a scanned fake home: the removal-method lines and their
// counts, the command line, the warnings, the scope's title, and its keys.

#include "WindowFixture.h"

#include "support/ImmutableFlag.h"
#include "support/PathQueries.h"
#include "support/SnapshotStandIn.h"
#include "ui/Format.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

// A folder this process may not write into while it lives: read-only for an ordinary
// user; for root, whom permissions do not stop, immutable, which refuses root as well.
struct UnwritableFolder {
    ~UnwritableFolder() {
        if (applied)
            set(false);
    }
    bool set(bool on) const {
        if (::geteuid() != 0)
            return ::chmod(path.c_str(), on ? 0555 : 0755) == 0;
        return setImmutable(path, on);
    }

    const std::string path;
    const bool applied = set(true);
};

} // namespace

class Sheets : public WindowTest {
protected:
    int64_t sizeOf(const std::string& id) {
        const ScanItem* item = model().findItem(id);
        return item && item->size ? *item->size : 0;
    }
    ::testing::AssertionResult opens(const QString& scope = {}) {
        model().requestClean(scope);
        if (UiHarness::waitFor([&] { return read("confirmSheet", "opened").toBool(); }))
            return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << "the confirmation did not open";
    }
    bool closes() {
        return UiHarness::waitFor([&] { return !read("confirmSheet", "visible").toBool(); }) &&
               !model().showConfirm();
    }
};

TEST_F(Sheets, ConfirmListsEveryMethodCountsAdminCommandsTwiceAndNarrowsToAScope) {
    home().installTool("brew", "exit 0");
    home().installTool("snapper", snapperWithSnapshots(1));
    ASSERT_TRUE(scanToEnd());
    const std::string cache = idOf("Library/Caches/com.example.editor");
    const std::string trashed = idOf(".Trash/old-report.pdf");
    for (const std::string& id : {cache, trashed, std::string("cmd.brew"), std::string("cmd.tmutil")})
        tick(id);
    ASSERT_TRUE(opens());

    EXPECT_FALSE(visible("confirmScopeTitle"));
    EXPECT_EQ(text("confirmTitle"), "Clean 4 Items");
    EXPECT_EQ(text("confirmTotal"),
              "About " + Format::byteCount(sizeOf(cache) + sizeOf(trashed)) + " in total");
    EXPECT_EQ(read("confirmTrashRow", "valueText").toString(),
              "1 items · " + Format::byteCount(sizeOf(cache)));
    EXPECT_EQ(read("confirmPermanentRow", "valueText").toString(),
              "1 items · " + Format::byteCount(sizeOf(trashed)));
    // Display order: the system group's command comes before the developer group's.
    EXPECT_EQ(read("confirmCommandsRow", "plainText").toString(),
              "Run commands: Delete all Time Machine local snapshots, "
              "brew cleanup (remove old Homebrew package versions)");
    // The administrator command also asks for the password.
    EXPECT_EQ(read("warnAdmin", "text").toString(),
              "1 system items — macOS will ask for an administrator password once");
    EXPECT_TRUE(visible("warnAdmin"));

    // Escape leaves everything as it was.
    key(Qt::Key_Escape);
    ASSERT_TRUE(closes());
    EXPECT_EQ(model().phase(), AppModel::Phase::ready);
    EXPECT_EQ(model().selectionCount(), 4);

    // Scoped to one category (whose lines the whole flow checks): its one item, no
    // warning for what lies outside it; Return cleans only that item.
    ASSERT_TRUE(opens("user.caches"));
    EXPECT_EQ(text("confirmTitle"), "Clean 1 Items");
    EXPECT_FALSE(visible("confirmWarnings"));
    key(Qt::Key_Return);
    ASSERT_TRUE(closes());
    ASSERT_TRUE(UiHarness::waitFor([&] { return model().showResult(); }, 30000));
    EXPECT_FALSE(exists(cache));
    EXPECT_TRUE(exists(trashed));
}

TEST_F(Sheets, WarningsNameLargeFilesReviewItemsAndItemsNeedingTheAdministrator) {
    model().setLargeThresholdGB(0.001);
    home().makeFileOfSize("Documents/footage.mov", 3'000'000);
    const UnwritableFolder logs{home().path("Library/Logs")};
    ASSERT_TRUE(logs.applied) << "could not make the folder unwritable";
    ASSERT_TRUE(scanToEnd());
    const std::string large = idOf("Documents/footage.mov");
    const std::string download = idOf("Downloads/installer.zip");
    const std::string log = idOf("Library/Logs/example.log");
    ASSERT_EQ(model().findItem(log)->method.kind, RemovalMethod::Kind::adminTrash);

    struct Case {
        std::vector<std::string> ticked;
        bool large, review, admin;
    };
    // The large file, itself of a review category, is only a large file. An item the
    // administrator must move still goes to the Trash, after the password.
    const Case cases[] = {
        {{large}, true, false, false}, {{large, download}, true, true, false}, {{log}, false, false, true}};
    for (const Case& each : cases) {
        model().clearSelection();
        int64_t bytes = 0;
        for (const std::string& id : each.ticked) {
            tick(id);
            bytes += sizeOf(id);
        }
        ASSERT_TRUE(opens());
        EXPECT_EQ(read("confirmTrashRow", "valueText").toString(),
                  QStringLiteral("%1 items · ").arg(each.ticked.size()) + Format::byteCount(bytes));
        EXPECT_EQ(visible("warnLarge"), each.large);
        EXPECT_EQ(visible("warnReview"), each.review);
        EXPECT_EQ(visible("warnAdmin"), each.admin);
        if (each.review) {
            EXPECT_EQ(read("warnReview", "text").toString(),
                      "1 items from review categories (Downloads/Backups/Archives)");
        }
        if (each.large) {
            EXPECT_EQ(read("warnLarge", "text").toString(),
                      "1 large files selected — make sure you don't need them");
        }
        click(item("confirmCancel"));
        ASSERT_TRUE(closes());
    }
}
