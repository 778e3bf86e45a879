#include "scanning/FileSizer.h"

#include "TreeFixtures.h"
#include "support/DeepTree.h"
#include "support/ForkedChild.h"
#include "support/ProcessCounts.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
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

// Makes `name` in `fd` and returns an open descriptor for it.
int makeFolderAt(int fd, const char* name) {
    if (::mkdirat(fd, name, 0755) != 0)
        return -1;
    return ::openat(fd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// Number of entries that the folder `fd` lists after `name`.
int entriesListedAfter(int fd, const char* name) {
    DIR* dir = ::fdopendir(::dup(fd));
    if (!dir)
        return -1;
    ::rewinddir(dir);
    int after = -1;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view listed = entry->d_name;
        if (listed == "." || listed == "..")
            continue;
        if (after >= 0)
            ++after;
        else if (listed == name)
            after = 0;
    }
    ::closedir(dir);
    return after;
}

} // namespace

TEST(FileSizer, MeasuresOnlyRegularFilesBelowAFolder) {
    TempTree outside;
    outside.makeFileOfSize("big/payload.bin", 4 << 20);
    TempTree tree;
    tree.makeFileOfSize("a.bin", 10000);
    tree.makeFile("one-byte.txt", "x");
    tree.makeFile("empty.txt");
    tree.makeFile(".hidden/cache.db", std::string(5000, 'c'));
    tree.makeFileOfSize("deep/er/still/inner.bin", 70000);
    tree.makeFileOfSize("Caf\xC3\xA9 \xE2\x98\x95.bin", 9000);
    tree.makeSparseFile("sparse.img", 100 << 20);
    tree.makeSymlink("to-big", outside.path("big"));
    tree.makeSymlink("dangling", tree.path("nowhere"));
    tree.makeFifo("deep/pipe");
    tree.makeDir("empty-folder");
    tree.makeDir("App.app/Contents");
    tree.makeFileOfSize("App.app/Contents/binary", 20000);

    const int64_t expected = allocatedBytesOfRegularFiles(tree.root());
    ASSERT_GT(expected, 0);
    EXPECT_EQ(FileSizer::allocatedSize(tree.root()), expected);
    EXPECT_EQ(FileSizer::allocatedSize(tree.root() + "/"), expected);
    EXPECT_EQ(FileSizer::allocatedSize(tree.path("deep")),
              allocatedBytes(tree.path("deep/er/still/inner.bin")));
    // The link's target is large, but neither the link nor what it points to counts.
    EXPECT_GE(allocatedBytesOfRegularFiles(outside.path("big")), 4 << 20);
    EXPECT_LT(expected, 4 << 20);
}

TEST(FileSizer, MeasuresSingleEntriesWithoutFollowingLinks) {
    TempTree outside;
    outside.makeFileOfSize("big/payload.bin", 4 << 20);
    TempTree tree;
    const std::string file = tree.makeFileOfSize("file.bin", 30000);
    const std::string sparse = tree.makeSparseFile("sparse.img", 100 << 20);
    // A target long enough that the link has a block of its own, which must not count either.
    std::string longTarget = outside.path("big");
    for (int i = 0; i < 40; ++i)
        longTarget += "/.";
    const std::string link = tree.makeSymlink("to-big", longTarget);
    ASSERT_GT(allocatedBytes(link), 0);
    const std::string fileLink = tree.makeSymlink("to-file", file);
    const std::string fifo = tree.makeFifo("pipe");
    const std::string empty = tree.makeDir("empty");
    tree.makeSymlink("only-link/to-big", outside.path("big"));

    EXPECT_EQ(FileSizer::allocatedSize(file), allocatedBytes(file));
    EXPECT_GE(FileSizer::allocatedSize(file), 30000);
    EXPECT_EQ(FileSizer::allocatedSize(sparse), allocatedBytes(sparse));
    EXPECT_LT(FileSizer::allocatedSize(sparse), 1 << 20); // logical length 100 MB
    EXPECT_EQ(FileSizer::allocatedSize(link), 0);
    EXPECT_EQ(FileSizer::allocatedSize(link + "/"), 0);
    EXPECT_EQ(FileSizer::allocatedSize(fileLink), 0);
    EXPECT_EQ(FileSizer::allocatedSize(fifo), allocatedBytes(fifo));
    EXPECT_EQ(FileSizer::allocatedSize(empty), 0);
    EXPECT_EQ(FileSizer::allocatedSize(tree.path("only-link")), 0);
    EXPECT_EQ(FileSizer::allocatedSize(tree.path("missing")), 0);
    EXPECT_EQ(FileSizer::allocatedSize(""), 0);
}

