// Trees built to trick a cleaner: names a shell would misread, and links swapped
// in between the scan and the clean. Whatever happens to the chosen item, nothing
// outside it may change.

#include "platform/Paths.h"
#include "platform/SafeFs.h"
#include "platform/Trash.h"

#include "support/FakeHome.h"
#include "support/HostileNames.h"
#include "support/PathQueries.h"
#include "support/TrashRestore.h"
#include "support/TreeSnapshot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace {

bool isLinkRefusal(int error) {
    return error == ELOOP || error == ENOTDIR;
}

// A folder whose entries carry every hostile name, with a nested level.
void fillHostile(FakeHome& home, const std::string& folder) {
    for (const std::string& name : hostileNames()) {
        home.makeFile(folder + "/" + name, name);
        home.makeFile(folder + "/sub/" + name, "nested " + name);
    }
    home.tree().makeSymlink("home/" + folder + "/sub/link", "../../../../outside");
}

// The snapshot with every path made relative to `root`.
TreeSnapshot relativeTo(const TreeSnapshot& snapshot, const std::string& root) {
    TreeSnapshot relative;
    for (const auto& [path, entry] : snapshot)
        relative[path.substr(root.size())] = entry;
    return relative;
}

} // namespace

// Trashed items come back whole, at their exact place, by the info file alone.
TEST(HostileTree, HostileNamesAreRemovedTrashedAndRestoredExactly) {
    FakeHome home;
    ::unsetenv("XDG_DATA_HOME");
    ASSERT_EQ(::chdir(home.tree().root().c_str()), 0);
    home.tree().makeFile("outside/kept.txt", "outside");
    for (const std::string& name : hostileNames()) {
        fillHostile(home, "remove/" + name);
        fillHostile(home, "trash/" + name);
        fillHostile(home, "keep/" + name);
    }
    const std::string trash = home.path(".local");
    const TreeSnapshot before = snapshotTree(home.tree().root(), {home.path("remove"), trash});

    for (const std::string& name : hostileNames()) {
        EXPECT_EQ(SafeFs::removeItem(home.path("remove/" + name)), 0) << name;
        const TreeSnapshot original = snapshotTree(home.path("trash/" + name));
        const Trash::MoveResult moved = Trash::moveToTrash(home.path("trash/" + name));
        ASSERT_EQ(moved.error, 0) << name;
        EXPECT_EQ(Paths::parentFolder(moved.location), Trash::homeTrashFolder() + "/files");
        EXPECT_FALSE(exists(home.path("trash/" + name)));
        const Restored restored = restoreFromTrash(moved.location);
        EXPECT_EQ(restored.original, home.path("trash/" + name)) << restored.problem;
        EXPECT_EQ(snapshotTree(home.path("trash/" + name)), original) << name;
    }
    EXPECT_EQ(describeDifferences(before, snapshotTree(home.tree().root(), {home.path("remove"), trash})),
              "");
    EXPECT_TRUE(std::filesystem::is_empty(home.path("remove")));
    EXPECT_TRUE(std::filesystem::is_empty(Trash::homeTrashFolder() + "/files"));
    EXPECT_TRUE(std::filesystem::is_empty(Trash::homeTrashFolder() + "/info"));
    EXPECT_FALSE(exists(home.tree().path(kInjectionMarker)));
}

TEST(HostileTree, LinksSwappedInAfterTheScanNeverLeadOutside) {
    FakeHome home;
    TempTree& tree = home.tree();
    tree.makeFile("victim/Caches/app/precious.db", "precious");
    tree.makeFile("victim/Caches/app/deeper/more.db", "more");
    tree.makeFile("victim/other.txt", "other");
    home.makeFile("Library/Caches/app/cache.bin", "cache");
    home.makeFile("Library/Caches/app/sub/nested.bin", "nested");
    home.makeFile("Library/Logs/app/log.txt", "log");
    const std::string victim = tree.path("victim");
    const TreeSnapshot victimBefore = snapshotTree(victim);

    // The item's folder swapped for a link to a victim folder: only the link goes.
    tree.makeSymlink("home/Library/Caches/swapped", victim + "/Caches/app");
    EXPECT_EQ(SafeFs::removeItem(home.path("Library/Caches/swapped")), 0);
    EXPECT_FALSE(exists(home.path("Library/Caches/swapped")));
    tree.makeSymlink("home/Library/Caches/swapped", victim + "/Caches/app");
    const Trash::MoveResult trashedLink = Trash::moveToTrash(home.path("Library/Caches/swapped"));
    ASSERT_EQ(trashedLink.error, 0);
    EXPECT_EQ(std::filesystem::read_symlink(trashedLink.location), victim + "/Caches/app");

    // A folder inside the item swapped for a link: the link goes, not its target.
    std::filesystem::remove_all(home.path("Library/Caches/app/sub"));
    tree.makeSymlink("home/Library/Caches/app/sub", victim);
    EXPECT_EQ(SafeFs::removeItem(home.path("Library/Caches/app")), 0);
    EXPECT_FALSE(exists(home.path("Library/Caches/app")));

    // The parent or the grandparent swapped for a link to a look-alike tree.
    const TreeSnapshot logsBefore = snapshotTree(home.path("Library/Logs"));
    std::filesystem::rename(home.path("Library/Caches"), home.path("Caches.real"));
    tree.makeSymlink("home/Library/Caches", victim + "/Caches");
    for (const std::string& path :
         {home.path("Library/Caches/app"), home.path("Library/Caches/app/precious.db")}) {
        EXPECT_TRUE(isLinkRefusal(SafeFs::removeItem(path))) << path;
        EXPECT_TRUE(isLinkRefusal(Trash::moveToTrash(path).error)) << path;
    }
    std::filesystem::rename(home.path("Library"), home.path("Library.real"));
    tree.makeSymlink("home/Library", victim);
    for (const std::string& path : {home.path("Library/Caches/app"), home.path("Library/other.txt")}) {
        EXPECT_TRUE(isLinkRefusal(SafeFs::removeItem(path))) << path;
        EXPECT_TRUE(isLinkRefusal(Trash::moveToTrash(path).error)) << path;
    }

    EXPECT_EQ(describeDifferences(victimBefore, snapshotTree(victim)), "");
    EXPECT_EQ(relativeTo(snapshotTree(home.path("Library.real/Logs")), home.path("Library.real")),
              relativeTo(logsBefore, home.path("Library")));
}
