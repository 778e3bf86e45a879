#include "platform/SafeFs.h"
#include "platform/SafeFsInternals.h"

#include "support/DeepTree.h"
#include "support/ForkedChild.h"
#include "support/PathQueries.h"
#include "support/ProcessCounts.h"
#include "support/TempTree.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <set>
#include <span>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

using OpenParent = int (*)(const std::string&, SafeFs::Dir&, std::string&);
const std::vector<std::pair<const char*, OpenParent>> kOpeners = {
    {"openat2 or walk", &SafeFs::openParent}, {"component walk", &SafeFs::openParentByComponents}};

bool sameObject(int fd, const std::string& path) {
    struct stat a {
    }, b{};
    return ::fstat(fd, &a) == 0 && ::lstat(path.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

std::set<std::string> namesIn(int dirFd) {
    std::set<std::string> names;
    DIR* stream = ::fdopendir(::openat(dirFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!stream)
        return {"<unreadable>"};
    while (const dirent* entry = ::readdir(stream))
        if (std::string(entry->d_name) != "." && std::string(entry->d_name) != "..")
            names.insert(entry->d_name);
    ::closedir(stream);
    return names;
}

// The entries along the chain of "d" folders, one set per level, as far as it goes.
std::vector<std::set<std::string>> chainListing(const std::string& top) {
    std::vector<std::set<std::string>> levels;
    int fd = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    while (fd >= 0) {
        levels.push_back(namesIn(fd));
        const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        ::close(fd);
        fd = next;
    }
    return levels;
}

} // namespace

// Paths that are not plainly absolute are refused as invalid; a link anywhere in the
// chain, or a file where a folder should be, as a link.
TEST(SafeFs, OpenParentRefusesMalformedPathsAndLinksAnywhereInTheChain) {
    TempTree tree;
    tree.makeFile("real/inner/item", "data");
    tree.makeDir("a/b");
    tree.makeSymlink("first", tree.path("real"));
    tree.makeSymlink("real/middle", "inner");
    tree.makeSymlink("real/inner/toRoot", "/");
    const std::string nul("/tmp\0/x", 7);
    const std::string malformed[] = {std::string(),       std::string("relative/x"), std::string("/"),
                                     std::string("//"),   tree.path("a/./b"),        tree.path("a/../a/b"),
                                     tree.path("a/b/.."), tree.path("a/b/."),        nul};
    const std::string linked[] = {tree.path("first/inner/item"), tree.path("real/middle/item"),
                                  tree.path("real/inner/toRoot/etc"), tree.path("real/inner/item/x")};
    for (const auto& [label, open] : kOpeners) {
        for (const bool bad : {true, false}) {
            for (const std::string& path : bad ? std::span<const std::string>(malformed) : linked) {
                SafeFs::Dir dir;
                std::string name;
                const int error = open(path, dir, name);
                EXPECT_TRUE(bad ? error == EINVAL : error == ELOOP || error == ENOTDIR)
                    << label << ": " << path << " gave " << error;
                EXPECT_FALSE(dir) << label << ": " << path;
            }
        }
    }
    EXPECT_EQ(SafeFs::removeTree(AT_FDCWD, ".."), EINVAL);
    EXPECT_EQ(SafeFs::removeTree(AT_FDCWD, "a/b"), EINVAL);
    EXPECT_EQ(SafeFs::removeItem(tree.path("a/b/..")), EINVAL);
    EXPECT_TRUE(exists(tree.path("a/b")));
    // The same with a folder of the chain swapped for a link to a real one.
    const TreeSnapshot before = snapshotTree(tree.root());
    const int error = SafeFs::removeItem(tree.path("first/inner/item"));
    EXPECT_TRUE(error == ELOOP || error == ENOTDIR) << error;
    EXPECT_EQ(describeDifferences(before, snapshotTree(tree.root())), "");
}

TEST(SafeFs, OpenParentOpensTheRealParentAndNamesTheLastComponent) {
    TempTree tree;
    tree.makeDir("a/b");
    tree.makeSymlink("a/b/link", "/");
    for (const auto& [label, open] : kOpeners) {
        for (const auto& [path, expected] :
             std::vector<std::pair<std::string, std::string>>{{tree.path("a/b/file"), "file"},
                                                              {"/" + tree.path("a//b") + "/link/", "link"},
                                                              {tree.path("a"), "a"}}) {
            SafeFs::Dir dir;
            std::string name;
            ASSERT_EQ(open(path, dir, name), 0) << label << ": " << path;
            EXPECT_EQ(name, expected) << label;
            EXPECT_TRUE(sameObject(dir.fd(), expected == "a" ? tree.root() : tree.path("a/b"))) << label;
        }
        SafeFs::Dir dir;
        std::string name;
        EXPECT_EQ(open("/etc", dir, name), 0) << label;
        EXPECT_TRUE(sameObject(dir.fd(), "/")) << label;
        EXPECT_EQ(open(tree.path("missing/x"), dir, name), ENOENT) << label;
    }
}

TEST(SafeFs, RemoveTreeDeletesEveryKindOfEntryAndNothingElse) {
    TempTree tree;
    tree.makeFile("outside/kept.txt", "keep me");
    tree.makeFile("outside/shared", "linked twice");
    tree.makeDir("outside/folder/deeper");
    tree.makeFile("item/a.txt", "a");
    tree.makeFile("item/.hidden", "h");
    tree.makeFile("item/sub/sub2/b.bin", std::string(100000, 'b'));
    tree.makeDir("item/empty");
    tree.makeHardLink("item/sub/hard", "outside/shared");
    tree.makeSymlink("item/toFolder", tree.path("outside/folder"));
    tree.makeSymlink("item/sub/toFile", "../../outside/kept.txt");
    tree.makeSymlink("item/dangling", tree.path("nowhere"));
    tree.makeFifo("item/sub/fifo");
    tree.makeSocket("item/sub/socket");
    tree.makeFile("single", "one file");
    tree.makeSymlink("linkItem", tree.path("outside"));
    const TreeSnapshot before =
        snapshotTree(tree.root(), {tree.path("item"), tree.path("single"), tree.path("linkItem"),
                                   tree.path("outside/shared")});
    // A FIFO opened for reading would block forever; the child's alarm catches it.
    EXPECT_EQ(runInChild(
                  [&] {
                      const int descriptors = openDescriptorCount();
                      const int error = SafeFs::removeItem(tree.path("item"));
                      return error != 0 ? error : openDescriptorCount() == descriptors ? 0 : 99;
                  },
                  30),
              0);
    EXPECT_EQ(SafeFs::removeItem(tree.path("item")), ENOENT);
    EXPECT_EQ(SafeFs::removeItem(tree.path("single")), 0);
    // An item that is itself a link goes as a link; its target stays whole. None of
    // the three may be left: the snapshot below no longer leaves them out.
    EXPECT_EQ(SafeFs::removeItem(tree.path("linkItem")), 0);

    EXPECT_EQ(describeDifferences(before, snapshotTree(tree.root(), {tree.path("outside/shared")})), "");
    EXPECT_EQ(statOf(tree.path("outside/shared")).st_nlink, 1u);
}

TEST(SafeFs, UnreadableFolderStaysAndEverythingElseGoes) {
    TempTree tree;
    tree.makeFile("outside/kept.txt", "keep");
    tree.makeFile("item/a.txt", "a");
    tree.makeFile("item/sub/b.txt", "b");
    tree.makeFile("item/locked/secret.txt", "s");
    tree.makeFile("item/locked/deeper/more.txt", "m");
    tree.makeFile("item/readOnly/stuck.txt", "r");
    tree.makeFile("item/readOnly/inner/free.txt", "f");
    tree.makeDir("item/lockedButEmpty");
    tree.makeFile("item/z/zz/z.txt", "z");
    chownTree(tree.root(), unprivilegedUid(), unprivilegedGid());
    ASSERT_EQ(::chmod(tree.path("item/locked").c_str(), 0), 0);
    ASSERT_EQ(::chmod(tree.path("item/lockedButEmpty").c_str(), 0), 0);
    ASSERT_EQ(::chmod(tree.path("item/readOnly").c_str(), 0555), 0);
    const TreeSnapshot before = snapshotTree(tree.root(), {tree.path("item")});
    const TreeSnapshot lockedBefore = snapshotTree(tree.path("item/locked"));

    EXPECT_EQ(runUnprivileged([&] { return SafeFs::removeItem(tree.path("item")); }), EACCES);

    EXPECT_EQ(describeDifferences(before, snapshotTree(tree.root(), {tree.path("item")})), "");
    EXPECT_EQ(describeDifferences(lockedBefore, snapshotTree(tree.path("item/locked"))), "");
    EXPECT_EQ(entriesOf(tree.path("item")), (std::vector<std::string>{"locked", "readOnly"}));
    EXPECT_EQ(entriesOf(tree.path("item/readOnly")), (std::vector<std::string>{"inner", "stuck.txt"}));
    EXPECT_FALSE(exists(tree.path("item/readOnly/inner/free.txt")));
}

// Far fewer descriptors than levels: holding one per level would fail.
TEST(SafeFs, TenThousandLevelsGoWithBoundedDescriptorsKeepingOnlyTheChainToWhatCouldNotGo) {
    TempTree tree;
    tree.makeFile("outside/kept.txt", "keep");
    tree.makeDir("item");
    chownTree(tree.root(), unprivilegedUid(), unprivilegedGid());
    const TreeSnapshot before = snapshotTree(tree.root(), {tree.path("item")});
    constexpr int kLevels = 10000;
    constexpr int kLockedLevel = 2500;

    const int status = runUnprivileged([&] {
        const int built = buildDeepTree(tree.path("item"), kLevels, [](int fd, int level) {
            if (level != kLockedLevel)
                return;
            ::mkdirat(fd, "locked", 0755);
            ::close(::openat(fd, "locked/secret", O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
            ::fchmodat(fd, "locked", 0, 0);
        });
        if (built != 0)
            return 100;
        const rlimit limit{48, 48};
        ::setrlimit(RLIMIT_NOFILE, &limit);
        return SafeFs::removeItem(tree.path("item"));
    });
    EXPECT_EQ(status, EACCES);

    const std::vector<std::set<std::string>> levels = chainListing(tree.path("item"));
    ASSERT_EQ(levels.size(), static_cast<size_t>(kLockedLevel + 1));
    for (int level = 0; level < kLockedLevel; ++level)
        ASSERT_EQ(levels[level], std::set<std::string>{"d"}) << "level " << level;
    EXPECT_EQ(levels[kLockedLevel], std::set<std::string>{"locked"});
    EXPECT_EQ(describeDifferences(before, snapshotTree(tree.root(), {tree.path("item")})), "");

    if (::geteuid() == 0) {
        // As root the rest goes too, without the permission ever being granted.
        EXPECT_EQ(SafeFs::removeItem(tree.path("item")), 0);
        EXPECT_FALSE(exists(tree.path("item")));
    }
}

TEST(SafeFs, MountedFoldersInsideAnItemAreNeverEntered) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "mounting needs root";
    TempTree tree;
    tree.makeFile("victim/v1.txt", "victim data");
    tree.makeFile("victim/vdir/v2.txt", "more victim data");
    tree.makeFile("item/a.txt", "a");
    tree.makeFile("item/sub/b.txt", "b");
    tree.makeDir("item/bound");
    tree.makeDir("item/sub/loop");
    tree.makeDir("item/tmpfs");
    tree.makeDir("mountedItem");
    const TreeSnapshot before = snapshotTree(tree.root(), {tree.path("item")});

    const int status = runInChild([&] {
        if (!enterPrivateMountNamespace() ||
            ::mount(tree.path("victim").c_str(), tree.path("item/bound").c_str(), nullptr, MS_BIND,
                    nullptr) != 0 ||
            // A loop: the whole tree, the item included, appears again inside the item.
            ::mount(tree.root().c_str(), tree.path("item/sub/loop").c_str(), nullptr, MS_BIND, nullptr) !=
                0 ||
            ::mount("veltro-test", tree.path("item/tmpfs").c_str(), "tmpfs", 0, nullptr) != 0 ||
            ::mount(tree.path("victim").c_str(), tree.path("mountedItem").c_str(), nullptr, MS_BIND,
                    nullptr) != 0)
            return kChildCannotSetUp;
        tree.makeFile("item/tmpfs/t.txt", "on another file system");
        if (SafeFs::removeItem(tree.path("item")) != EBUSY)
            return 1;
        if (!exists(tree.path("item/bound/v1.txt")) || !exists(tree.path("item/bound/vdir/v2.txt")) ||
            !exists(tree.path("item/sub/loop/victim/v1.txt")) || !exists(tree.path("item/sub/loop/item")) ||
            !exists(tree.path("item/tmpfs/t.txt")))
            return 2;
        if (exists(tree.path("item/a.txt")) || exists(tree.path("item/sub/b.txt")))
            return 3;
        // A mount point as the item itself: the volume behind it is not emptied.
        if (SafeFs::removeItem(tree.path("mountedItem")) != EBUSY || !exists(tree.path("mountedItem/v1.txt")))
            return 4;
        return 0;
    });
    if (status == kChildCannotSetUp)
        GTEST_SKIP() << "mounting is not permitted here";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(describeDifferences(before, snapshotTree(tree.root(), {tree.path("item")})), "");
}
