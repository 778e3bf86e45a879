#include "removal/Cleaner.h"

#include "CleanerFixtures.h"
#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "platform/Trash.h"
#include "support/OpenGate.h"

#include <gtest/gtest.h>

#include <thread>
#include <unistd.h>
#include <utility>

namespace {

const std::string protectedReason = "Protected system folder — skipped for safety";

using ProgressLog = std::vector<std::pair<double, std::string>>;

Cleaner::Progress recordInto(ProgressLog& log) {
    return [&log](double fraction, const std::string& text) { log.emplace_back(fraction, text); };
}

class CleanerTest : public CleanerHomeTest {};

} // namespace

TEST_F(CleanerTest, SafetyCheckRefusesProtectedShallowAndMalformedPaths) {
    // The root counts as one component: /a/b has three and is refused, /a/b/c is allowed.
    for (const char* path : {"/", "/usr", "/Library/Caches", "/private/var/log", "/a/b", "/a/b/", "/a//b",
                             "/a/b/c/..", "/a/b/c/d/../../../../..", "a/b/c/d", "", ".", "/tmp", "/var/tmp/.",
                             "~", "~/Documents", "~/Library/Caches/"})
        EXPECT_TRUE(Cleaner::isRefusedPath(path)) << path;
    for (const std::string& path :
         {std::string("/a/b/c/d\0/e", 11), home.home() + "/Library/Caches/../../Documents",
          home.home() + "/./.Trash"})
        EXPECT_TRUE(Cleaner::isRefusedPath(path)) << path;
    // Entries directly in the shared temporary folders are shallow but allowed.
    for (const char* path : {"/a/b/c", "/usr/local/share", "/a/b/c/d/../e", "/Library/Caches/com.x", "/tmp/x",
                             "/var/tmp/old", "~/Library/Caches/app"})
        EXPECT_FALSE(Cleaner::isRefusedPath(path)) << path;
    // The same protected folder reached through a link in the parent chain.
    ASSERT_EQ(::symlink(home.home().c_str(), (area + "/to-home").c_str()), 0);
    EXPECT_TRUE(Cleaner::isRefusedPath(area + "/to-home/Documents"));
    EXPECT_FALSE(Cleaner::isRefusedPath(area + "/to-home/Documents/letter"));
}

TEST_F(CleanerTest, ProtectedAndShallowPathsNeverReachAnyRemoval) {
    const std::string documents = home.makeFile("Documents/letter.txt", "dear");
    const std::string legit = areaFile("legit", "l");
    const std::vector<ScanItem> items = {
        pathItem(home.home(), RemovalMethod::trash()),
        pathItem(home.home() + "/Documents", RemovalMethod::permanent()),
        pathItem(home.home() + "/.Trash", RemovalMethod::adminTrash()),
        pathItem("/veltro-absent-folder/item", RemovalMethod::trash()),
        pathItem("/veltro-absent-folder/item", RemovalMethod::adminTrash()),
        pathItem(legit, RemovalMethod::adminTrash()),
    };
    AuthorizationToolRecorder recorder{answering({0, "", ""})};
    const CleanResult result = Cleaner::clean(items);

    ASSERT_EQ(result.failures.size(), 6u) << ::testing::PrintToString(reasonsOf(result));
    for (size_t i = 0; i + 1 < items.size(); ++i) {
        EXPECT_EQ(result.failures[i].item, items[i]);
        EXPECT_EQ(result.failures[i].reason, protectedReason) << items[i].id;
    }
    // Only the one legitimate item reached the batch, under the first key.
    ASSERT_EQ(recorder.calls().size(), 1u);
    EXPECT_EQ(itemLines(recorder.calls()[0].script),
              std::vector<std::string>{"mv_item " + shellQuote(legit) + " i0"});
    EXPECT_EQ(result.failures[5].item.id, legit);
    EXPECT_TRUE(result.succeeded.empty());
    EXPECT_EQ(readFile(documents), "dear");
}

