#include "platform/Trash.h"
#include "platform/SafeFs.h"

#include "support/FakeHome.h"
#include "support/ForkedChild.h"
#include "support/PathQueries.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct stat statOf(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        st.st_ino = 0;
    return st;
}

bool isLinkRefusal(int error) {
    return error == ELOOP || error == ENOTDIR;
}

} // namespace

TEST(Trash, MovesAnItemIntoTheHomeTrashByRenaming) {
    FakeHome home;
    home.makeFile("Library/Caches/app/data.bin", "cached bytes");
    const std::string item = home.path("Library/Caches/app");
    const ino_t inode = statOf(item).st_ino;

    EXPECT_EQ(Trash::moveToTrash(home.path("Library/Caches/missing")).error, ENOENT);
    EXPECT_FALSE(exists(home.path(".Trash")));

    std::string folder;
    ASSERT_EQ(Trash::trashFolderFor(item, folder), 0);
    EXPECT_EQ(folder, home.path(".Trash"));

    ::rmdir(folder.c_str());
    const mode_t oldMask = ::umask(0277);
    const Trash::MoveResult moved = Trash::moveToTrash(item);
    ::umask(oldMask);
    ASSERT_EQ(moved.error, 0);
    EXPECT_EQ(moved.location, home.path(".Trash/app"));
    EXPECT_EQ(statOf(home.path(".Trash")).st_mode & 07777, 0700u);
    EXPECT_FALSE(exists(item));
    EXPECT_EQ(statOf(moved.location).st_ino, inode);
    EXPECT_TRUE(exists(moved.location + "/data.bin"));
}

TEST(Trash, SameNamesAreNumberedAndNothingInTheTrashIsReplaced) {
    FakeHome home;
    home.makeDir(".Trash");
    home.tree().makeSymlink("home/.Trash/cache", "/nowhere");
    home.makeFile(".Trash/cache 1", "already trashed");
    home.makeFile("Library/Caches/cache", "new");
    for (const char* folder : {"a", "b", "c"})
        home.makeFile(std::string(folder) + "/report.txt", folder);
    const TreeSnapshot trashBefore = snapshotTree(home.path(".Trash"));

    std::vector<std::string> locations;
    for (const char* folder : {"a", "b", "c"}) {
        const Trash::MoveResult moved = Trash::moveToTrash(home.path(std::string(folder) + "/report.txt"));
        ASSERT_EQ(moved.error, 0) << folder;
        locations.push_back(moved.location);
    }
    EXPECT_EQ(locations,
              (std::vector<std::string>{home.path(".Trash/report.txt"), home.path(".Trash/report.txt 1"),
                                        home.path(".Trash/report.txt 2")}));
    const Trash::MoveResult cache = Trash::moveToTrash(home.path("Library/Caches/cache"));
    ASSERT_EQ(cache.error, 0);
    EXPECT_EQ(cache.location, home.path(".Trash/cache 2"));

    TreeSnapshot trashAfter = snapshotTree(home.path(".Trash"));
    for (const std::string& added : {locations[0], locations[1], locations[2], cache.location})
        EXPECT_EQ(trashAfter.erase(added), 1u) << added;
    EXPECT_EQ(describeDifferences(trashBefore, trashAfter), "");
}

TEST(Trash, RefusesATrashFolderThatIsNotARealFolder) {
    FakeHome home;
    home.tree().makeFile("victim/precious.txt", "precious");
    home.makeFile("Downloads/old.zip", "zip");
    home.tree().makeSymlink("home/.Trash", home.tree().path("victim"));
    const TreeSnapshot before = snapshotTree(home.tree().root());

    std::string folder;
    EXPECT_TRUE(isLinkRefusal(Trash::trashFolderFor(home.path("Downloads/old.zip"), folder)));
    const Trash::MoveResult moved = Trash::moveToTrash(home.path("Downloads/old.zip"));
    EXPECT_TRUE(isLinkRefusal(moved.error)) << moved.error;
    EXPECT_EQ(moved.location, "");
    EXPECT_EQ(describeDifferences(before, snapshotTree(home.tree().root())), "");

    ASSERT_EQ(::unlink(home.path(".Trash").c_str()), 0);
    home.makeFile(".Trash", "not a folder");
    EXPECT_EQ(Trash::moveToTrash(home.path("Downloads/old.zip")).error, ENOTDIR);
    EXPECT_TRUE(exists(home.path("Downloads/old.zip")));
}

TEST(Trash, PermissionErrorsComeBackAsPermissionErrors) {
    FakeHome home;
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
    EXPECT_TRUE(exists(home.path(".Trash/mine.log")));
}