TEST(FileSizer, CountsHardLinksEachTimeTheyAreMet) {
    TempTree tree;
    const std::string original = tree.makeFileOfSize("a/original.bin", 64 * 1024);
    const std::string link = tree.makeHardLink("b/link.bin", "a/original.bin");
    const int64_t once = allocatedBytes(original);
    ASSERT_GT(once, 0);

    const int64_t expected = allocatedBytesOfRegularFiles(tree.root());
    EXPECT_EQ(expected, 2 * once);
    EXPECT_EQ(FileSizer::allocatedSize(tree.root()), expected);
    ASSERT_EQ(::unlink(link.c_str()), 0);
    EXPECT_EQ(FileSizer::allocatedSize(tree.root()), once);
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
    const int64_t everything = allocatedBytesOfRegularFiles(tree.root());

    const auto numbers = numbersFromChild([&] {
        if (!becomeUnprivileged())
            return std::vector<int64_t>{};
        return std::vector<int64_t>{FileSizer::allocatedSize(tree.root()),
                                    allocatedBytesOfRegularFiles(tree.root()),
                                    FileSizer::allocatedSize(tree.path("locked"))};
    });
    ASSERT_TRUE(numbers.has_value());
    ASSERT_EQ(numbers->size(), 3u);
    const int64_t measured = (*numbers)[0];
    const int64_t readable = (*numbers)[1];
    EXPECT_EQ(measured, readable);
    EXPECT_EQ(readable, allocatedBytes(tree.path("readable/file.bin")) +
                            allocatedBytes(tree.path("sibling.bin")) +
                            allocatedBytes(tree.path("zz-after/last.bin")));
    EXPECT_LE(readable + 3 * (1 << 20), everything);
    EXPECT_EQ((*numbers)[2], 0);
}