TEST_F(CleanerTest, EachMethodMovesDeletesAndCountsItsBytes) {
    const std::string toTrash = areaFile("to-trash/inside", "trash me");
    const std::string toDelete = areaFile("to-delete/inside", "delete me");
    const std::string unknownSize = areaFile("unknown-size", "?");
    ScanItem trashWithoutPath = pathItem(area + "/nothing", RemovalMethod::trash(), 1000);
    trashWithoutPath.url.reset();
    ScanItem permanentWithoutPath = pathItem(area + "/nothing", RemovalMethod::permanent(), 1000);
    permanentWithoutPath.url.reset();
    const ScanItem missing = pathItem(area + "/missing", RemovalMethod::trash(), 1000);
    // Non-canonical spellings are acted on in the standardized form that was judged.
    const std::string spelled = areaFile("spelled", "s");
    const std::string tilde = areaFile("tilde", "t");
    const std::string spelledURL = area + "//./spelled/";
    const std::string tildeURL = "~" + tilde.substr(home.home().size());

    AuthorizationToolRecorder recorder{answering({0, "", ""})};
    const CleanResult result = Cleaner::clean({
        pathItem(Paths::parentFolder(toTrash), RemovalMethod::trash(), 100),
        trashWithoutPath,
        pathItem(Paths::parentFolder(toDelete), RemovalMethod::permanent(), 200),
        permanentWithoutPath,
        pathItem(unknownSize, RemovalMethod::trash()),
        missing,
        pathItem(spelledURL, RemovalMethod::permanent(), 1),
        pathItem(tildeURL, RemovalMethod::trash(), 2),
    });

    EXPECT_TRUE(recorder.calls().empty());
    ASSERT_EQ(result.succeeded.size(), 5u) << ::testing::PrintToString(reasonsOf(result));
    EXPECT_EQ(result.succeeded[0].name, "to-trash");
    EXPECT_EQ(result.succeeded[1].name, "to-delete");
    EXPECT_EQ(result.succeeded[2].name, "unknown-size");
    EXPECT_EQ(result.succeeded[3].url, spelledURL);
    EXPECT_EQ(result.succeeded[4].url, tildeURL);
    EXPECT_FALSE(exists(spelled));
    EXPECT_FALSE(exists(tilde));
    EXPECT_EQ(result.movedToTrashBytes, 100 + 2);
    EXPECT_EQ(result.deletedBytes, 200 + 1);
    ASSERT_EQ(result.trashedURLs.size(), 3u);
    EXPECT_EQ(readFile(result.trashedURLs[2]), "t");
    EXPECT_EQ(result.trashedURLs[0], Trash::homeTrashFolder() + "/files/to-trash");
    EXPECT_EQ(readFile(result.trashedURLs[0] + "/inside"), "trash me");
    EXPECT_EQ(readFile(result.trashedURLs[1]), "?");
    EXPECT_FALSE(exists(Paths::parentFolder(toTrash)));
    EXPECT_FALSE(exists(Paths::parentFolder(toDelete)));
    // Items without a path leave no trace; a vanished item fails with the system's words.
    ASSERT_EQ(result.failures.size(), 1u);
    EXPECT_EQ(result.failures[0].item, missing);
    EXPECT_EQ(result.failures[0].reason, "No such file or directory");
}

TEST_F(CleanerTest, CommandsReportTheirTrimmedErrorOrExitStatus) {
    const std::string marker = area + "/ran";
    std::string multibyte = "printf '\\n\\t  ";
    multibyte += std::string(299, 'a') + "\xC3\xA9\xC3\xBC  \\n' >&2; exit 1";
    const CleanResult result = Cleaner::clean({
        commandItem("cmd.ok", "touch " + shellQuote(marker), false),
        commandItem("cmd.exit", "exit 2", false),
        commandItem("cmd.trim", "printf '\\n\\t boom  \\r\\n' >&2; exit 5", false),
        commandItem("cmd.utf8", multibyte, false),
    });
    ASSERT_EQ(result.succeeded.size(), 1u);
    EXPECT_EQ(result.succeeded[0].id, "cmd.ok");
    EXPECT_TRUE(exists(marker));
    EXPECT_EQ(result.movedToTrashBytes, 0);
    EXPECT_EQ(result.deletedBytes, 0);
    ASSERT_EQ(result.failures.size(), 3u);
    EXPECT_EQ(result.failures[0].reason, "exit 2");
    EXPECT_EQ(result.failures[1].reason, "boom");
    EXPECT_EQ(result.failures[2].reason, std::string(299, 'a') + "\xC3\xA9");
}

