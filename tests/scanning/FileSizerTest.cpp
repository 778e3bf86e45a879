#include "scanning/FileSizer.h"

#include "TreeFixtures.h"
#include "support/DeepTree.h"
#include "support/ForkedChild.h"
#include "support/ProcessCounts.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <climits>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace {

// Creates `name` with `bytes` of real data inside the folder `fd` and returns its
// allocation as the file system reports it.
int64_t makeFileAt(int fd, const char* name, int64_t bytes) {
    const int file = ::openat(fd, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0)
        return -1;
    std::string block(static_cast<size_t>(bytes), 'v');
    const bool written = ::write(file, block.data(), block.size()) == static_cast<ssize_t>(block.size());
    struct stat st {};
    const bool stated = ::fstat(file, &st) == 0;
    ::close(file);
    return written && stated ? static_cast<int64_t>(st.st_blocks) * 512 : -1;
}

// `count` names in the folder `fd` for one file of 4,096 bytes: entries that are cheap
// to make and each count. Returns their bytes, or -1.
int64_t makeLinksAt(int fd, const std::string& prefix, int count) {
    const int64_t each = makeFileAt(fd, (prefix + "0").c_str(), 4096);
    for (int i = 1; i < count; ++i)
        if (::linkat(fd, (prefix + "0").c_str(), fd, (prefix + std::to_string(i)).c_str(), 0) != 0)
            return -1;
    return each < 0 ? -1 : each * count;
}

// The allocation of the regular file `name` in the folder `fd`; 0 for anything else.
int64_t allocatedAt(int fd, const char* name) {
    struct stat st {};
    return ::fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(st.st_mode)
               ? static_cast<int64_t>(st.st_blocks) * 512
               : 0;
}

// The files buildDeepTree itself puts in a level.
int64_t deepTreeFilesAt(int fd) {
    return allocatedAt(fd, "f") + allocatedAt(fd, "side/s1/s2/g");
}

} // namespace

TEST(FileSizer, CountsRegularFilesAtEachMeetingAndFollowsNoLink) {
    TempTree outside;
    outside.makeFileOfSize("big/payload.bin", 4 << 20);
    TempTree tree;
    const std::string file = tree.makeFileOfSize("file.bin", 30000);
    tree.makeFile("one-byte.txt", "x");
    tree.makeFile("empty.txt");
    tree.makeFile(".hidden/cache.db", std::string(5000, 'c'));
    const std::string inner = tree.makeFileOfSize("deep/er/still/inner.bin", 70000);
    tree.makeHardLink("deep/link.bin", "file.bin"); // counted again where it is met
    tree.makeFileOfSize("Caf\xC3\xA9 \xE2\x98\x95.bin", 9000);
    const std::string sparse = tree.makeSparseFile("sparse.img", 100 << 20);
    // A target long enough that the link has a block of its own, which must not count either.
    std::string longTarget = outside.path("big");
    for (int i = 0; i < 40; ++i)
        longTarget += "/.";
    const std::string link = tree.makeSymlink("to-big", longTarget);
    ASSERT_GT(allocatedBytes(link), 0);
    tree.makeSymlink("to-file", file);
    tree.makeSymlink("dangling", tree.path("nowhere"));
    tree.makeSymlink("only-link/to-big", outside.path("big"));
    const std::string fifo = tree.makeFifo("deep/pipe");
    tree.makeDir("empty-folder");
    tree.makeFileOfSize("App.app/Contents/binary", 20000);

    const int64_t everything = allocatedBytesOfRegularFiles(tree.root());
    ASSERT_GE(allocatedBytes(file), 30000);
    ASSERT_LT(allocatedBytes(sparse), 1 << 20); // of a logical length of 100 MB
    const std::pair<std::string, int64_t> cases[] = {
        {tree.root(), everything},
        {tree.root() + "/", everything},
        {tree.path("deep"), allocatedBytes(inner) + allocatedBytes(file)},
        {file, allocatedBytes(file)},
        {sparse, allocatedBytes(sparse)},
        {fifo, allocatedBytes(fifo)},
        {link, 0},
        {link + "/", 0},
        {tree.path("to-file"), 0},
        {tree.path("only-link"), 0},
        {tree.path("empty-folder"), 0},
        {tree.path("missing"), 0},
        {"", 0},
    };
    for (const auto& [path, expected] : cases)
        EXPECT_EQ(FileSizer::allocatedSize(path), expected) << path;
}

