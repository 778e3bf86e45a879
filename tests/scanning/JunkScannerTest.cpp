#include "ScanRecorder.h"

#include "catalogue/CleanupRules.h"
#include "catalogue/LinuxCommands.h"
#include "platform/Date.h"
#include "platform/Environment.h"
#include "removal/Shell.h"
#include "support/FakeHome.h"
#include "support/SnapshotStandIn.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <set>
#include <sys/stat.h>

namespace {

constexpr int64_t day = 86'400;

std::string categoryOf(const RecordedScan& scan, const std::string& id) {
    const ScanItem* found = scan.item(id);
    return found ? found->categoryID : "(none)";
}

} // namespace

// The first rule in table order that reaches a path owns it; a later rule naming an
// ancestor splits around it and gets every other entry, without the name filters of
// a children source. Protected folders and the Finder's files are nobody's, and the
// places of rules that need Full Disk Access are nobody's without it.
TEST(JunkScanner, EachPathGoesToTheFirstRuleThatReachesIt) {
    FakeHome home;
    for (const char* file :
         {"Library/Caches/Google/Chrome/data", "Library/Caches/Homebrew/downloads/pkg.tar",
          "Library/Caches/pip/http/wheel", "Library/Caches/Yarn/v6/package",
          "Library/Caches/com.example.app/db", "Library/Caches/.DS_Store",
          "Library/Caches/app.veltro.Veltro/db", "Library/Caches/app.veltro.cleaner/db",
          "Library/Logs/DiagnosticReports/app.crash", "Library/Logs/DiagnosticReports/.DS_Store",
          "Library/Logs/CoreSimulator/device/system.log", "Library/Logs/app.log",
          "Library/Containers/com.example.notes/Data/Library/Caches/web/blob",
          "Library/Containers/com.apple.mail/Data/Library/Mail Downloads/report.pdf"})
        home.makeFile(file, file);
    const std::string sandboxCache =
        home.path("Library/Containers/com.example.notes/Data/Library/Caches/web");
    const std::string attachment =
        home.path("Library/Containers/com.apple.mail/Data/Library/Mail Downloads/report.pdf");

    const RecordedScan scan = recordScan(quietOptions());

    const std::pair<const char*, const char*> owners[] = {
        {"Library/Caches/Google", "apps.browsers"},
        {"Library/Caches/Homebrew", "dev.packages"},
        {"Library/Caches/pip", "dev.packages"},
        {"Library/Caches/Yarn", "dev.packages"},
        {"Library/Caches/com.example.app", "user.caches"},
        {"Library/Caches/app.veltro.Veltro", "(none)"}, // this application's own, now and earlier
        {"Library/Caches/app.veltro.cleaner", "(none)"},
        {"Library/Caches", "(none)"},
        {"Library/Caches/.DS_Store", "(none)"},
        {"Library/Logs/DiagnosticReports/app.crash", "user.logs"},
        {"Library/Logs/DiagnosticReports/.DS_Store", "user.logs"},
        {"Library/Logs/CoreSimulator/device", "dev.devicesupport"},
        {"Library/Logs/app.log", "user.logs"},
        {"Library/Logs/DiagnosticReports", "(none)"},
        {"Library/Logs/CoreSimulator", "(none)"},
    };
    for (const auto& [path, category] : owners)
        EXPECT_EQ(categoryOf(scan, home.path(path)), category) << path;
    EXPECT_EQ(categoryOf(scan, sandboxCache), "(none)");
    EXPECT_EQ(categoryOf(scan, attachment), "(none)");
    std::set<std::string> ids;
    for (const ScanItem& item : scan.items)
        EXPECT_TRUE(ids.insert(item.id).second) << item.id << " offered twice";

    const RecordedScan withAccess = recordScan(quietOptions(true));
    EXPECT_EQ(categoryOf(withAccess, sandboxCache), "apps.sandbox");
    EXPECT_EQ(categoryOf(withAccess, attachment), "user.mail");
}

