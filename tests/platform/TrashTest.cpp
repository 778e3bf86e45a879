#include "platform/Trash.h"
#include "platform/Date.h"
#include "platform/Environment.h"
#include "platform/Paths.h"
#include "platform/TrashInfo.h"

#include "support/FakeHome.h"
#include "support/ForkedChild.h"
#include "support/PathQueries.h"
#include "support/TrashRestore.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isLinkRefusal(int error) {
    return error == ELOOP || error == ENOTDIR;
}

// A fake home (whose trash is the default one, whatever the machine's environment).
struct TrashHome : FakeHome {
    std::string trash(const std::string& relative = {}) const {
        return path(".local/share/Trash") + (relative.empty() ? "" : "/" + relative);
    }
};

std::string localNow(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
    // The clock the Trash dates by: time() reads a coarser one that can lag it by a tick.
    const std::time_t now = std::chrono::floor<std::chrono::seconds>(Dates::now()).time_since_epoch().count();
    std::tm local{};
    ::localtime_r(&now, &local);
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    return text;
}

} // namespace

TEST(Trash, MovesIntoTheHomeTrashWithAnInfoFileAFileManagerRestoresFrom) {
    TrashHome home;
    home.makeFile("Library/Caches/app/data.bin", "cached bytes");
    const std::string item = home.path("Library/Caches/app");
    const ino_t inode = statOf(item).st_ino;

    EXPECT_EQ(Trash::moveToTrash(home.path("Library/Caches/missing")).error, ENOENT);
    EXPECT_FALSE(exists(home.path(".local")));

    const mode_t oldMask = ::umask(0277);
    const std::string before = localNow("XYZ-14");
    const Trash::MoveResult moved = Trash::moveToTrash(item);
    const std::string after = localNow("XYZ-14");
    ::umask(oldMask);
    ASSERT_EQ(moved.error, 0) << std::strerror(moved.error);
    EXPECT_EQ(moved.location, home.trash("files/app"));
    EXPECT_EQ(statOf(moved.location).st_ino, inode);
    for (const char* made : {".local", ".local/share", ".local/share/Trash", ".local/share/Trash/files",
                             ".local/share/Trash/info"})
        EXPECT_EQ(statOf(home.path(made)).st_mode & 07777, 0700u) << made;
    const std::string info = readFile(home.trash("info/app.trashinfo"));
    const std::string head = "[Trash Info]\nPath=" + item + "\nDeletionDate=";
    EXPECT_TRUE(info == head + before + "\n" || info == head + after + "\n") << info;
}

TEST(Trash, XdgDataHomePlacesTheHomeTrashOnlyWhenAbsolute) {
    FakeHome home;
    const std::string data = home.makeDir("data");
    struct Case {
        std::string value;
        std::string expected;
    };
    for (const Case& c : std::vector<Case>{{data, data + "/Trash/files/item"},
                                           {"relative/data", home.path(".local/share/Trash/files/item")}}) {
        const std::string item = home.makeFile("Library/item", "x");
        const int status = runInChild([&] {
            ::setenv("XDG_DATA_HOME", c.value.c_str(), 1);
            return Trash::moveToTrash(item).location == c.expected ? 0 : 1;
        });
        EXPECT_EQ(status, 0) << c.value;
        EXPECT_TRUE(exists(c.expected)) << c.value;
    }
}