TEST(FileSizer, UnreadableFoldersAddNothingButTheirSiblingsCount) {
    TempTree tree;
    tree.makeFileOfSize("readable/file.bin", 8192);
    tree.makeFileOfSize("sibling.bin", 12000);
    tree.makeFileOfSize("locked/hidden.bin", 1 << 20);
    tree.makeFileOfSize("locked/inner/more.bin", 1 << 20);
    tree.makeFileOfSize("listable-only/unreachable.bin", 1 << 20);
    tree.makeFileOfSize("zz-after/last.bin", 16384);
    ASSERT_EQ(::chmod(tree.path("locked").c_str(), 0), 0);
    // Its names can be read but nothing inside can be reached.
    ASSERT_EQ(::chmod(tree.path("listable-only").c_str(), 0744), 0);

    const auto numbers = numbersFromChild([&] {
        if (!becomeUnprivileged())
            return std::vector<int64_t>{};
        return std::vector<int64_t>{FileSizer::allocatedSize(tree.root()),
                                    FileSizer::allocatedSize(tree.path("locked"))};
    });
    ASSERT_TRUE(numbers.has_value());
    ASSERT_EQ(numbers->size(), 2u);
    EXPECT_EQ((*numbers)[0], allocatedBytes(tree.path("readable/file.bin")) +
                                 allocatedBytes(tree.path("sibling.bin")) +
                                 allocatedBytes(tree.path("zz-after/last.bin")));
    EXPECT_EQ((*numbers)[1], 0);
}

// Ten thousand levels, some too large for one read: far more folders than a walk
// keeps open, so on the way back up folders are opened again and read on from the
// position noted when they were closed; and paths (arguments too) longer than the
// kernel takes in one piece.
TEST(FileSizer, MeasuresATenThousandLevelChainWithinTheDescriptorLimit) {
    TempTree tree;
    const std::string chain = tree.makeDir("chain");
    // Ten thousand folders are slow to make and remove on a busy disk.
    const PrivateScratch scratch(chain);
    constexpr int kDepth = 10000;
    constexpr int kMiddle = 3000;
    int64_t expected = 0;
    int64_t belowMiddle = 0;
    int64_t bottom = 0;
    ASSERT_EQ(buildDeepTree(chain, kDepth,
                            [&](int fd, int level) {
                                int64_t bytes = deepTreeFilesAt(fd);
                                if (level == 2000 || level == 5000 || level == 8000)
                                    bytes += makeLinksAt(fd, "many-", 6000);
                                if (level == kDepth - 1) {
                                    bottom = makeFileAt(fd, "bottom.bin", 65536);
                                    bytes += bottom;
                                }
                                expected += bytes;
                                if (level >= kMiddle)
                                    belowMiddle += bytes;
                            }),
              0);
    ASSERT_GT(bottom, 0);
    std::string middle = chain;
    for (int level = 0; level < kMiddle; ++level)
        middle += "/d";
    std::string deepest = middle;
    for (int level = kMiddle; level < kDepth - 1; ++level)
        deepest += "/d";
    ASSERT_GT(middle.size(), static_cast<size_t>(PATH_MAX));

    const int descriptorsBefore = openDescriptorCount();
    EXPECT_EQ(FileSizer::allocatedSize(chain), expected);
    EXPECT_EQ(openDescriptorCount(), descriptorsBefore);
    EXPECT_EQ(FileSizer::allocatedSize(middle), belowMiddle);
    EXPECT_EQ(FileSizer::allocatedSize(deepest + "/bottom.bin"), bottom);
    EXPECT_EQ(FileSizer::allocatedSize(deepest + "/missing"), 0);

    // With a small descriptor limit a walk that kept every folder open would lose
    // the bottom of the chain.
    const auto limited = numbersFromChild([&] {
        const rlimit limit{64, 64};
        if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
            return std::vector<int64_t>{-1};
        return std::vector<int64_t>{FileSizer::allocatedSize(chain)};
    });
    ASSERT_TRUE(limited.has_value());
    EXPECT_EQ(*limited, std::vector<int64_t>{expected});
}

TEST(FileSizer, KeepsCountingWhenPartOfTheTreeIsMovedDuringTheWalk) {
    TempTree tree;
    const std::string chain = tree.makeDir("chain");
    constexpr int kDepth = 60;
    int64_t expected = 0;
    ASSERT_EQ(buildDeepTree(chain, kDepth,
                            [&](int fd, int level) {
                                expected += deepTreeFilesAt(fd);
                                for (int i = 0; i < 4; ++i)
                                    expected += makeFileAt(fd, ("f" + std::to_string(i)).c_str(), 4096);
                                // Too large for one read: the rest may be read after reopening.
                                if (level == 10)
                                    expected += makeLinksAt(fd, "a-rather-long-entry-name-", 4000);
                                // At most about 4,400 entries come before the deepest level, so
                                // the third question (after entry 6,000) comes while the walk is
                                // in it, with the upper folders' descriptors closed.
                                if (level == kDepth - 1)
                                    expected += makeLinksAt(fd, "many-", 6000);
                            }),
              0);
    std::string moving = chain;
    for (int level = 0; level < 20; ++level)
        moving += "/d";

    // Moving a folder out from under the walk makes its ".." lead elsewhere; the
    // folders above it must still be finished, and nothing counted twice.
    int asked = 0;
    bool moved = false;
    const int64_t measured = FileSizer::allocatedSize(chain, [&] {
        if (++asked == 3)
            moved = ::rename(moving.c_str(), tree.path("moved").c_str()) == 0;
        return false;
    });
    ASSERT_TRUE(moved);
    EXPECT_EQ(measured, expected);
}

