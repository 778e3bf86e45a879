// The clean confirmation over a scanned fake home: the removal-method lines and their
// counts, the command line, the warnings, the scope's title, and its keys.

#include "UiHarness.h"
#include "WindowFixture.h"
#include "support/SnapshotStandIn.h"

#include "catalogue/CleanupRules.h"
#include "platform/Paths.h"
#include "support/PathQueries.h"
#include "ui/Format.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A stand-in command-line tool on the search path of probes and clean-up commands.

// Makes a folder one this process may not write into while it lives: read-only
// permissions for an ordinary user; for root, whom permissions do not stop, the
// immutable attribute, which refuses writing to root as well.
class UnwritableFolder {
public:
    explicit UnwritableFolder(std::string path) : path_(std::move(path)) {
        if (::geteuid() != 0) {
            applied_ = ::chmod(path_.c_str(), 0555) == 0;
            return;
        }
        applied_ = setImmutable(true);
    }
    ~UnwritableFolder() {
        if (!applied_)
            return;
        if (::geteuid() != 0)
            ::chmod(path_.c_str(), 0755);
        else
            setImmutable(false);
    }
    bool applied() const { return applied_; }
    const std::string& error() const { return error_; }

private:
    bool setImmutable(bool on) {
        const int fd = ::open(path_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0) {
            error_ = std::strerror(errno);
            return false;
        }
        int flags = 0;
        bool done = ::ioctl(fd, FS_IOC_GETFLAGS, &flags) == 0;
        if (done) {
            flags = on ? (flags | FS_IMMUTABLE_FL) : (flags & ~FS_IMMUTABLE_FL);
            done = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
        }
        if (!done)
            error_ = std::strerror(errno);
        ::close(fd);
        return done;
    }

    std::string path_;
    bool applied_ = false;
    std::string error_;
};

} // namespace

class Sheets : public WindowTest {
protected:
    int64_t sizeOf(const std::string& id) {
        const ScanItem* item = model().findItem(id);
        return item && item->size ? *item->size : 0;
    }
    bool sheetOpen() { return read("confirmSheet", "opened").toBool(); }
    bool sheetGone() { return !read("confirmSheet", "visible").toBool(); }
};

TEST_F(Sheets, ConfirmListsEveryRemovalMethodAndCountsAdministratorCommandsTwice) {
    home().installTool("brew", "exit 0");
    home().installTool("snapper", snapperWithSnapshots(1));
    ASSERT_TRUE(scanToEnd());
    const std::string cache = idOf("Library/Caches/com.example.editor");
    const std::string trashed = idOf(".Trash/old-report.pdf");
    tick(cache);
    tick(trashed);
    tick("cmd.brew");
    tick("cmd.tmutil");

    model().requestClean();
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetOpen(); }));

    EXPECT_FALSE(visible("confirmScopeTitle"));
    EXPECT_EQ(text("confirmTitle"), "Clean 4 Items");
    EXPECT_EQ(text("confirmTotal"),
              "About " + Format::byteCount(sizeOf(cache) + sizeOf(trashed)) + " in total");
    EXPECT_EQ(read("confirmTrashRow", "title").toString(), "Move to Trash (recoverable)");
    EXPECT_EQ(read("confirmTrashRow", "valueText").toString(),
              "1 items · " + Format::byteCount(sizeOf(cache)));
    EXPECT_EQ(read("confirmPermanentRow", "title").toString(), "Delete permanently (items already in Trash)");
    EXPECT_EQ(read("confirmPermanentRow", "valueText").toString(),
              "1 items · " + Format::byteCount(sizeOf(trashed)));
    // Display order: the system group's command comes before the developer group's.
    EXPECT_TRUE(visible("confirmCommandsRow"));
    EXPECT_EQ(read("confirmCommandsRow", "plainText").toString(),
              "Run commands: Delete all Time Machine local snapshots, "
              "brew cleanup (remove old Homebrew package versions)");
    // The administrator command also asks for the password; nothing large or to review.
    EXPECT_TRUE(visible("confirmWarnings"));
    EXPECT_TRUE(visible("warnAdmin"));
    EXPECT_EQ(read("warnAdmin", "text").toString(),
              "1 system items — macOS will ask for an administrator password once");
    EXPECT_FALSE(visible("warnLarge"));
    EXPECT_FALSE(visible("warnReview"));
    EXPECT_EQ(
        text("confirmFootnote"),
        "Quit browsers and apps whose caches you're cleaning first · Items moved to the Trash keep using "
        "space until the Trash is emptied.");
    EXPECT_EQ(text("confirmCancel"), "Cancel");
    EXPECT_EQ(text("confirmClean"), "Clean Now");

    // Escape leaves everything as it was.
    key(Qt::Key_Escape);
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetGone(); }));
    EXPECT_FALSE(model().showConfirm());
    EXPECT_EQ(model().phase(), AppModel::Phase::ready);
    EXPECT_EQ(model().selectionCount(), 4);
    EXPECT_TRUE(exists(cache));
    EXPECT_TRUE(exists(trashed));
}

