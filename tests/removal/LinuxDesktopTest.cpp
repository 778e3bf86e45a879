// A home laid out as a Linux desktop's, with the shared temporary folders and the
// system's log, cache and package folders beside it, scanned for real. The machine's
// own folders are out of reach: /tmp and /var/tmp are empty tmpfs of this process's
// own mount namespace (as are the system folders, see support/QuietSystemFolders.h).

#include "catalogue/ProtectedPaths.h"
#include "platform/Environment.h"
#include "platform/Paths.h"
#include "removal/Cleaner.h"
#include "scanning/JunkScanner.h"
#include "scanning/SearchedPlaces.h"
#include "support/QuietSystemFolders.h"
#include "support/TempTree.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sys/mount.h>
#include <unistd.h>

namespace {

void age(const std::string& path, int days) {
    setModificationTime(path, std::time(nullptr) - int64_t{86'400} * days);
}

// A file with its folders, `daysOld` days old, owned by `owner`.
void put(const std::string& path, int daysOld = 0, uid_t owner = ::getuid()) {
    std::filesystem::create_directories(Paths::parentFolder(path));
    std::ofstream(path) << path;
    age(path, daysOld);
    ASSERT_EQ(::lchown(path.c_str(), owner, owner), 0) << path;
}

class LinuxDesktop : public ::testing::Test {
protected:
    void SetUp() override {
        if (!quietSystemFolders())
            GTEST_SKIP() << "needs a mount namespace of its own, which takes root";
        // Writable copies of the quiet folders this test lays things out in.
        for (const char* folder : {"/tmp", "/var/tmp", "/var/cache", "/var/log", "/mnt", "/media"}) {
            if (::mount("veltro-tmp", folder, "tmpfs", MS_NOSUID | MS_NODEV, "size=256m,mode=1777") != 0)
                GTEST_SKIP() << "cannot mount a private " << folder;
            mounted_.push_back(folder);
        }
        ::unsetenv("TMPDIR");
    }

    void TearDown() override {
        for (const std::string& folder : mounted_)
            ::umount2(folder.c_str(), MNT_DETACH);
    }

    // Points HOME at `home`; false when this process read other home or temporary
    // folders first (ctest runs every test in a process of its own).
    static bool useHome(const std::string& home, const std::string& temporaryFolder) {
        std::filesystem::create_directories(home);
        ::setenv("HOME", home.c_str(), 1);
        return Environment::homeFolder() == home && Environment::temporaryFolder() == temporaryFolder;
    }

    static std::map<std::string, std::string> offeredPaths(const std::vector<ScanItem>& items) {
        std::map<std::string, std::string> offered;
        for (const ScanItem& item : items)
            EXPECT_TRUE(!item.url || offered.emplace(item.id, item.categoryID).second)
                << "twice: " << item.id;
        return offered;
    }

    std::vector<std::string> mounted_;
};

} // namespace

TEST_F(LinuxDesktop, EveryCacheLandsInItsCategoryAndNothingElseIsOffered) {
    const std::string h = "/tmp/desktop-home";
    if (!useHome(h, "/tmp"))
        GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
    const std::string chrome = h + "/.config/google-chrome", fox = "/mozilla/firefox/ab12.default";
    const std::string mountTrash = "/.Trash-" + std::to_string(::getuid()) + "/files";
    struct Entry {
        std::string path;          // what is offered, or (without a category) a file that must stay
        std::string below = {};    // the file made inside `path`
        std::string category = {}; // of `path`; empty: neither it nor a folder holding it is offered
        int daysOld = 0;
        uid_t owner = ::getuid();
    };
    const std::vector<Entry> desktop{
        {h + "/.cache/google-chrome", "/Default/Cache/data_0", "apps.browsers"},
        {chrome + "/Default/Cache", "/Cache_Data/f_01", "apps.browsers"},
        {chrome + "/Default/Code Cache", "/js/index", "apps.browsers"},
        {chrome + "/ShaderCache", "/data_1", "apps.browsers"},
        {chrome + "/Default/Bookmarks"},
        {h + "/.cache" + fox + "/cache2", "/entries/E1", "apps.browsers"},
        {h + "/.cache" + fox + "/startupCache", "/scriptCache.bin", "apps.browsers"},
        {h + "/.mozilla/firefox/ab12.default/places.sqlite"},
        {h + "/snap/firefox/common/.cache" + fox + "/cache2", "/entries/E2", "apps.browsers"},
        {h + "/.var/app/org.mozilla.firefox/cache" + fox + "/cache2", "/entries/E3", "apps.browsers"},
        {h + "/.config/Code/CachedData", "/1a2b/chrome.js", "apps.electron"},
        {h + "/.config/Code/GPUCache", "/data_0", "apps.electron"},
        {h + "/.config/Code/User/settings.json"},
        {h + "/.cache/spotify", "/Data/ab/track", "apps.electron"},
        {h + "/.var/app/org.gimp.GIMP/cache/fontconfig", "/cache-8", "apps.sandbox"},
        {h + "/.var/app/org.gimp.GIMP/config/GIMP/2.10/gimprc"},
        {h + "/snap/spotify/common/.cache/spotify", "/Storage/x", "apps.sandbox"},
        {h + "/snap/spotify/common/settings"},
        {h + "/Videos/CacheClip/clip.cache", "", "apps.media"},
        {h + "/Videos/holiday.mp4"},
        {h + "/.cache/pip", "/http/wheel", "dev.packages"},
        {h + "/.cache/yarn", "/v6/npm-left-pad", "dev.packages"},
        {h + "/.cache/go-build", "/00/0a-d", "dev.packages"},
        {h + "/.local/share/pnpm/store", "/v3/files/00/a", "dev.packages"},
        {h + "/go/pkg/mod", "/cache/download/x.zip", "dev.stores"},
        {h + "/.cache/thumbnails", "/large/a.png", "dev.stores"},
        {h + "/.cache/Veltro/qmlcache/a.qmlc"},
        {h + "/.cache/qtshadercache/abc"},
        {h + "/.local/share/Trash/files/old letter.txt", "", "user.trash"},
        {h + "/.local/share/Trash/info/old letter.txt.trashinfo"},
        {"/mnt/usb" + mountTrash + "/photo.jpg", "", "user.trash"},
        {"/media/someone/disk" + mountTrash + "/a.iso", "", "user.trash"},
        {"/tmp/x", "", "user.temp", 4},
        {"/tmp/y", "", "", 4, unprivilegedUid()},
        {"/tmp/fresh", "", "", 1},
        {"/var/tmp/kept-a-week", "", "user.temp", 7},
        {h + "/.xsession-errors.old", "", "user.logs"},
        {h + "/.xsession-errors"},
        {h + "/.local/share/xorg/Xorg.0.log.old", "", "user.logs"},
        {h + "/.local/share/xorg/Xorg.0.log"},
        {"/var/cache/apt/pkgcache.bin", "", "system.caches"},
        {"/var/cache/man", "/index.db", "system.caches"},
        {"/var/cache/debconf/config.dat"},
        {"/var/log/syslog.2.gz", "", "system.logs"},
        {"/var/log/syslog.1", "", "system.logs"},
        {"/var/log/apt/history.log.1.gz", "", "system.logs"},
        {"/var/log/syslog"},
        {"/var/cache/apt/archives/vim_9.0_amd64.deb", "", "system.updates"},
        {"/var/cache/apt/archives/lock"},
        {h + "/Documents/report.odt"},
    };
    std::map<std::string, std::string> expected;
    for (const Entry& entry : desktop) {
        put(entry.path + entry.below, entry.daysOld, entry.owner);
        if (!entry.category.empty())
            expected[entry.path] = entry.category;
    }

    const std::vector<ScanItem> items = JunkScanner::scan(ScanOptions{int64_t{1} << 50, {}, true}, {});

    EXPECT_EQ(offeredPaths(items), expected);

    // The folders each category searched, Linux places among them.
    SearchedPlaces::PerCategory searched = SearchedPlaces::of(ScanOptions{0, {}, true});
    for (const auto& [category, folder] : std::vector<std::pair<std::string, std::string>>{
             {"user.temp", "/tmp"},
             {"system.logs", "/var/log/apt"},
             {"apps.sandbox", h + "/.var/app/org.gimp.GIMP/cache"}})
        EXPECT_EQ(std::count(searched[category].begin(), searched[category].end(), folder), 1) << folder;
    EXPECT_EQ(std::count(searched["user.trash"].begin(), searched["user.trash"].end(), h + "/.Trash"), 0);
}

// With HOME reached through a link, found paths carry the resolved spelling: the
// home's protected folders are protected under it too, even when the temporary
// folder is the home itself and offers its entries.
TEST_F(LinuxDesktop, HomeThroughALinkKeepsItsFoldersUnderTheResolvedSpelling) {
    const std::string real = "/tmp/disks/home/someone";
    std::filesystem::create_directories(real);
    std::filesystem::create_directory_symlink("/tmp/disks/home", "/tmp/home");
    ::setenv("TMPDIR", "/tmp/home/someone", 1);
    if (!useHome("/tmp/home/someone", "/tmp/home/someone"))
        GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
    const std::vector<std::string> guarded{"Documents", "Downloads", "Library", ".cache", ".config",
                                           ".local",    ".var",      "snap",    "Videos", "Templates"};
    for (const std::string& folder : guarded) {
        put(real + "/" + folder + "/keep", 30);
        age(real + "/" + folder, 30);
    }
    put(real + "/old-project/main.c", 30);
    age(real + "/old-project", 30);

    const std::vector<ScanItem> items = JunkScanner::scan(ScanOptions{int64_t{1} << 50, {}, false}, {});

    const std::map<std::string, std::string> offered = offeredPaths(items);
    const auto project = offered.find(real + "/old-project");
    ASSERT_NE(project, offered.end());
    EXPECT_EQ(project->second, "user.temp");
    // Neither offered nor removable (a refused path never reaches any removal).
    for (const std::string& folder : guarded) {
        const std::string resolved = real + "/" + folder;
        EXPECT_FALSE(offered.contains(resolved)) << resolved;
        EXPECT_TRUE(Cleaner::isRefusedPath(resolved)) << resolved;
    }
    EXPECT_TRUE(ProtectedPaths::contains(real));
}

// Only the Linux places follow the XDG folders (a relative value means the default);
// the rule table's "~/.cache" stays where it is. The download folder is the one the
// user's settings name.
TEST_F(LinuxDesktop, LinuxPlacesFollowTheXdgFoldersAndTheDownloadFolder) {
    const std::string h = "/tmp/xdg-home", cache = h + "/cache [1]", data = h + "/data";
    ::setenv("XDG_CACHE_HOME", cache.c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", "relative/config", 1);
    ::setenv("XDG_DATA_HOME", data.c_str(), 1);
    if (!useHome(h, "/tmp"))
        GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
    std::filesystem::create_directories(h + "/.config");
    std::ofstream(h + "/.config/user-dirs.dirs") << "XDG_DOWNLOAD_DIR=\"$HOME/T\u00e9l\u00e9chargements\"\n";
    const std::map<std::string, std::string> expected{
        {cache + "/pip", "dev.packages"},
        {h + "/.cache/pip", "dev.stores"},
        {h + "/.config/Code/Cache", "apps.electron"},
        {data + "/Trash/files/old", "user.trash"},
        {h + "/T\u00e9l\u00e9chargements/old.iso", "user.downloads"}};
    for (const auto& [path, category] : expected)
        put(path + (category == "user.trash" || category == "user.downloads" ? "" : "/blob"), 100);
    put(h + "/.local/share/Trash/files/elsewhere");
    put(h + "/T\u00e9l\u00e9chargements/new.iso");

    EXPECT_EQ(offeredPaths(JunkScanner::scan(ScanOptions{int64_t{1} << 50, {}, true}, {})), expected);
    for (const LargeFile& hit : JunkScanner::largeFiles(ScanOptions{0, {}, true}, Claims{}))
        EXPECT_FALSE(hit.path.starts_with(data + "/Trash/")) << hit.path;
}
