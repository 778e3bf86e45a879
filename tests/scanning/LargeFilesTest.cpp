#include "ScanRecorder.h"
#include "TreeFixtures.h"

#include "support/DeepTree.h"
#include "support/FakeHome.h"
#include "support/PathQueries.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sys/mount.h>
#include <sys/stat.h>

namespace {

constexpr int64_t mebibyte = 1 << 20;

std::vector<std::string> pathsOf(const std::vector<LargeFile>& hits) {
    std::vector<std::string> paths;
    for (const LargeFile& hit : hits)
        paths.push_back(hit.path);
    return paths;
}

std::vector<std::string> sorted(std::vector<std::string> paths) {
    std::sort(paths.begin(), paths.end());
    return paths;
}

ScanOptions search(int64_t threshold, std::vector<std::string> extraRoots = {},
                   bool hasFullDiskAccess = false) {
    return ScanOptions{threshold, std::move(extraRoots), hasFullDiskAccess};
}

const std::string vmWarning =
    "\u26A0\uFE0F VM/Docker disk \u2014 deleting it destroys everything inside the VM";
const std::string cloudWarning =
    "\u2601\uFE0F In iCloud Drive \u2014 deleting removes it from all your devices";

// Regular files below `folder` in the order of a plain recursive walk: each
// folder in listing order, a subfolder entered where it is listed.
void walkInOrder(const std::string& folder, std::vector<std::string>& files) {
    for (const std::string& name : namesInListingOrder(folder)) {
        const std::string path = folder + "/" + name;
        const mode_t type = statOf(path).st_mode & S_IFMT;
        if (type == S_IFREG)
            files.push_back(path);
        else if (type == S_IFDIR)
            walkInOrder(path, files);
    }
}

} // namespace

// At or above the threshold by allocated size, a sparse file's length not counting;
// below 1 every regular file, of which the scanner keeps those that occupy space.
TEST(LargeFiles, ThresholdIsInclusiveOnAllocatedSizeAndBelowOneTakesEveryRegularFile) {
    FakeHome home;
    const std::string file = home.makeFileOfSize("Documents/disk.img", mebibyte);
    const std::string sparse = home.tree().makeSparseFile("home/Documents/sparse.img", 64 * mebibyte);
    const std::string empty = home.makeFile("notes/empty.txt");
    const std::string small = home.makeFile("notes/small.txt", "small");
    home.tree().makeSymlink("home/notes/link.txt", small);
    home.tree().makeFifo("home/notes/pipe");
    const int64_t allocated = allocatedBytes(file);
    ASSERT_GE(allocated, mebibyte);

    const std::vector<LargeFile> atSize = JunkScanner::largeFiles(search(allocated), Claims{});
    ASSERT_EQ(pathsOf(atSize), std::vector<std::string>{file});
    EXPECT_EQ(atSize[0].modified, JunkScanner::modDate(file));
    EXPECT_TRUE(JunkScanner::largeFiles(search(allocated + 1), Claims{}).empty());
    EXPECT_EQ(sorted(pathsOf(JunkScanner::largeFiles(search(0), Claims{}))),
              (std::vector<std::string>{file, sparse, empty, small}));

    const RecordedScan scan = recordScan(search(-1));
    EXPECT_EQ(sorted(scan.idsIn("large.files")), (std::vector<std::string>{file, small}));
    ASSERT_NE(scan.item(small), nullptr);
    EXPECT_EQ(scan.item(small)->method, RemovalMethod::trash());
    EXPECT_NE(std::find(scan.events.begin(), scan.events.end(),
                        ScanEvent{ScanEvent::Status{"Searching for large files (\u2265 0 KB)\u2026"}}),
              scan.events.end());
}

// The Trash, caches and mail are other categories' places, containers too without Full
// Disk Access; a file inside a folder another category claims is that category's.
TEST(LargeFiles, SkipsOtherCategoriesPlacesAndClaimedFolders) {
    FakeHome home;
    const std::string contained =
        home.makeFileOfSize("Library/Containers/com.example/Data/big.bin", mebibyte);
    home.makeFileOfSize(".Trash/big.bin", mebibyte);
    home.makeFileOfSize("Library/Caches/big.bin", mebibyte);
    const std::string mail = home.makeFileOfSize("Library/Mail/V10/big.mbox", mebibyte);
    const std::string kept = home.makeFileOfSize("Library/Application Support/big.bin", mebibyte);
    const std::string build =
        home.makeFileOfSize("Library/Developer/Xcode/DerivedData/App-abc/Build/app.o", mebibyte);
    const std::string loose = home.makeFileOfSize("Projects/App/archive.zip", mebibyte);
    Claims claims;
    claims.insert(home.path("Library/Developer/Xcode/DerivedData/App-abc"));
    claims.insert(loose);

    EXPECT_EQ(pathsOf(JunkScanner::largeFiles(search(mebibyte), claims)), std::vector<std::string>{kept});
    EXPECT_EQ(sorted(pathsOf(JunkScanner::largeFiles(search(mebibyte, {}, true), claims))),
              (std::vector<std::string>{kept, contained, mail}));

    const RecordedScan scan = recordScan(search(mebibyte));
    EXPECT_EQ(scan.idsIn("dev.derived"),
              std::vector<std::string>{home.path("Library/Developer/Xcode/DerivedData/App-abc")});
    EXPECT_EQ(sorted(scan.idsIn("large.files")), (std::vector<std::string>{kept, loose}));
    EXPECT_EQ(scan.item(build), nullptr);
}

