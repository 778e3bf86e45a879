// Hostile trees: whatever the names and whatever changed between scan and clean,
// nothing outside the chosen items may change.

#include "removal/Cleaner.h"

#include "CleanerFixtures.h"
#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "platform/Trash.h"
#include "support/DeepTree.h"
#include "support/HostileNames.h"
#include "support/TrashRestore.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <future>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string sipReason = "Protected by macOS (SIP) or currently in use";

class CleanerHostileTest : public CleanerHomeTest {
protected:
    // Everything in the fake home's tree except the items, the Trash folders the
    // items go to (and the folders made for them) and the temporary folder.
    TreeSnapshot snapshotOutside(const std::vector<std::string>& items) const {
        std::set<std::string> excluded(items.begin(), items.end());
        excluded.insert({home.home() + "/.Trash", Trash::homeTrashFolder(), home.tmp()});
        return snapshotTree(home.tree().root(), excluded);
    }

    // One folder per name, holding a file whose content is the name, so a moved item
    // can be recognised whatever name it ends up with.
    std::vector<std::string> makeNamedItems(const std::string& folder) const {
        std::vector<std::string> paths;
        for (const std::string& name : hostileNames()) {
            const std::string path = areaDir(folder + "/" + name);
            areaFile(folder + "/" + name + "/content", name);
            paths.push_back(path);
        }
        return paths;
    }

    bool injectionRan() const {
        char cwd[4096];
        const std::string here = ::getcwd(cwd, sizeof cwd) ? cwd : ".";
        for (const std::string& folder : {here, home.home(), home.tmp(), area, std::string("/")})
            if (exists(folder + "/" + kInjectionMarker))
                return true;
        return false;
    }

    // The names recorded in the "content" file of every entry of `folder`.
    static std::multiset<std::string> contentsIn(const std::string& folder) {
        std::multiset<std::string> contents;
        for (const std::string& name : entriesOf(folder))
            contents.insert(readFile(folder + "/" + name + "/content"));
        return contents;
    }
};

std::multiset<std::string> allNames() {
    const std::vector<std::string> names = hostileNames();
    return {names.begin(), names.end()};
}

// Runs `body` on another thread and gives up on the whole process when it does not
// finish in time: a clean that blocks on a FIFO must fail the test, not hang it.
template <typename Body> auto finishing(Body body) {
    auto future = std::async(std::launch::async, body);
    if (future.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
        std::fprintf(stderr, "clean did not finish within 60 s\n");
        std::_Exit(3);
    }
    return future.get();
}

// Cleans four items each its own way: to the Trash, deleted, moved by the
// administrator batch, and deleted by it.
CleanResult cleanEachWay(const std::vector<std::string>& items) {
    return finishing([&] {
        CleanResult cleaned = Cleaner::clean({pathItem(items[0], RemovalMethod::trash()),
                                              pathItem(items[1], RemovalMethod::permanent()),
                                              pathItem(items[2], RemovalMethod::adminTrash())});
        Cleaner::runPrivileged({{pathItem(items[3], RemovalMethod::permanent()), true}}, cleaned);
        return cleaned;
    });
}

} // namespace

