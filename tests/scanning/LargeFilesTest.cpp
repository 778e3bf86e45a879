#include "ScanRecorder.h"

#include "platform/Paths.h"
#include "support/FakeHome.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int64_t mebibyte = 1 << 20;

std::vector<std::string> pathsOf(const std::vector<LargeFile>& hits) {
    std::vector<std::string> paths;
    for (const LargeFile& hit : hits)
        paths.push_back(hit.path);
    return paths;
}

bool contains(const std::vector<LargeFile>& hits, const std::string& path) {
    for (const LargeFile& hit : hits)
        if (hit.path == path)
            return true;
    return false;
}

ScanOptions search(int64_t threshold, std::vector<std::string> extraRoots = {},
                   bool hasFullDiskAccess = false) {
    return ScanOptions{threshold, std::move(extraRoots), hasFullDiskAccess};
}

const std::string vmWarning =
    "\u26A0\uFE0F VM/Docker disk \u2014 deleting it destroys everything inside the VM";
const std::string cloudWarning =
    "\u2601\uFE0F In iCloud Drive \u2014 deleting removes it from all your devices";
const std::string photosWarning = "\u26A0\uFE0F Inside a Photos library";

} // namespace

TEST(LargeFiles, ThresholdIsInclusiveOnAllocatedSize) {
    FakeHome home;
    const std::string file = home.makeFileOfSize("Documents/disk.img", mebibyte);
    const int64_t allocated = allocatedBytes(file);
    ASSERT_GE(allocated, mebibyte);
    const Claims none;

    const std::vector<LargeFile> atSize = JunkScanner::largeFiles(search(allocated), none);
    ASSERT_EQ(pathsOf(atSize), std::vector<std::string>{file});
    EXPECT_EQ(atSize[0].modified, JunkScanner::modDate(file));
    EXPECT_EQ(atSize[0].note, std::nullopt);
    EXPECT_TRUE(JunkScanner::largeFiles(search(allocated + 1), none).empty());
    // A sparse file's logical length does not count.
    home.tree().makeSparseFile("home/Documents/sparse.img", 64 * mebibyte);
    EXPECT_EQ(pathsOf(JunkScanner::largeFiles(search(2 * mebibyte), none)), std::vector<std::string>{});
}

TEST(LargeFiles, ThresholdBelowOneTakesEveryRegularFileAndTheScannerDropsEmptyOnes) {
    FakeHome home;
    const std::string empty = home.makeFile("notes/empty.txt");
    const std::string small = home.makeFile("notes/small.txt", "small");
    home.tree().makeSymlink("home/notes/link.txt", small);
    home.tree().makeFifo("home/notes/pipe");

    const std::vector<LargeFile> hits = JunkScanner::largeFiles(search(0), Claims{});
    EXPECT_TRUE(contains(hits, empty));
    EXPECT_TRUE(contains(hits, small));
    EXPECT_EQ(hits.size(), 2u);

    const RecordedScan scan = recordScan(search(-1));
    EXPECT_EQ(scan.idsIn("large.files"), std::vector<std::string>{small});
    EXPECT_EQ(scan.item(small)->method, RemovalMethod::trash());
    ASSERT_NE(scan.finished("large.files"), nullptr);
    EXPECT_NE(std::find(scan.events.begin(), scan.events.end(),
                        ScanEvent{ScanEvent::Status{"Searching for large files (\u2265 0 KB)\u2026"}}),
              scan.events.end());
}

TEST(LargeFiles, SkippedPlacesAndContainersWithoutFullDiskAccess) {
    FakeHome home;
    const std::string contained =
        home.makeFileOfSize("Library/Containers/com.example/Data/big.bin", mebibyte);
    home.makeFileOfSize(".Trash/big.bin", mebibyte);
    home.makeFileOfSize("Library/Caches/big.bin", mebibyte);
    home.makeFileOfSize("Library/Mail/V10/big.mbox", mebibyte);
    const std::string kept = home.makeFileOfSize("Library/Application Support/big.bin", mebibyte);

    EXPECT_EQ(pathsOf(JunkScanner::largeFiles(search(mebibyte), Claims{})), std::vector<std::string>{kept});
    const std::vector<std::string> withAccess =
        pathsOf(JunkScanner::largeFiles(search(mebibyte, {}, true), Claims{}));
    EXPECT_EQ(withAccess.size(), 3u);
    EXPECT_NE(std::find(withAccess.begin(), withAccess.end(), contained), withAccess.end());
    EXPECT_NE(std::find(withAccess.begin(), withAccess.end(), kept), withAccess.end());
}

TEST(LargeFiles, FilesInsideClaimedFoldersBelongToTheirCategory) {
    FakeHome home;
    const std::string build =
        home.makeFileOfSize("Library/Developer/Xcode/DerivedData/App-abc/Build/app.o", mebibyte);
    const std::string loose = home.makeFileOfSize("Projects/App/archive.zip", mebibyte);
    Claims claims;
    claims.insert(home.path("Library/Developer/Xcode/DerivedData/App-abc"));
    claims.insert(loose);

    EXPECT_TRUE(JunkScanner::largeFiles(search(mebibyte), claims).empty());

    const RecordedScan scan = recordScan(search(mebibyte));
    EXPECT_EQ(scan.idsIn("dev.derived"),
              std::vector<std::string>{home.path("Library/Developer/Xcode/DerivedData/App-abc")});
    EXPECT_EQ(scan.idsIn("large.files"), std::vector<std::string>{loose});
    EXPECT_EQ(scan.item(build), nullptr);
}