TEST(Trash, FreeNameShortensLongNamesAtCharacterBoundaries) {
    TempTree tree;
    SafeFs::Dir folder(::open(tree.makeDir("trash").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    ASSERT_TRUE(folder);
    auto take = [&](const std::string& name) {
        const int fd = ::openat(folder.fd(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        ASSERT_GE(fd, 0) << name.size() << " bytes: " << std::strerror(errno);
        ::close(fd);
    };
    const std::string a(250, 'a');
    struct Case {
        std::string name;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"plain", "plain 1"},
        {std::string(255, 'x'), std::string(253, 'x') + " 1"},
        {a + "aa\xC3\xA9", a + "aa 1"},     // é would be split: it goes whole
        {a + "a\xE2\x82\xAC", a + "a 1"},   // € likewise
        {a + "\xF0\x9F\x98\x80", a + " 1"}, // an emoji likewise
        {a + "a\xC3\xA9"
             "b",
         a + "a\xC3\xA9 1"},                    // é ends right at the cut: kept
        {a + "aa\xC3\xFF", a + "aa\xC3 1"},     // not UTF-8: cut at the byte
        {a + "aa\x80\x80\x80", a + "aa\x80 1"}, // stray continuation bytes: cut at the byte
    };
    for (const Case& c : cases) {
        take(c.name);
        EXPECT_EQ(Trash::freeName(folder.fd(), c.name), c.expected) << c.name.size();
        take(c.expected); // the answer is a name the file system accepts
    }

    // The suffix grows with the number; the base is cut again to fit it.
    const std::string y(254, 'y');
    take(y);
    for (int number = 1; number <= 9; ++number)
        take(std::string(253, 'y') + " " + std::to_string(number));
    EXPECT_EQ(Trash::freeName(folder.fd(), y), std::string(252, 'y') + " 10");

    // A dangling link occupies its name like anything else.
    ASSERT_EQ(::symlinkat("/nowhere", folder.fd(), "link"), 0);
    EXPECT_EQ(Trash::freeName(folder.fd(), "link"), "link 1");
    EXPECT_EQ(Trash::freeName(folder.fd(), "free"), "free");
}

TEST(Trash, AnotherVolumeUsesItsOwnTrashesFolder) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "mounting needs root";
    FakeHome home;
    TempTree& tree = home.tree();
    tree.makeFile("victim/precious.txt", "precious");
    for (const char* name : {"vol", "linked", "foreign", "bound", "bindSource"})
        tree.makeDir(name);
    const TreeSnapshot victimBefore = snapshotTree(tree.path("victim"));
    const std::string user = std::to_string(::getuid());

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
        std::string folder;
        if (Trash::trashFolderFor(tree.path("vol/Projects/build"), folder) != 0 ||
            folder != tree.path("vol/.Trashes/" + user))
            return 1;
        if ((statOf(tree.path("vol/.Trashes")).st_mode & 07777) != 0700 ||
            (statOf(folder).st_mode & 07777) != 0700)
            return 2;
        const Trash::MoveResult moved = Trash::moveToTrash(tree.path("vol/Projects/build"));
        if (moved.error != 0 || moved.location != folder + "/build" || statOf(moved.location).st_ino != inode)
            return 3;

        tree.makeFile("bound/item", "x");
        const Trash::MoveResult bound = Trash::moveToTrash(tree.path("bound/item"));
        if (bound.error != 0 || bound.location != tree.path("bound/.Trashes/" + user + "/item"))
            return 4;

        tree.makeFile("linked/item", "x");
        tree.makeDir("linked/.Trashes");
        tree.makeSymlink("linked/.Trashes/" + user, tree.path("victim"));
        if (!isLinkRefusal(Trash::moveToTrash(tree.path("linked/item")).error) ||
            !exists(tree.path("linked/item")))
            return 5;

        tree.makeFile("foreign/item", "x");
        tree.makeDir("foreign/.Trashes/" + user, 0700);
        if (::chown(tree.path("foreign/.Trashes/" + user).c_str(), 12345, 12345) != 0)
            return kChildCannotSetUp;
        if (Trash::moveToTrash(tree.path("foreign/item")).error != EACCES ||
            !exists(tree.path("foreign/item")))
            return 6;
        return 0;
    });
    if (status == kChildCannotSetUp)
        GTEST_SKIP() << "mounting is not permitted here";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(describeDifferences(victimBefore, snapshotTree(tree.path("victim"))), "");
    EXPECT_FALSE(exists(home.path(".Trash")));
}