// Every hostile name is trashed and deleted by the cleaner itself, and moved and deleted
// by the administrator batch beside a command full of quotes, exactly; the desktop puts
// each trashed one back at its place from its info file alone.
TEST_F(CleanerHostileTest, HostileNamesAreTrashedDeletedAndBatchedExactly) {
    const std::vector<std::vector<std::string>> groups = {makeNamedItems("trash"), makeNamedItems("delete"),
                                                          makeNamedItems("move"),
                                                          makeNamedItems("batch-delete")};
    const std::string commandOutput = area + "/command's output";
    std::vector<ScanItem> items;
    std::vector<Cleaner::PrivilegedWork> work;
    std::vector<std::string> paths;
    for (size_t i = 0; i < groups[0].size(); ++i) {
        items.push_back(pathItem(groups[0][i], RemovalMethod::trash(), 4096));
        items.push_back(pathItem(groups[1][i], RemovalMethod::permanent(), 4096));
        work.push_back({pathItem(groups[2][i], RemovalMethod::adminTrash(), 1), false});
        work.push_back({pathItem(groups[3][i], RemovalMethod::permanent(), 2), true});
        for (const std::vector<std::string>& group : groups)
            paths.push_back(group[i]);
    }
    work.push_back(
        {commandItem("cmd.quote", "printf '%s' \"it's \\$HOME\" > " + shellQuote(commandOutput), true),
         false});
    std::vector<std::string> changed = paths;
    changed.push_back(commandOutput);
    const auto before = snapshotOutside(changed);

    AuthorizationToolRecorder recorder{realScriptRunner()};
    const CleanResult cleaned = Cleaner::clean(items);
    EXPECT_TRUE(recorder.calls().empty());
    CleanResult batched;
    Cleaner::runPrivileged(work, batched);

    ASSERT_EQ(recorder.calls().size(), 1u);
    EXPECT_TRUE(cleaned.failures.empty()) << ::testing::PrintToString(reasonsOf(cleaned));
    EXPECT_TRUE(batched.failures.empty()) << ::testing::PrintToString(reasonsOf(batched));
    EXPECT_EQ(cleaned.succeeded.size(), items.size());
    EXPECT_EQ(batched.succeeded.size(), work.size());
    ASSERT_EQ(batched.trashedURLs.size(), 1u);
    EXPECT_EQ(contentsIn(batched.trashedURLs[0]), allNames());
    EXPECT_EQ(batched.movedToTrashBytes, static_cast<int64_t>(groups[2].size()));
    EXPECT_EQ(batched.deletedBytes, static_cast<int64_t>(2 * groups[3].size()));
    for (const std::string& path : paths)
        EXPECT_FALSE(exists(path)) << path;
    EXPECT_EQ(readFile(commandOutput), "it's $HOME");
    EXPECT_EQ(describeDifferences(before, snapshotOutside(changed)), "");
    EXPECT_FALSE(injectionRan());

    std::set<std::string> restored;
    for (const std::string& location : cleaned.trashedURLs) {
        const Restored back = restoreFromTrash(location);
        EXPECT_EQ(readFile(back.original + "/content"), Paths::lastComponent(back.original)) << back.problem;
        restored.insert(back.original);
    }
    EXPECT_EQ(restored, std::set<std::string>(groups[0].begin(), groups[0].end()));
    // Only the batch's dated folder is left in the Trash.
    EXPECT_EQ(entriesOf(Trash::homeTrashFolder() + "/info"),
              std::vector<std::string>{Paths::lastComponent(batched.trashedURLs[0]) + ".trashinfo"});
}

TEST_F(CleanerHostileTest, ItemSwappedForALinkLosesOnlyTheLink) {
    const std::string victim = home.tree().makeDir("victim");
    home.tree().makeFile("victim/precious", "precious");
    home.tree().makeFile("victim/sub/deeper", "deeper");
    std::vector<std::string> items;
    for (const char* name : {"by-trash", "by-delete", "by-admin-move", "by-admin-delete"})
        items.push_back(home.tree().makeSymlink(area + "/" + name, victim));
    const auto before = snapshotOutside(items);

    AuthorizationToolRecorder recorder{realScriptRunner()};
    const CleanResult result = cleanEachWay(items);

    EXPECT_TRUE(result.failures.empty()) << ::testing::PrintToString(reasonsOf(result));
    for (const std::string& path : items)
        EXPECT_FALSE(exists(path)) << path;
    // What went to the Trash is the link itself, still pointing at the victim.
    ASSERT_EQ(result.trashedURLs.size(), 2u);
    EXPECT_EQ(statOf(result.trashedURLs[0]).st_mode & S_IFMT, S_IFLNK);
    EXPECT_EQ(statOf(result.trashedURLs[1] + "/by-admin-move").st_mode & S_IFMT, S_IFLNK);
    EXPECT_EQ(describeDifferences(before, snapshotOutside(items)), "");
}

TEST_F(CleanerHostileTest, ParentSwappedForALinkFailsTheItem) {
    std::vector<std::string> items;
    int n = 0;
    for (const char* name : {"p-trash", "p-delete", "p-admin-move", "p-admin-delete"}) {
        const std::string victim = home.tree().makeDir("victim-" + std::to_string(n++));
        home.tree().makeFile(victim + "/item/precious", "precious");
        items.push_back(home.tree().makeSymlink(area + "/" + name, victim) + "/item");
    }
    const auto before = snapshotOutside({});

    AuthorizationToolRecorder recorder{realScriptRunner()};
    const CleanResult result = cleanEachWay(items);

    EXPECT_TRUE(result.succeeded.empty());
    ASSERT_EQ(result.failures.size(), 4u);
    for (const CleanFailure& failure : result.failures)
        EXPECT_FALSE(failure.reason.empty()) << failure.item.id;
    // The helper opens each parent chain without following a link, so it refuses too.
    ASSERT_EQ(recorder.calls().size(), 2u);
    EXPECT_EQ(result.failures[2].reason, sipReason);
    EXPECT_EQ(result.failures[3].reason, sipReason);
    EXPECT_EQ(describeDifferences(before, snapshotOutside({})), "");
}