TEST(JunkScanner, SplittingStopsFourLevelsDown) {
    FakeHome home;
    // With the temporary folder deep inside the user caches, the temporary files rule
    // (earlier in the table) claims its old entries, and the user caches rule has to
    // split its way down around them.
    const std::string tmp = home.makeDir("Library/Caches/a/b/c/d/tmp");
    ::setenv("TMPDIR", tmp.c_str(), 1);
    home.makeFile("Library/Caches/a/s1", "1");
    home.makeFile("Library/Caches/a/b/s2", "2");
    home.makeFile("Library/Caches/a/b/c/s3", "3");
    home.makeFile("Library/Caches/a/b/c/d/s4", "4");
    const std::string old = home.makeFile("Library/Caches/a/b/c/d/tmp/old", "old");
    home.makeFile("Library/Caches/a/b/c/d/tmp/new", "new");
    setModificationTime(old, std::time(nullptr) - 10 * day);

    const RecordedScan scan = recordScan(quietOptions());

    ASSERT_EQ(Environment::temporaryFolder(), tmp);
    EXPECT_EQ(categoryOf(scan, old), "user.temp");
    const std::vector<std::string> caches = scan.idsIn("user.caches");
    const std::set<std::string> offered(caches.begin(), caches.end());
    EXPECT_EQ(offered, (std::set<std::string>{
                           home.path("Library/Caches/a/s1"), home.path("Library/Caches/a/b/s2"),
                           home.path("Library/Caches/a/b/c/s3"), home.path("Library/Caches/a/b/c/d/s4")}));
    // The temporary folder is four levels below "a": it is not split again, so its
    // newer entry is nobody's.
    EXPECT_EQ(scan.item(home.path("Library/Caches/a/b/c/d/tmp/new")), nullptr);
    EXPECT_EQ(scan.item(tmp), nullptr);
}

TEST(JunkScanner, AgeCutoffKeepsTheCutoffItselfAndDropsNewerEntries) {
    FakeHome home;
    const std::string atCutoff = home.makeFile("Downloads/at-cutoff.zip", "a");
    const std::string secondNewer = home.makeFile("Downloads/second-newer.zip", "b");
    const std::string minuteNewer = home.makeFile("Downloads/minute-newer.zip", "c");
    const std::string ancient = home.makeFile("Downloads/ancient.zip", "d");

    // The scan takes its own "now" a moment later than this one, which moves its
    // cutoff later too: the entry dated exactly at this cutoff is at or before the
    // scan's cutoff, and the one a second newer is after it as long as the scan
    // reaches the rule within the same second. Both readings come from the scan's own
    // clock: time() reads a coarser one that can still show the previous second.
    const auto secondsNow = [] {
        return std::chrono::floor<std::chrono::seconds>(Dates::now()).time_since_epoch().count();
    };
    const int64_t now = secondsNow();
    const int64_t cutoff = now - 90 * day;
    setModificationTime(atCutoff, cutoff);
    setModificationTime(secondNewer, cutoff + 1);
    setModificationTime(minuteNewer, cutoff + 60);
    setModificationTime(ancient, cutoff - 400 * day);

    const RecordedScan scan = recordScan(quietOptions());
    const bool sameSecond = secondsNow() == now;

    EXPECT_EQ(categoryOf(scan, atCutoff), "user.downloads");
    EXPECT_EQ(categoryOf(scan, ancient), "user.downloads");
    EXPECT_EQ(scan.item(minuteNewer), nullptr);
    if (sameSecond) {
        EXPECT_EQ(scan.item(secondNewer), nullptr);
    }
    const ScanItem* kept = scan.item(atCutoff);
    ASSERT_NE(kept, nullptr);
    EXPECT_EQ(kept->modified, Date{std::chrono::seconds{cutoff}});
}