TEST(Trash, SameNamesAreNumberedAndNothingInTheTrashIsReplaced) {
    TrashHome home;
    home.makeDir(".local/share/Trash/files");
    home.tree().makeSymlink("home/.local/share/Trash/files/cache", "/nowhere");
    home.makeFile(".local/share/Trash/info/cache 1.trashinfo", "an info file without its item");
    home.makeFile("Library/Caches/cache", "new");
    const TreeSnapshot trashBefore = snapshotTree(home.trash());

    std::vector<std::string> locations;
    for (const char* folder : {"a", "b", "c"}) {
        const Trash::MoveResult moved =
            Trash::moveToTrash(home.makeFile(std::string(folder) + "/report.txt", folder));
        ASSERT_EQ(moved.error, 0) << folder;
        locations.push_back(moved.location);
    }
    EXPECT_EQ(locations,
              (std::vector<std::string>{home.trash("files/report.txt"), home.trash("files/report.txt 1"),
                                        home.trash("files/report.txt 2")}));
    const Trash::MoveResult cache = Trash::moveToTrash(home.path("Library/Caches/cache"));
    ASSERT_EQ(cache.error, 0);
    EXPECT_EQ(cache.location, home.trash("files/cache 2"));

    TreeSnapshot trashAfter = snapshotTree(home.trash());
    for (const std::string name : {"report.txt", "report.txt 1", "report.txt 2", "cache 2"}) {
        EXPECT_EQ(trashAfter.erase(home.trash("files/" + name)), 1u) << name;
        EXPECT_EQ(trashAfter.erase(home.trash("info/" + name + ".trashinfo")), 1u) << name;
    }
    EXPECT_EQ(describeDifferences(trashBefore, trashAfter), "");
}

TEST(Trash, NeverUsesATrashFolderThatIsALinkOrNotAFolder) {
    struct Case {
        const char* what;
        std::vector<const char*> folders; // inside the home
        const char* link;                 // made a link to the victim
        const char* file;                 // made a plain file
    };
    const std::vector<Case> cases = {
        {"trash is a link", {".local/share"}, ".local/share/Trash", nullptr},
        {"files/ is a link", {".local/share/Trash"}, ".local/share/Trash/files", nullptr},
        {"info/ is a link", {".local/share/Trash/files"}, ".local/share/Trash/info", nullptr},
        {"trash is a file", {".local/share"}, nullptr, ".local/share/Trash"},
    };
    TrashHome home;
    home.tree().makeFile("victim/precious.txt", "precious");
    for (const Case& c : cases) {
        home.makeFile("Downloads/old.zip", "zip");
        for (const char* folder : c.folders)
            home.makeDir(folder);
        if (c.link)
            home.tree().makeSymlink(std::string("home/") + c.link, home.tree().path("victim"));
        if (c.file)
            home.makeFile(c.file, "not a folder");
        const TreeSnapshot before = snapshotTree(home.tree().root());

        const Trash::MoveResult moved = Trash::moveToTrash(home.path("Downloads/old.zip"));
        EXPECT_TRUE(isLinkRefusal(moved.error)) << c.what << ": " << moved.error;
        EXPECT_EQ(moved.location, "") << c.what;
        EXPECT_EQ(describeDifferences(before, snapshotTree(home.tree().root())), "") << c.what;
        removeTreeForcefully(home.path(".local"));
    }
}

TEST(Trash, PermissionErrorsComeBackAsPermissionErrorsAndLeaveNoInfoFile) {
    TrashHome home;
    home.makeFile("Library/Logs/mine.log", "mine");
    chownTree(home.home(), unprivilegedUid(), unprivilegedGid());
    // Left to root: a folder the user may not change, and a shared sticky folder.
    home.makeFile("Library/locked/inside.log", "root's");
    home.makeFile("Library/shared/theirs.log", "root's too");
    ASSERT_EQ(::chmod(home.path("Library/shared").c_str(), 01777), 0);

    for (const char* relative : {"Library/locked/inside.log", "Library/shared/theirs.log"}) {
        const int error = runUnprivileged([&] { return Trash::moveToTrash(home.path(relative)).error; });
        EXPECT_TRUE(error == EACCES || error == EPERM) << relative << " gave " << error;
        EXPECT_TRUE(exists(home.path(relative))) << relative;
    }
    EXPECT_EQ(runUnprivileged([&] { return Trash::moveToTrash(home.path("Library/Logs/mine.log")).error; }),
              0);
    EXPECT_TRUE(exists(home.trash("files/mine.log")));
    EXPECT_EQ(entriesOf(home.trash("info")), std::vector<std::string>{"mine.log.trashinfo"});
}