TEST_F(CleanerTest, ProgressNamesItemsThenThePasswordWaitThenDoneEvenForAnEmptyList) {
    const std::string a = areaFile("alpha", "a");
    const std::string b = areaFile("beta", "bb");
    const std::string c = areaFile("gamma", "ccc");
    AuthorizationToolRecorder recorder{answering({0, "DEST|Veltro-20250114-093015\nOK|i0\n", ""})};
    ProgressLog progress;
    const CleanResult result =
        Cleaner::clean({pathItem(a, RemovalMethod::trash(), 1), pathItem(b, RemovalMethod::trash(), 2),
                        pathItem(c, RemovalMethod::permanent(), 3),
                        pathItem(area + "/system thing", RemovalMethod::adminTrash(), 4)},
                       recordInto(progress));
    const ProgressLog expected = {{0.0, "alpha"},
                                  {0.25, "beta"},
                                  {0.5, "gamma"},
                                  {0.75, "system thing"},
                                  {0.95, "Waiting for administrator password…"},
                                  {1.0, "Done"}};
    EXPECT_EQ(progress, expected);
    ASSERT_EQ(recorder.calls().size(), 1u);
    EXPECT_EQ(result.succeeded.size(), 4u);
    EXPECT_EQ(result.movedToTrashBytes, 1 + 2 + 4);
    EXPECT_EQ(result.deletedBytes, 3);
    // Two moves of its own, then the batch's dated folder once.
    ASSERT_EQ(result.trashedURLs.size(), 3u);
    EXPECT_EQ(result.trashedURLs[2], home.path(".local/share/Trash/files/Veltro-20250114-093015"));

    // Without administrator work there is no password step; an empty list is only done.
    progress.clear();
    Cleaner::clean({pathItem(area + "/absent", RemovalMethod::trash())}, recordInto(progress));
    EXPECT_EQ(progress, (ProgressLog{{0.0, "absent"}, {1.0, "Done"}}));
    progress.clear();
    const CleanResult none = Cleaner::clean({}, recordInto(progress));
    EXPECT_EQ(progress, (ProgressLog{{1.0, "Done"}}));
    EXPECT_TRUE(none.succeeded.empty() && none.failures.empty() && none.trashedURLs.empty());
    EXPECT_GT(none.freeBefore, 0);
    EXPECT_GT(none.freeAfter, 0);
    EXPECT_EQ(recorder.calls().size(), 1u);
}

// Inside any trash folder, and only there; a trashed item's info file goes with it.
TEST_F(CleanerTest, PurgeDeletesOnlyInsideTrashFoldersWithTheirInfoFiles) {
    const std::string trash = Trash::homeTrashFolder().substr(home.home().size() + 1);
    const std::string mountTrash = "Volume/.Trash-" + std::to_string(::getuid());
    const std::string othersTrash =
        home.makeFile("Volume/.Trash-" + std::to_string(::getuid() + 1) + "/files/x");
    std::vector<std::string> trashed;
    for (const std::string& folder : {trash, mountTrash}) {
        trashed.push_back(home.makeFile(folder + "/files/old/inside", "old"));
        home.makeFile(folder + "/info/old.trashinfo", "[Trash Info]\n");
    }
    const std::string outside = areaFile("outside", "stay");
    const std::string inTrash = home.makeFile(".Trash/old", "old");
    const std::string inTrashes = home.makeFile("Volume/.Trashes/0/older", "older");
    const std::string documents = home.makeFile("Documents/keep", "keep");
    const std::string trashKeep = home.makeFile(trash + "/files/keep", "keep");
    const std::string infoKeep = home.makeFile(trash + "/info/keep.trashinfo", "[Trash Info]\n");

    const Cleaner::PurgeResult result = Cleaner::purge({
        outside,
        Paths::parentFolder(trashed[0]),
        Paths::parentFolder(trashed[1]),
        inTrash,
        inTrashes,
        home.home() + "/.Trash/../Documents",
        home.path(trash + "/files/../info/keep.trashinfo"),
        home.path(trash + "/files/"),
        home.path(trash + "/files/absent"),
        othersTrash,
    });
    EXPECT_EQ(result.failed, 6);
    EXPECT_GE(result.freed, 0);
    for (const std::string& gone :
         {Paths::parentFolder(trashed[0]), Paths::parentFolder(trashed[1]), inTrash, inTrashes,
          home.path(trash + "/info/old.trashinfo"), home.path(mountTrash + "/info/old.trashinfo")})
        EXPECT_FALSE(exists(gone)) << gone;
    for (const std::string& kept : {outside, documents, trashKeep, infoKeep, othersTrash})
        EXPECT_TRUE(exists(kept)) << kept;
}

// Free space is shared with everything else on the volume: when it shrinks while
// the purge runs, nothing was freed, and the figure never turns negative.
TEST_F(CleanerTest, PurgeNeverReportsNegativeFreedSpace) {
    const std::string bulky = Paths::parentFolder(home.makeFile(".Trash/bulky/f", "x"));
    Cleaner::PurgeResult result;
    std::thread purge;
    bool held = false;
    {
        OpenGate gate(bulky);
        if (!gate.armed)
            GTEST_SKIP() << "fanotify permission events are not available here";
        purge = std::thread([&] { result = Cleaner::purge({bulky}); });
        held = gate.awaitOpener() > 0;
        // Half a gigabyte taken while the purge is held in the folder it deletes.
        home.tree().makeFileOfSize(area + "/filler", int64_t{512} << 20);
        gate.release();
    } // the gate closed lets any later look through
    purge.join();
    ASSERT_TRUE(held) << "the purge never opened the folder";
    EXPECT_EQ(result.failed, 0);
    EXPECT_FALSE(exists(bulky));
    EXPECT_EQ(result.freed, 0);
}