TEST(LargeFiles, RootsAreSortedAndOverlapsReportedOnce) {
    FakeHome home;
    const std::string inHome = home.makeFileOfSize("Projects/data.bin", mebibyte);
    const std::string outside = home.tree().makeFileOfSize("aaa-extra/data.bin", mebibyte);
    ASSERT_LT(home.tree().path("aaa-extra"), home.home());

    const std::vector<LargeFile> hits = JunkScanner::largeFiles(
        search(mebibyte, {home.path("Projects"), home.tree().path("aaa-extra") + "/", home.path("Projects")}),
        Claims{});

    EXPECT_EQ(pathsOf(hits), (std::vector<std::string>{outside, inHome}));
}

TEST(LargeFiles, PackagesAndOtherVolumesAreNotEntered) {
    FakeHome home;
    home.makeFileOfSize("Applications/Foo.app/Contents/Resources/big.bin", mebibyte);
    home.makeFileOfSize("Applications/Bar.FRAMEWORK/big.bin", mebibyte);
    const std::string plain = home.makeFileOfSize("Applications/not.a.package.dir/big.bin", mebibyte);
    const std::string mountPoint = home.makeDir("mnt");
    bool mounted = ::mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=8m") == 0;
    if (mounted)
        home.makeFileOfSize("mnt/big.bin", mebibyte);

    const std::vector<LargeFile> hits = JunkScanner::largeFiles(search(mebibyte), Claims{});
    std::vector<LargeFile> rootedAtMount;
    if (mounted) {
        rootedAtMount = JunkScanner::largeFiles(search(mebibyte, {mountPoint}), Claims{});
        ::umount(mountPoint.c_str());
    }

    EXPECT_EQ(pathsOf(hits), std::vector<std::string>{plain});
    if (!mounted)
        GTEST_SKIP() << "cannot mount a tmpfs here";
    // A volume given as a root is walked (after the home folder, which sorts first).
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

    ASSERT_EQ(hits.size(), 3u);
    for (const LargeFile& hit : hits) {
        if (hit.path == home.path("VMs/Ubuntu.VMDK") || hit.path == home.path("Outmost/photo.raw"))
            EXPECT_EQ(hit.note, vmWarning) << hit.path;
        else if (hit.path == home.path("Library/Mobile Documents/com~apple~CloudDocs/movie.mov"))
            EXPECT_EQ(hit.note, cloudWarning);
        else
            ADD_FAILURE() << "unexpected hit " << hit.path;
    }
}

TEST(LargeFiles, WarningsInOrder) {
    EXPECT_EQ(JunkScanner::warning("/Users/a/Docker.RAW"), vmWarning);
    EXPECT_EQ(JunkScanner::warning("/Users/a/OrbStack/data.img"), vmWarning);
    EXPECT_EQ(JunkScanner::warning("/Users/a/disk.qcow2"), vmWarning);
    EXPECT_EQ(JunkScanner::warning("/Users/a/disk.vdi"), vmWarning);
    EXPECT_EQ(JunkScanner::warning("/Users/a/Parallels/win.hdd"), vmWarning);
    // A VM disk in iCloud Drive warns about the VM first.
    EXPECT_EQ(JunkScanner::warning("/Users/a/Library/Mobile Documents/UTM/disk.img"), vmWarning);
    EXPECT_EQ(JunkScanner::warning("/Users/a/Library/Mobile Documents/report.pdf"), cloudWarning);
    EXPECT_EQ(JunkScanner::warning("/Users/a/Pictures/Photos Library.photoslibrary/originals/1.heic"),
              photosWarning);
    EXPECT_EQ(JunkScanner::warning("/Users/a/Movies/clip.mov"), std::nullopt);
    EXPECT_EQ(JunkScanner::warning("/Users/a/disk.vmdk.zip"), std::nullopt);
}

TEST(LargeFiles, AStopReturnsWhatWasFoundSoFar) {
    FakeHome home;
    const std::string first = home.tree().makeDir("aaa-first");
    for (int i = 0; i < 5100; ++i) {
        const int fd =
            ::open((first + "/f" + std::to_string(i)).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        ASSERT_GE(fd, 0);
        ::close(fd);
    }
    const std::string late = home.makeFileOfSize("late.bin", mebibyte);
    std::stop_source stop;
    stop.request_stop();

    const std::vector<LargeFile> stopped = JunkScanner::largeFiles(
        search(mebibyte, {home.tree().path("aaa-first")}), Claims{}, stop.get_token());
    EXPECT_TRUE(stopped.empty());
    EXPECT_EQ(pathsOf(JunkScanner::largeFiles(search(mebibyte, {first}), Claims{})),
              std::vector<std::string>{late});
}