TEST_F(CleanerHostileTest, FifosAndSocketsAreRemovedWithoutBlocking) {
    // Socket addresses hold about 100 bytes, so these items live in a short folder.
    const std::string fifoTrash = home.tree().makeFifo("home/sk/fifo-t");
    const std::string fifoDelete = home.tree().makeFifo("home/sk/fifo-d");
    const std::string socketTrash = home.tree().makeSocket("home/sk/sock-t");
    const std::string socketDelete = home.tree().makeSocket("home/sk/sock-d");
    const std::string folder = home.makeDir("sk/holder");
    home.tree().makeFifo("home/sk/holder/inner-fifo");
    home.tree().makeSocket("home/sk/holder/s");
    const std::vector<std::string> items = {fifoTrash, fifoDelete, socketTrash, socketDelete, folder};
    const auto before = snapshotOutside(items);

    const CleanResult result = finishing([&] {
        return Cleaner::clean({pathItem(fifoTrash, RemovalMethod::trash()),
                               pathItem(fifoDelete, RemovalMethod::permanent()),
                               pathItem(socketTrash, RemovalMethod::trash()),
                               pathItem(socketDelete, RemovalMethod::permanent()),
                               pathItem(folder, RemovalMethod::permanent())});
    });

    EXPECT_TRUE(result.failures.empty()) << ::testing::PrintToString(reasonsOf(result));
    EXPECT_EQ(result.succeeded.size(), 5u);
    ASSERT_EQ(result.trashedURLs.size(), 2u);
    EXPECT_EQ(statOf(result.trashedURLs[0]).st_mode & S_IFMT, S_IFIFO);
    EXPECT_EQ(statOf(result.trashedURLs[1]).st_mode & S_IFMT, S_IFSOCK);
    for (const std::string& path : items)
        EXPECT_FALSE(exists(path)) << path;
    EXPECT_EQ(describeDifferences(before, snapshotOutside(items)), "");
}

// Permission errors send each item to the batch with its own method: a folder with an
// unreadable folder inside to be deleted, a file in a folder of root's (the user's own,
// closed, when not running as root) to be trashed. Without the administrator's rights
// the batch cannot do them either.
TEST_F(CleanerHostileTest, PermissionErrorsGoToTheBatchWithTheirOwnMethod) {
    chownTree(home.home(), unprivilegedUid(), unprivilegedGid());
    chownTree(home.tmp(), unprivilegedUid(), unprivilegedGid());
    const std::string item = areaDir("item");
    areaFile("item/plain", "p");
    areaFile("item/locked/secret", "s");
    chownTree(item, unprivilegedUid(), unprivilegedGid());
    ASSERT_EQ(::chmod((item + "/locked").c_str(), 0), 0);
    const std::string movable = areaFile("roots/movable", "m");
    chownTree(area + "/roots", 0, 0);
    ASSERT_EQ(::chmod((area + "/roots").c_str(), ::geteuid() == 0 ? 0755 : 0555), 0);
    const auto before = snapshotOutside({item, movable});

    const int code = runUnprivileged([&] {
        if (::geteuid() == 0)
            return 20;
        AuthorizationToolRecorder recorder{realScriptRunner()};
        const CleanResult result = Cleaner::clean({pathItem(item, RemovalMethod::permanent(), 8192),
                                                   pathItem(movable, RemovalMethod::trash(), 10)});
        if (recorder.calls().size() != 1)
            return 1;
        if (itemLines(recorder.calls()[0].script) !=
            std::vector<std::string>{"rm_item " + shellQuote(item) + " i0",
                                     "mv_item " + shellQuote(movable) + " i1"})
            return 2;
        if (!result.succeeded.empty() || result.failures.size() != 2)
            return 3;
        for (const CleanFailure& failure : result.failures)
            if (failure.reason != sipReason)
                return 4;
        return 0;
    });
    EXPECT_EQ(code, 0);
    EXPECT_TRUE(exists(item + "/locked"));
    EXPECT_EQ(readFile(movable), "m");
    EXPECT_EQ(describeDifferences(before, snapshotOutside({item, movable})), "");
}

TEST_F(CleanerHostileTest, TenThousandLevelsDeep) {
    const std::string deep = areaDir("deep");
    ASSERT_EQ(buildDeepTree(deep, 10000), 0);
    const auto before = snapshotOutside({deep});

    const CleanResult result =
        finishing([&] { return Cleaner::clean({pathItem(deep, RemovalMethod::permanent(), 123)}); });
    EXPECT_TRUE(result.failures.empty()) << ::testing::PrintToString(reasonsOf(result));
    EXPECT_EQ(result.deletedBytes, 123);
    EXPECT_FALSE(exists(deep));
    EXPECT_EQ(describeDifferences(before, snapshotOutside({deep})), "");
}