TEST_F(Sheets, ScopedConfirmNamesItsCategoryAndReturnStartsTheClean) {
    ASSERT_TRUE(scanToEnd());
    const std::string cache = idOf("Library/Caches/com.example.editor");
    const std::string log = idOf("Library/Logs/example.log");
    tick(cache);
    tick(log);

    // Unscoped first: no category line.
    model().requestClean();
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetOpen(); }));
    EXPECT_FALSE(visible("confirmScopeTitle"));
    EXPECT_EQ(text("confirmTitle"), "Clean 2 Items");
    click(item("confirmCancel"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetGone(); }));
    EXPECT_FALSE(model().showConfirm());

    model().requestClean("user.caches");
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetOpen(); }));
    EXPECT_TRUE(visible("confirmScopeTitle"));
    EXPECT_EQ(text("confirmScopeTitle"), "User Caches");
    EXPECT_EQ(text("confirmTitle"), "Clean 1 Items");
    EXPECT_EQ(read("confirmTrashRow", "valueText").toString(),
              "1 items · " + Format::byteCount(sizeOf(cache)));
    // No commands and nothing permanent: the command line goes, both method rows stay.
    EXPECT_FALSE(visible("confirmCommandsRow"));
    EXPECT_TRUE(visible("confirmTrashRow"));
    EXPECT_TRUE(visible("confirmPermanentRow"));
    EXPECT_EQ(read("confirmPermanentRow", "valueText").toString(), "0 items · 0 KB");
    EXPECT_FALSE(visible("confirmWarnings"));

    // Return confirms: the sheet goes and only the scoped item is cleaned.
    key(Qt::Key_Return);
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetGone(); }));
    EXPECT_FALSE(model().showConfirm());
    ASSERT_TRUE(UiHarness::waitFor([&] { return model().showResult(); }, 30000));
    EXPECT_FALSE(exists(home().path("Library/Caches/com.example.editor")));
    EXPECT_TRUE(exists(log));
    EXPECT_EQ(model().cleanScope(), "user.caches");
}

TEST_F(Sheets, LargeFilesWarnOnlyAsLargeAndReviewItemsAsReview) {
    model().setLargeThresholdGB(0.001);
    home().makeFileOfSize("Documents/footage.mov", 3'000'000);
    ASSERT_TRUE(scanToEnd());
    const std::string large = idOf("Documents/footage.mov");
    const std::string download = idOf("Downloads/installer.zip");
    ASSERT_NE(model().findItem(large), nullptr);
    ASSERT_EQ(model().findItem(large)->categoryID, CleanupRules::largeFilesCategoryID);
    ASSERT_EQ(model().category(QString::fromUtf8(CleanupRules::largeFilesCategoryID))->risk, Risk::review);

    // The large file, itself of a review category, is only a large file.
    tick(large);
    model().requestClean();
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetOpen(); }));
    EXPECT_TRUE(visible("confirmWarnings"));
    EXPECT_EQ(read("warnLarge", "text").toString(), "1 large files selected — make sure you don't need them");
    EXPECT_TRUE(visible("warnLarge"));
    EXPECT_FALSE(visible("warnReview"));
    EXPECT_FALSE(visible("warnAdmin"));
    key(Qt::Key_Escape);
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetGone(); }));

    tick(download);
    model().requestClean();
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetOpen(); }));
    EXPECT_TRUE(visible("warnLarge"));
    EXPECT_TRUE(visible("warnReview"));
    EXPECT_EQ(read("warnReview", "text").toString(),
              "1 items from review categories (Downloads/Backups/Archives)");
    EXPECT_EQ(read("confirmTrashRow", "valueText").toString(),
              "2 items · " + Format::byteCount(sizeOf(large) + sizeOf(download)));
    click(item("confirmCancel"));
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetGone(); }));
}

TEST_F(Sheets, ItemsNeedingTheAdministratorGoToTheTrashRowAndWarnAboutThePassword) {
    UnwritableFolder logs(home().path("Library/Logs"));
    ASSERT_TRUE(logs.applied()) << "could not make the folder unwritable: " << logs.error();
    ASSERT_TRUE(scanToEnd());
    const std::string log = idOf("Library/Logs/example.log");
    ASSERT_NE(model().findItem(log), nullptr);
    ASSERT_EQ(model().findItem(log)->method.kind, RemovalMethod::Kind::adminTrash);

    tick(log);
    model().requestClean();
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetOpen(); }));
    EXPECT_EQ(read("confirmTrashRow", "valueText").toString(), "1 items · " + Format::byteCount(sizeOf(log)));
    EXPECT_FALSE(visible("confirmCommandsRow"));
    EXPECT_TRUE(visible("warnAdmin"));
    EXPECT_EQ(read("warnAdmin", "text").toString(),
              "1 system items — macOS will ask for an administrator password once");
    EXPECT_FALSE(visible("warnLarge"));
    EXPECT_FALSE(visible("warnReview"));
    key(Qt::Key_Escape);
    ASSERT_TRUE(UiHarness::waitFor([&] { return sheetGone(); }));
}