// Commands Linux has its own form of run in that form, offered where its tool is
// installed; the others run as written where theirs is.
TEST(JunkScanner, CommandSourcesFollowTheirToolAndProbe) {
    FakeHome home;
    ASSERT_NE(Shell::run("command -v xcrun", 10).status, 0) << "this machine has a real xcrun";
    home.makeFile("Library/Caches/Homebrew/downloads/pkg.tar", "bottle");
    home.installTool("brew", "exit 0");
    // Snapshots are counted by a Linux tool, here a stand-in Snapper.
    home.installTool("snapper", snapperWithSnapshots(3));
    RecordedScan scan = recordScan(quietOptions());
    // No xcrun: the simulator clean-up is not offered.
    EXPECT_EQ(scan.item("cmd.simctl"), nullptr);
    const ScanItem* snapshots = scan.item("cmd.tmutil");
    ASSERT_NE(snapshots, nullptr);
    const Source::Command& source = std::get<Source::Command>(CleanupRules::rules()[20].sources[0].value);
    const LinuxCommandStep& deletion = LinuxCommands::find(source.shell)->steps.front();
    EXPECT_EQ(*snapshots, (ScanItem{"cmd.tmutil", "system.snapshots",
                                    "Delete all Time Machine local snapshots", std::nullopt, std::nullopt,
                                    std::nullopt, RemovalMethod::makeCommand(deletion.shell, true),
                                    "3 snapshots found (actual size is unknown until deleted)"}));
    // A tool without a probe is offered with its note unchanged (none), before the
    // measured items of its category.
    ASSERT_NE(scan.item("cmd.brew"), nullptr);
    EXPECT_EQ(scan.idsIn("dev.packages").front(), "cmd.brew");
    EXPECT_EQ(scan.item("cmd.brew")->note, std::nullopt);

    // The probe counts nothing: number 0 is the running system, not a snapshot.
    home.installTool("snapper", snapperWithSnapshots(0));
    scan = recordScan(quietOptions());
    EXPECT_EQ(scan.item("cmd.tmutil"), nullptr);

    // The probe prints only white space (a grep that finds a blank line, here).
    home.installTool("snapper", snapperWithSnapshots(3));
    home.installTool("grep", "printf ' \\t\\r\\n\\n'");
    scan = recordScan(quietOptions());
    EXPECT_EQ(scan.item("cmd.tmutil"), nullptr);
    EXPECT_NE(scan.item("cmd.brew"), nullptr);
}

TEST(JunkScanner, UnreadableAdminFolderIsKeptWithoutSize) {
    FakeHome home;
    home.makeFile("Library/Caches/locked.cache/secret", "secret");
    home.makeDir("Library/Caches/empty.cache");
    home.makeFile("Library/Caches/open.cache/data", "data");
    // Neither the unprivileged child nor (when not root) this process may write the
    // Caches folder or read the locked folder.
    ASSERT_EQ(::chmod(home.path("Library/Caches/locked.cache").c_str(), 0), 0);
    ASSERT_EQ(::chmod(home.path("Library/Caches").c_str(), 0555), 0);

    const std::string lockedFolder = home.path("Library/Caches/locked.cache");
    const std::string openFolder = home.path("Library/Caches/open.cache");
    const std::string emptyFolder = home.path("Library/Caches/empty.cache");
    const int status = runUnprivileged([&] {
        const RecordedScan scan = recordScan(quietOptions());
        const ScanItem* unreadable = scan.item(lockedFolder);
        if (!unreadable)
            return 10;
        if (unreadable->size || unreadable->method != RemovalMethod::adminTrash() ||
            unreadable->note != "Size unreadable (needs administrator access)" ||
            unreadable->url != lockedFolder)
            return 11;
        const ScanItem* readable = scan.item(openFolder);
        if (!readable || readable->size != allocatedBytes(openFolder + "/data") ||
            readable->method != RemovalMethod::adminTrash() || readable->note)
            return 12;
        if (scan.item(emptyFolder))
            return 13;
        return 0;
    });
    ::chmod(home.path("Library/Caches").c_str(), 0755);
    ::chmod(lockedFolder.c_str(), 0755);
    EXPECT_EQ(status, 0);
}

