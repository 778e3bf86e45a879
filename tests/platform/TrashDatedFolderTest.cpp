// The administrator batch's dated folder, created by root for another user: it must
// end up the user's, never reuse a folder that exists, and leave nothing behind when
// nothing was moved into it.

#include "platform/TrashDatedFolder.h"
#include "platform/TrashFolders.h"

#include "support/PathQueries.h"
#include "support/TempTree.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace std::chrono;

// 14 January 2025, 09:30:15 in the test's zone.
Date stampTime() {
    ::setenv("TZ", "UTC0", 1);
    return Date(sys_days(year(2025) / January / 14) + 9h + 30min + 15s);
}

// A home belonging to the user the batch acts for (the test's own user when it
// cannot be root).
struct UserHome {
    TempTree tree;
    std::string home = tree.makeDir("home");
    std::string trash = home + "/.local/share/Trash";
    uid_t owner = ::geteuid() == 0 ? unprivilegedUid() : ::geteuid();
    gid_t group = ::geteuid() == 0 ? unprivilegedGid() : ::getegid();

    UserHome() { chownTree(home, owner, group); }
    Trash::DatedFolder create() const {
        return Trash::createDatedFolder(home, trash, owner, group, stampTime());
    }
};

} // namespace

TEST(TrashDatedFolder, MakesTheTrashAndTakesTheNextFreeNameAllTheUsers) {
    UserHome user;
    const std::string stamp = "Veltro-20250114-093015";
    Trash::DatedFolder first = user.create();
    ASSERT_EQ(first.error, 0) << std::strerror(first.error);
    ASSERT_EQ(::mkdirat(first.folder.fd(), "moved", 0700), 0);
    // A second batch in the same second never shares the first one's folder.
    Trash::DatedFolder second = user.create();
    ASSERT_EQ(second.error, 0) << std::strerror(second.error);
    ASSERT_EQ(Trash::handOverDatedFolder(second, user.owner, user.group), 0);
    EXPECT_EQ(first.location, user.trash + "/files/" + stamp);
    EXPECT_EQ(second.name, stamp + " 1");
    EXPECT_EQ(second.location, user.trash + "/files/" + stamp + " 1");
    EXPECT_EQ(readFile(user.trash + "/info/" + stamp + " 1.trashinfo"),
              "[Trash Info]\nPath=" + user.home + "/" + stamp + "%201\nDeletionDate=2025-01-14T09:30:15\n");
    struct stat opened {};
    ASSERT_EQ(::fstat(second.folder.fd(), &opened), 0);
    EXPECT_EQ(opened.st_ino, statOf(second.location).st_ino);
    for (const std::string& made : std::vector<std::string>{
             "/.local", "/.local/share", "/.local/share/Trash", "/.local/share/Trash/files",
             "/.local/share/Trash/info", "/.local/share/Trash/files/" + stamp + " 1",
             "/.local/share/Trash/info/" + stamp + " 1.trashinfo"}) {
        const struct stat st = statOf(user.home + made);
        EXPECT_EQ(st.st_uid, user.owner) << made;
        EXPECT_EQ(st.st_gid, user.group) << made;
        EXPECT_EQ(st.st_mode & 0077, 0u) << made;
    }

    // Something moved in keeps folder and info file; an empty one leaves nothing behind.
    EXPECT_EQ(Trash::removeDatedFolderIfEmpty(first), ENOTEMPTY);
    EXPECT_EQ(Trash::removeDatedFolderIfEmpty(second), 0);
    EXPECT_EQ(entriesOf(user.trash + "/files"), std::vector<std::string>{stamp});
    EXPECT_EQ(entriesOf(user.trash + "/info"), std::vector<std::string>{stamp + ".trashinfo"});
}

TEST(TrashDatedFolder, RefusesATrashThatIsALinkOrSomebodyElses) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "giving folders to another user needs root";
    // Each case lays out the home's trash, gives the home to the user and keeps one
    // folder root's; nothing may change, the victim outside least of all.
    struct Case {
        const char* what;
        std::vector<const char*> folders;
        const char* link;      // made a link to the victim
        const char* rootOwned; // left to root
    };
    const std::vector<Case> cases = {
        {"trash is a link", {".local/share"}, ".local/share/Trash", nullptr},
        {"files/ is a link", {".local/share/Trash"}, ".local/share/Trash/files", nullptr},
        {"info/ is a link", {".local/share/Trash/files"}, ".local/share/Trash/info", nullptr},
        {"trash is root's", {".local/share/Trash"}, nullptr, ".local/share/Trash"},
        {"files/ is root's", {".local/share/Trash/files"}, nullptr, ".local/share/Trash/files"},
    };
    for (const Case& c : cases) {
        UserHome user;
        user.tree.makeFile("victim/precious", "precious");
        for (const char* folder : c.folders)
            user.tree.makeDir(std::string("home/") + folder);
        if (c.link)
            user.tree.makeSymlink(std::string("home/") + c.link, user.tree.path("victim"));
        chownTree(user.home, user.owner, user.group);
        if (c.rootOwned)
            chownTree(user.home + "/" + c.rootOwned, 0, 0);
        const TreeSnapshot before = snapshotTree(user.tree.root());

        const Trash::DatedFolder dated = user.create();
        if (c.link)
            EXPECT_TRUE(dated.error == ELOOP || dated.error == ENOTDIR) << c.what << ": " << dated.error;
        else
            EXPECT_EQ(dated.error, EACCES) << c.what;
        EXPECT_FALSE(dated.folder) << c.what;
        EXPECT_EQ(describeDifferences(before, snapshotTree(user.tree.root())), "") << c.what;
    }
}

// What a user who may write the trash swaps in for a folder just made is never
// claimed: only the process's own empty folder is.
TEST(TrashDatedFolder, OnlyTheFolderJustMadeIsClaimed) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "a folder of another user needs root";
    UserHome user; // "home" is the user's
    user.tree.makeFile("full/kept", "k");
    user.tree.makeSymlink("link", user.tree.path("full"));
    user.tree.makeDir("made");
    const SafeFs::Dir parent(::open(user.tree.root().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (const std::string name : {"home", "full", "link", "full/kept", "made"}) {
        SafeFs::Dir dir;
        EXPECT_EQ(TrashFolders::openJustMade(parent.fd(), name, dir) == 0 && dir, name == "made") << name;
    }
}