TEST(FileSizer, AsksForCancellationAfterEvery2000thEntryAndReturnsThePartialSum) {
    // Hard links to one file: cheap to make, all alike, and each one counts.
    TempTree flat;
    constexpr int kFiles = 4500;
    flat.makeFileOfSize("f0", 4096);
    for (int i = 1; i < kFiles; ++i)
        flat.makeHardLink("f" + std::to_string(i), "f0");
    const int64_t each = allocatedBytes(flat.path("f0"));
    ASSERT_GT(each, 0);
    const int64_t total = each * kFiles; // all entries are alike, so any prefix of the walk is known

    // Cancelling at the n-th question leaves the sum of the entries before the
    // (2000 * n)-th; never cancelled, it is asked after entries 2,000 and 4,000 of 4,500.
    const std::tuple<int, int64_t, int> cases[] = {{0, total, 2}, {1, each * 1999, 1}, {2, each * 3999, 2}};
    for (const auto& [cancelAt, size, questions] : cases) {
        int asked = 0;
        EXPECT_EQ(FileSizer::allocatedSize(flat.root(), [&] { return ++asked == cancelAt; }), size)
            << cancelAt;
        EXPECT_EQ(asked, questions) << cancelAt;
    }

    // Folders are entries too: 1,000 folders of one file each make exactly 2,000,
    // and the 2,000th is the file of the folder listed last.
    TempTree nested;
    nested.makeFileOfSize("d0/file", 4096);
    for (int i = 1; i < 1000; ++i)
        nested.makeHardLink("d" + std::to_string(i) + "/file", "d0/file");
    const int64_t nestedTotal = allocatedBytesOfRegularFiles(nested.root());
    const int64_t lastFile = allocatedBytes(nested.path("d0/file"));
    for (const auto& [cancelAt, size] : {std::pair{1, nestedTotal - lastFile}, std::pair{2, nestedTotal}}) {
        int asked = 0;
        EXPECT_EQ(FileSizer::allocatedSize(nested.root(), [&] { return ++asked == cancelAt; }), size)
            << cancelAt;
        EXPECT_EQ(asked, 1);
    }
}

TEST(FileSizer, DoesNotEnterABindMountLoopButCrossesIntoOtherFileSystems) {
    TempTree tree;
    tree.makeFileOfSize("top.bin", 20000);
    tree.makeFileOfSize("sub/inner.bin", 30000);
    tree.makeDir("sub/loop");
    tree.makeDir("other");
    const int64_t expected = allocatedBytesOfRegularFiles(tree.root());
    ASSERT_GT(expected, 0);

    // In a child with its own mount namespace, so no mount outlives the test.
    constexpr int64_t kNotPermitted = -2;
    const auto numbers = numbersFromChild([&]() -> std::vector<int64_t> {
        if (!enterPrivateMountNamespace())
            return {kNotPermitted};
        if (::mount(tree.root().c_str(), tree.path("sub/loop").c_str(), nullptr, MS_BIND, nullptr) != 0)
            return {kNotPermitted};
        if (::mount("veltro-test", tree.path("other").c_str(), "tmpfs", 0, "size=8m") != 0)
            return {kNotPermitted};
        struct stat looped {};
        if (::stat(tree.path("sub/loop/sub").c_str(), &looped) != 0)
            return {-3};
        const int64_t onOther = allocatedBytes(tree.makeFileOfSize("other/x", 8192));
        return {FileSizer::allocatedSize(tree.root()), FileSizer::allocatedSize(tree.path("sub/loop")),
                onOther};
    });
    ASSERT_TRUE(numbers.has_value());
    ASSERT_FALSE(numbers->empty());
    if (numbers->front() == kNotPermitted)
        GTEST_SKIP() << "mounting is not permitted here";
    ASSERT_EQ(numbers->size(), 3u);
    const int64_t onOther = (*numbers)[2];
    ASSERT_GE(onOther, 0);
    EXPECT_EQ((*numbers)[0], expected + onOther);
    // The bind mount copied the tree before the other file system was mounted in it.
    EXPECT_EQ((*numbers)[1], expected);
}