TEST(JunkScanner, EventSequenceOfAFullScan) {
    FakeHome home;
    for (int i = 0; i < 25; ++i)
        home.makeFile("Library/Saved Application State/app" + std::to_string(i) + ".savedState/windows",
                      "state");
    home.makeFile(".Trash/old.txt", "trash");

    const RecordedScan scan = recordScan(ScanOptions{1'500'000, {}, false});

    EXPECT_FALSE(scan.overlappingEvents);
    const std::vector<CleanCategory>& categories = CleanupRules::categories();
    const int n = static_cast<int>(categories.size());
    ASSERT_FALSE(scan.events.empty());
    EXPECT_EQ(scan.events.front(), (ScanEvent{ScanEvent::Status{"Preparing scan\u2026"}}));

    size_t at = 1;
    std::vector<ScanItem> reported;
    std::vector<double> progress;
    for (int i = 0; i < n; ++i) {
        const CleanCategory& category = categories[static_cast<size_t>(i)];
        SCOPED_TRACE(category.id);
        ASSERT_LT(at + 3, scan.events.size());
        EXPECT_EQ(scan.events[at++], (ScanEvent{ScanEvent::CategoryStarted{category.id, i + 1, n}}));
        EXPECT_EQ(scan.events[at++], (ScanEvent{ScanEvent::Status{"Scanning " + category.title + "\u2026"}}));
        progress.push_back(static_cast<double>(i) / n);
        EXPECT_EQ(scan.events[at++], (ScanEvent{ScanEvent::Progress{progress.back()}}));
        if (category.group == CategoryGroup::large) {
            EXPECT_EQ(scan.events[at++],
                      (ScanEvent{ScanEvent::Status{"Searching for large files (\u2265 1.5 MB)\u2026"}}));
        }
        std::vector<double> steps;
        while (at < scan.events.size() && std::holds_alternative<ScanEvent::Progress>(scan.events[at].value))
            steps.push_back(std::get<ScanEvent::Progress>(scan.events[at++].value).value);
        progress.insert(progress.end(), steps.begin(), steps.end());
        if (category.id == "user.state") {
            // 25 measurements: progress after the 10th, the 20th and the last.
            EXPECT_EQ(steps, (std::vector<double>{(i + 10.0 / 25) / n, (i + 20.0 / 25) / n, (i + 1.0) / n}));
        }
        ASSERT_LT(at, scan.events.size());
        const auto* finished = std::get_if<ScanEvent::CategoryFinished>(&scan.events[at++].value);
        ASSERT_NE(finished, nullptr);
        EXPECT_EQ(finished->id, category.id);
        reported.insert(reported.end(), finished->items.begin(), finished->items.end());
    }
    ASSERT_EQ(at + 1, scan.events.size());
    EXPECT_EQ(scan.events.back(), (ScanEvent{ScanEvent::Progress{1.0}}));

    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(scan.items, reported);
}

// A stop during collection returns nothing; between categories, the finished ones;
// during a category's measurement, that category too, reported as finished with what
// the running measurements found, and nothing after it.
TEST(JunkScanner, AStopKeepsTheCategoriesItFinished) {
    FakeHome home;
    home.makeFile(".Trash/old.txt", "trash");
    for (int i = 0; i < 40; ++i)
        home.makeFile("Library/Saved Application State/app" + std::to_string(i) + ".savedState/windows",
                      "state");
    const std::vector<std::string> trashed{home.path(".Trash/old.txt")};

    RecordedScan scan =
        recordScan(quietOptions(), [](const ScanEvent&, std::stop_source& stop) { stop.request_stop(); });
    EXPECT_TRUE(scan.items.empty());
    EXPECT_EQ(scan.events, (std::vector<ScanEvent>{ScanEvent{ScanEvent::Status{"Preparing scan\u2026"}}}));

    const std::string secondID = CleanupRules::categories()[1].id;
    scan = recordScan(quietOptions(), [&](const ScanEvent& event, std::stop_source& stop) {
        if (const auto* finished = std::get_if<ScanEvent::CategoryFinished>(&event.value);
            finished && finished->id == secondID)
            stop.request_stop();
    });
    ASSERT_EQ(scan.idsIn("user.trash"), trashed);
    ASSERT_NE(scan.finished("user.trash"), nullptr);
    EXPECT_EQ(scan.items, scan.finished("user.trash")->items);
    EXPECT_EQ(scan.items.front().method, RemovalMethod::permanent());
    EXPECT_TRUE(std::holds_alternative<ScanEvent::CategoryFinished>(scan.events.back().value));
    EXPECT_EQ(scan.finished("user.state"), nullptr);

    // The category's first progress event is its start; the second comes after its
    // 10th measurement.
    bool inState = false;
    int progressInState = 0;
    scan = recordScan(quietOptions(), [&](const ScanEvent& event, std::stop_source& stop) {
        if (const auto* started = std::get_if<ScanEvent::CategoryStarted>(&event.value))
            inState = started->id == "user.state";
        else if (inState && std::holds_alternative<ScanEvent::Progress>(event.value) &&
                 ++progressInState == 2)
            stop.request_stop();
    });
    ASSERT_EQ(progressInState, 2);
    EXPECT_EQ(scan.idsIn("user.trash"), trashed);
    // What the measurements kept (the measurement's own test counts them) is reported
    // as the category's result, and is the last event.
    const ScanEvent::CategoryFinished* finished = scan.finished("user.state");
    ASSERT_NE(finished, nullptr);
    EXPECT_FALSE(finished->items.empty());
    EXPECT_EQ(scan.idsIn("user.state").size(), finished->items.size());
    EXPECT_EQ(&std::get<ScanEvent::CategoryFinished>(scan.events.back().value), finished);
}