TEST(Trash, CandidateNamesKeepTheInfoFileWithinTheNameLimit) {
    // <name>.trashinfo must fit the file system's 255 bytes.
    const std::string a(240, 'a');
    struct Case {
        std::string name;
        unsigned number;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"plain", 1, "plain 1"},
        {std::string(250, 'x'), 0, std::string(245, 'x')},
        {std::string(255, 'x'), 1, std::string(243, 'x') + " 1"},
        {std::string(254, 'y'), 10, std::string(242, 'y') + " 10"},
        {a + "aa\xC3\xA9", 1, a + "aa 1"},     // é would be split: it goes whole
        {a + "\xF0\x9F\x98\x80", 1, a + " 1"}, // an emoji likewise
        {a + "a\xC3\xA9"
             "b",
         1, a + "a\xC3\xA9 1"},                    // é ends right at the cut: kept
        {a + "aa\xC3\xFF", 1, a + "aa\xC3 1"},     // not UTF-8: cut at the byte
        {a + "aa\x80\x80\x80", 1, a + "aa\x80 1"}, // stray continuation bytes: cut at the byte
    };
    for (const Case& c : cases)
        EXPECT_EQ(TrashInfo::candidateName(c.name, c.number), c.expected)
            << c.name.size() << " bytes, " << c.number;
}

TEST(Trash, DeletingForGoodTakesTheItemsInfoFileAlong) {
    TrashHome home;
    TempTree& tree = home.tree();
    // The privileged helper works for the user who asked, not for root.
    Environment::workFor(4242, 4242);
    const std::string mountTrash = "vol/.Trash-4242";
    tree.makeFile("victim/old.trashinfo", "precious");
    struct Case {
        const char* what;
        std::string trash;  // relative to the tree
        std::string item;   // inside files/
        bool infoIsLink;    // info/<name>.trashinfo is a link to the victim's file
        bool infoDirIsLink; // info/ is a link to the victim folder
        bool infoGoes;
    };
    const std::vector<Case> cases = {
        {"info file is a link", "home/.local/share/Trash", "old", true, false, true},
        {"a mount's trash of the user worked for", mountTrash, "old", false, false, true},
        {"info/ is a link", mountTrash, "old", false, true, false},
        {"not a trash", "home/Projects", "old", false, false, false},
        {"deeper than files/", "home/.local/share/Trash", "dir/old", false, false, false},
    };
    for (const Case& c : cases) {
        const std::string item = tree.makeFile(c.trash + "/files/" + c.item + "/inside", "trashed");
        const std::string name = c.item.substr(c.item.rfind('/') + 1);
        const std::string infoFile = c.trash + "/info/" + name + ".trashinfo";
        if (c.infoDirIsLink)
            tree.makeSymlink(c.trash + "/info", tree.path("victim"));
        else if (c.infoIsLink)
            tree.makeSymlink(infoFile, tree.path("victim/old.trashinfo"));
        else
            tree.makeFile(infoFile, "info");
        const std::string path = tree.path(c.trash + "/files/" + c.item);

        EXPECT_EQ(Trash::deleteForGood(path), 0) << c.what;
        EXPECT_FALSE(exists(path)) << c.what;
        EXPECT_EQ(exists(tree.path(infoFile)), !c.infoGoes) << c.what;
        EXPECT_EQ(entriesOf(tree.path("victim")), std::vector<std::string>{"old.trashinfo"}) << c.what;
        EXPECT_EQ(readFile(tree.path("victim/old.trashinfo")), "precious") << c.what;
        removeTreeForcefully(tree.path(c.trash));
    }
}