// Roots are walked once each in sorted order, a volume given as a root too; below a
// root neither packages nor other volumes are entered.
TEST(LargeFiles, RootsAreSortedAndWalkedOnceWithoutPackagesOrOtherVolumes) {
    FakeHome home;
    home.makeFileOfSize("Applications/Foo.app/Contents/Resources/big.bin", mebibyte);
    home.makeFileOfSize("Applications/Bar.FRAMEWORK/big.bin", mebibyte);
    const std::string plain = home.makeFileOfSize("Applications/not.a.package.dir/big.bin", mebibyte);
    const std::string outside = home.tree().makeFileOfSize("aaa-extra/data.bin", mebibyte);
    ASSERT_LT(home.tree().path("aaa-extra"), home.home());
    const std::string mountPoint = home.makeDir("mnt");
    const bool mounted = ::mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=8m") == 0;
    if (mounted)
        home.makeFileOfSize("mnt/big.bin", mebibyte);

    const std::vector<LargeFile> hits = JunkScanner::largeFiles(
        search(mebibyte,
               {home.path("Applications"), home.tree().path("aaa-extra") + "/", home.path("Applications")}),
        Claims{});
    std::vector<LargeFile> rootedAtMount;
    if (mounted) {
        rootedAtMount = JunkScanner::largeFiles(search(mebibyte, {mountPoint}), Claims{});
        ::umount(mountPoint.c_str());
    }

    EXPECT_EQ(pathsOf(hits), (std::vector<std::string>{outside, plain}));
    if (!mounted)
        GTEST_SKIP() << "cannot mount a tmpfs here";
    // After the home folder, which sorts first.
    EXPECT_EQ(pathsOf(rootedAtMount), (std::vector<std::string>{plain, home.path("mnt/big.bin")}));
}

TEST(LargeFiles, HitsCarryCanonicalPathsAndWarnings) {
    FakeHome home;
    home.makeFileOfSize("VMs/Ubuntu.VMDK", mebibyte);
    home.makeFileOfSize("Library/Mobile Documents/com~apple~CloudDocs/movie.mov", mebibyte);
    home.makeFileOfSize("Outmost/photo.raw", mebibyte);
    home.tree().makeSymlink("home/shortcut", home.path("VMs"));
    home.tree().makeSymlink("home/big-link.bin", home.path("VMs/Ubuntu.VMDK"));

    const std::vector<LargeFile> hits =
        JunkScanner::largeFiles(search(mebibyte, {home.path("shortcut")}), Claims{});

    // Each file once, though the extra root reaches it through a link.
    std::multimap<std::string, std::optional<std::string>> notes;
    for (const LargeFile& hit : hits)
        notes.emplace(hit.path, hit.note);
    EXPECT_EQ(notes, (decltype(notes){{home.path("VMs/Ubuntu.VMDK"), vmWarning},
                                      {home.path("Outmost/photo.raw"), vmWarning},
                                      {home.path("Library/Mobile Documents/com~apple~CloudDocs/movie.mov"),
                                       cloudWarning}}));
    for (const char* disk : {"Docker.raw", "OrbStack/data.img", "a.qcow2", "b.vdi", "Parallels/c.hdd"})
        EXPECT_EQ(JunkScanner::warning(std::string("/home/a/") + disk), vmWarning) << disk;
    // A VM disk in iCloud Drive warns about the VM first.
    EXPECT_EQ(JunkScanner::warning("/home/a/Library/Mobile Documents/UTM/disk.img"), vmWarning);
    EXPECT_EQ(JunkScanner::warning("/home/a/Pictures/Photos Library.photoslibrary/originals/1.heic"),
              "\u26A0\uFE0F Inside a Photos library");
    EXPECT_EQ(JunkScanner::warning("/home/a/disk.vmdk.zip"), std::nullopt);
}

TEST(LargeFiles, AStopReturnsWhatWasFoundSoFar) {
    FakeHome home;
    // With a threshold below 1 every file is a hit; the stop is noticed at the
    // 5,000th entry of the folder.
    for (int i = 0; i < 5100; ++i)
        home.makeFile("many/f" + std::to_string(i));
    std::stop_source stop;
    stop.request_stop();

    const std::vector<LargeFile> stopped = JunkScanner::largeFiles(search(0), Claims{}, stop.get_token());
    const std::vector<LargeFile> all = JunkScanner::largeFiles(search(0), Claims{});

    EXPECT_LT(stopped.size(), 5000u);
    EXPECT_EQ(all.size(), 5100u);
}

// Three hundred levels deep included: far more folders than a walk holds open, so
// on the way back up each is reopened and its listing goes on after the subfolder.
TEST(LargeFiles, HitsComeInTheOrderOfOneSequentialWalk) {
    FakeHome home;
    const auto threeFiles = [&](const std::string& folder) {
        for (int f = 0; f < 3; ++f)
            home.makeFile(folder + "/f" + std::to_string(f));
    };
    for (int top = 0; top < 20; ++top) {
        const std::string a = "tree/t" + std::to_string(top);
        threeFiles(a);
        for (int mid = 0; mid < 5; ++mid) {
            const std::string b = a + "/m" + std::to_string(mid);
            threeFiles(b);
            for (int leaf = 0; leaf < 4; ++leaf)
                threeFiles(b + "/l" + std::to_string(leaf));
        }
    }
    ASSERT_EQ(buildDeepTree(home.path("tree/t7"), 300), 0);
    std::vector<std::string> expected;
    walkInOrder(home.home(), expected);
    ASSERT_EQ(expected.size(), 20u * (3 + 5 * (3 + 4 * 3)) + 30 + 3);

    // The walk hands folders to other threads as they fall idle, differently each
    // time; the order must not change.
    for (int run = 0; run < 5; ++run)
        EXPECT_EQ(pathsOf(JunkScanner::largeFiles(search(0), Claims{})), expected) << "run " << run;
}