TEST(FileSizer, MeasuresATenThousandLevelChainWithinTheDescriptorLimit) {
    TempTree tree;
    const std::string chain = tree.makeDir("chain");
    // Ten thousand folders are slow to make and remove on a busy disk.
    const PrivateScratch scratch(chain);
    constexpr int kDepth = 10000;
    int64_t expected = 0;
    int listedAfterFolder = 0;
    int fd = ::open(chain.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    for (int level = 0; level < kDepth; ++level) {
        // Files beside the folder at some levels: those listed after it are read only
        // when the walk comes back up, after the folder has had to be opened again.
        const bool withFiles = level % 1000 == 999;
        if (withFiles)
            for (int i = 0; i < 8; ++i) {
                const int64_t bytes = makeFileAt(fd, ("f" + std::to_string(level * 10 + i)).c_str(), 4096);
                ASSERT_GE(bytes, 0);
                expected += bytes;
            }
        // Folders too large for one read, so that reading may go on from the
        // position noted before the folder was closed.
        const bool large = level == 2000 || level == 5000 || level == 8000;
        if (large) {
            const int64_t bytes = makeFileAt(fd, "many-0", 4096);
            ASSERT_GE(bytes, 0);
            expected += bytes;
            for (int i = 1; i < 6000; ++i) {
                ASSERT_EQ(::linkat(fd, "many-0", fd, ("many-" + std::to_string(i)).c_str(), 0), 0);
                expected += bytes;
            }
        }
        const int next = makeFolderAt(fd, "d");
        if (withFiles || large)
            listedAfterFolder += entriesListedAfter(fd, "d");
        ::close(fd);
        ASSERT_GE(next, 0) << "level " << level;
        fd = next;
    }
    const int64_t bottom = makeFileAt(fd, "bottom.bin", 65536);
    ::close(fd);
    ASSERT_GT(bottom, 0);
    expected += bottom;
    ASSERT_GT(listedAfterFolder, 0);

    const int descriptorsBefore = openDescriptorCount();
    EXPECT_EQ(FileSizer::allocatedSize(tree.path("chain")), expected);
    EXPECT_EQ(openDescriptorCount(), descriptorsBefore);

    // With a small descriptor limit a walk that kept every folder open would lose
    // the bottom of the chain.
    const auto limited = numbersFromChild([&] {
        const rlimit limit{64, 64};
        if (::setrlimit(RLIMIT_NOFILE, &limit) != 0)
            return std::vector<int64_t>{-1};
        return std::vector<int64_t>{FileSizer::allocatedSize(tree.path("chain"))};
    });
    ASSERT_TRUE(limited.has_value());
    ASSERT_EQ(limited->size(), 1u);
    EXPECT_EQ(limited->front(), expected);
}

TEST(FileSizer, KeepsCountingWhenPartOfTheTreeIsMovedDuringTheWalk) {
    TempTree tree;
    constexpr int kDepth = 60;
    constexpr int kMovedLevel = 20;
    constexpr int kLargeLevel = 10;
    int64_t expected = 0;
    int listedAfterFolder = 0;
    std::string movedPath = tree.makeDir("chain");
    int fd = ::open(movedPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    // Every entry is a 4,096-byte file, a hard link to one, or a folder.
    const auto addLinks = [&](int folder, const std::string& prefix, int count) {
        const int64_t each = makeFileAt(folder, (prefix + "0").c_str(), 4096);
        ASSERT_GT(each, 0);
        expected += each;
        for (int i = 1; i < count; ++i) {
            ASSERT_EQ(
                ::linkat(folder, (prefix + "0").c_str(), folder, (prefix + std::to_string(i)).c_str(), 0), 0);
            expected += each;
        }
    };
    for (int level = 0; level < kDepth; ++level) {
        for (int i = 0; i < 4; ++i) {
            const int64_t bytes = makeFileAt(fd, ("f" + std::to_string(level * 10 + i)).c_str(), 4096);
            ASSERT_GE(bytes, 0);
            expected += bytes;
        }
        // Too large for one read: the rest may have to be read after reopening.
        if (level == kLargeLevel)
            addLinks(fd, "a-rather-long-entry-name-", 4000);
        const int next = makeFolderAt(fd, "d");
        if (level < kMovedLevel)
            listedAfterFolder += entriesListedAfter(fd, "d");
        ::close(fd);
        ASSERT_GE(next, 0);
        fd = next;
        if (level < kMovedLevel)
            movedPath += "/d";
    }
    // At most about 4,400 entries come before the bottom folder, so the third
    // question (after entry 6,000) comes while the walk is in it, with the upper
    // folders' descriptors closed.
    addLinks(fd, "many-", 6000);
    ::close(fd);
    ASSERT_GT(listedAfterFolder, 0);

    // Moving a folder out from under the walk makes its ".." lead elsewhere; the
    // folders above it must still be finished, and nothing counted twice.
    int asked = 0;
    bool moved = false;
    const int64_t measured = FileSizer::allocatedSize(tree.path("chain"), [&] {
        if (++asked == 3)
            moved = ::rename(movedPath.c_str(), tree.path("moved").c_str()) == 0;
        return false;
    });
    ASSERT_TRUE(moved);
    EXPECT_EQ(measured, expected);
}

TEST(FileSizer, MeasuresTreesAndPathsLongerThanPathMax) {
    TempTree tree;
    const std::string longName(250, 'n');
    constexpr int kLevels = 40; // about 10,000 characters below the tree
    std::string deepPath = tree.makeDir("long");
    const RemovedOnExit cleanup(deepPath); // deeper than path-based removal can go
    int64_t expected = 0;
    int64_t belowMiddle = 0;
    int fd = ::open(deepPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    std::string middlePath;
    for (int level = 0; level < kLevels; ++level) {
        const int64_t bytes = makeFileAt(fd, "f.bin", 5000 + level);
        ASSERT_GE(bytes, 0);
        expected += bytes;
        if (level >= kLevels / 2)
            belowMiddle += bytes;
        const int next = makeFolderAt(fd, longName.c_str());
        ::close(fd);
        ASSERT_GE(next, 0);
        fd = next;
        deepPath += "/" + longName;
        if (level + 1 == kLevels / 2)
            middlePath = deepPath;
    }
    const int64_t bottom = makeFileAt(fd, "bottom.bin", 40000);
    ::close(fd);
    ASSERT_GT(bottom, 0);
    expected += bottom;
    belowMiddle += bottom;
    ASSERT_GT(deepPath.size(), static_cast<size_t>(PATH_MAX));
    ASSERT_GT(middlePath.size(), static_cast<size_t>(PATH_MAX));

    EXPECT_EQ(FileSizer::allocatedSize(tree.path("long")), expected);
    // The argument itself may be longer than the kernel accepts in one piece.
    EXPECT_EQ(FileSizer::allocatedSize(middlePath), belowMiddle);
    EXPECT_EQ(FileSizer::allocatedSize(deepPath), bottom);
    EXPECT_EQ(FileSizer::allocatedSize(deepPath + "/bottom.bin"), bottom);
    EXPECT_EQ(FileSizer::allocatedSize(deepPath + "/missing"), 0);
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
    const int64_t total = allocatedBytesOfRegularFiles(flat.root());
    ASSERT_EQ(total, each * kFiles); // all entries are alike, so any prefix of the walk is known

    // Cancelling at the n-th question leaves the sum of the entries before the
    // (2000 * n)-th.
    for (int cancelAt : {0, 1, 2}) {
        int asked = 0;
        const int64_t size = FileSizer::allocatedSize(flat.root(), [&] { return ++asked == cancelAt; });
        if (cancelAt == 0) {
            EXPECT_EQ(size, total);
            EXPECT_EQ(asked, 2); // after entries 2,000 and 4,000 of 4,500
        } else {
            EXPECT_EQ(size, each * (2000 * cancelAt - 1)) << "cancelled at question " << cancelAt;
            EXPECT_EQ(asked, cancelAt);
        }
    }

    // Folders are entries too: 1,000 folders of one file each make exactly 2,000,
    // and the 2,000th is the file of the folder listed last.
    TempTree nested;
    nested.makeFileOfSize("d0/file", 4096);
    for (int i = 1; i < 1000; ++i)
        nested.makeHardLink("d" + std::to_string(i) + "/file", "d0/file");
    const int64_t nestedTotal = allocatedBytesOfRegularFiles(nested.root());
    int asked = 0;
    EXPECT_EQ(FileSizer::allocatedSize(nested.root(), [&] { return ++asked > 1; }), nestedTotal);
    EXPECT_EQ(asked, 1);
    asked = 0;
    EXPECT_EQ(FileSizer::allocatedSize(nested.root(), [&] { return ++asked == 1; }),
              nestedTotal - allocatedBytes(nested.path("d0/file")));
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
        const int otherFd = ::open(tree.path("other").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        const int64_t onOther = makeFileAt(otherFd, "x", 8192);
        ::close(otherFd);
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

TEST(FileSizer, ConcurrentMeasurementsAgree) {
    TempTree tree;
    for (int d = 0; d < 10; ++d)
        for (int f = 0; f < 25; ++f)
            tree.makeFile("d" + std::to_string(d) + "/s" + std::to_string(d % 3) + "/f" + std::to_string(f),
                          std::string(static_cast<size_t>(100 * f + d), 'z'));
    const int64_t expected = allocatedBytesOfRegularFiles(tree.root());
    std::atomic<int> agreeing{0};
    std::vector<std::jthread> workers;
    for (int i = 0; i < 8; ++i)
        workers.emplace_back([&] {
            for (int round = 0; round < 5; ++round)
                if (FileSizer::allocatedSize(tree.root(), [] { return false; }) == expected)
                    agreeing.fetch_add(1);
        });
    workers.clear();
    EXPECT_EQ(agreeing.load(), 40);
    EXPECT_GT(expected, 0);
}