TEST(Trash, AnotherMountUsesItsOwnTrashAndRenamesIntoIt) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "mounting needs root";
    TrashHome home;
    TempTree& tree = home.tree();
    tree.makeFile("victim/precious.txt", "precious");
    for (const char* name : {"vol", "linked", "foreign", "bound", "bindSource"})
        tree.makeDir(name);
    const TreeSnapshot victimBefore = snapshotTree(tree.path("victim"));
    const std::string user = ".Trash-" + std::to_string(::getuid());

    const int status = runInChild([&] {
        if (!enterPrivateMountNamespace())
            return kChildCannotSetUp;
        for (const char* name : {"vol", "linked", "foreign"})
            if (::mount("veltro-test", tree.path(name).c_str(), "tmpfs", 0, nullptr) != 0)
                return kChildCannotSetUp;
        // Same file system, another mount: a rename across it would fail as well.
        if (::mount(tree.path("bindSource").c_str(), tree.path("bound").c_str(), nullptr, MS_BIND, nullptr) !=
            0)
            return kChildCannotSetUp;

        tree.makeFile("vol/Projects/build/out.o", "object");
        const ino_t inode = statOf(tree.path("vol/Projects/build")).st_ino;
        const Trash::MoveResult moved = Trash::moveToTrash(tree.path("vol/Projects/build"));
        const std::string trash = tree.path("vol/" + user);
        if (moved.error != 0 || moved.location != trash + "/files/build" ||
            statOf(moved.location).st_ino != inode)
            return 1;
        for (const std::string& folder : {trash, trash + "/files", trash + "/info"})
            if ((statOf(folder).st_mode & 07777) != 0700)
                return 2;
        if (restoreFromTrash(moved.location).original != tree.path("vol/Projects/build"))
            return 4;

        tree.makeFile("bound/item", "x");
        const Trash::MoveResult bound = Trash::moveToTrash(tree.path("bound/item"));
        if (bound.error != 0 || bound.location != tree.path("bound/" + user + "/files/item"))
            return 5;

        // A trash that is a link or another user's is not used.
        tree.makeSymlink("linked/" + user, tree.path("victim"));
        tree.makeDir("foreign/" + user, 0700);
        if (::chown(tree.path("foreign/" + user).c_str(), 12345, 12345) != 0)
            return kChildCannotSetUp;
        for (const char* name : {"linked", "foreign"}) {
            tree.makeFile(std::string(name) + "/item", "x");
            const int error = Trash::moveToTrash(tree.path(std::string(name) + "/item")).error;
            if (!(isLinkRefusal(error) || (error == EACCES && name == std::string("foreign"))) ||
                !exists(tree.path(std::string(name) + "/item")))
                return 6;
        }
        return 0;
    });
    if (status == kChildCannotSetUp)
        GTEST_SKIP() << "mounting is not permitted here";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(describeDifferences(victimBefore, snapshotTree(tree.path("victim"))), "");
    EXPECT_FALSE(exists(home.path(".local/share/Trash")));
}

// The desktop's own tools read what was moved, each with its original place: our info
// files and our restoring reader could share a misreading that this one does not.
TEST(Trash, TheDesktopsTrashListingShowsWhatWasMoved) {
    if (std::system("command -v gio >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "gio is not installed";
    TrashHome home;
    std::string expected;
    for (const char* name : {"a+b=c;d", "it's", "report 100%.pdf"}) {
        const std::string item = home.makeFile(std::string("Documents/") + name, name);
        ASSERT_EQ(Trash::moveToTrash(item).error, 0) << name;
        expected += item + "\n";
    }
    // gio reads the Trash through the desktop's file-system daemon, on a bus of its own; it
    // may list other mounts' trashes too, so only the fake home's lines are kept.
    const std::string listing = home.tree().path("listing");
    const std::string command = "dbus-run-session -- gio trash --list 2>/dev/null | cut -f2 | grep '^" +
                                home.home() + "/' | LC_ALL=C sort >" + listing;
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(readFile(listing), expected) << "gio needs the gvfs package: run scripts/bootstrap";
}

// A rename would take the mount along into the Trash.
TEST(Trash, AFolderWithSomethingMountedInsideStaysWhereItIs) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "mounting needs root";
    TrashHome home;
    // A name the mount table escapes, and beside it "x", which only starts the same.
    const std::string mounted = home.makeDir("Projects/x \\y\n/mnt");
    home.makeDir("Projects/x");
    const int status = runInChild([&] {
        if (!enterPrivateMountNamespace() ||
            ::mount("veltro-test", mounted.c_str(), "tmpfs", 0, nullptr) != 0)
            return kChildCannotSetUp;
        const int refused = Trash::moveToTrash(Paths::parentFolder(mounted)).error;
        return refused == EBUSY && exists(mounted) ? Trash::moveToTrash(home.path("Projects/x")).error : 1;
    });
    if (status == kChildCannotSetUp)
        GTEST_SKIP() << "mounting is not permitted here";
    EXPECT_EQ(status, 0);
}
