#include "systemdata/SystemDataCatalog.h"

#include "SystemDataTesting.h"

#include <gtest/gtest.h>

namespace {

const SystemDataEntry& entry(const std::string& id) {
    for (const SystemDataEntry& e : SystemDataCatalog::entries())
        if (e.id == id)
            return e;
    throw std::out_of_range(id);
}

} // namespace

TEST(SystemDataCatalog, TwelveEntriesInOrderFiveWithActions) {
    const auto& entries = SystemDataCatalog::entries();
    std::vector<std::string> ids;
    for (const SystemDataEntry& e : entries)
        ids.push_back(e.id);
    EXPECT_EQ(ids, (std::vector<std::string>{"tm", "vm", "unifiedlogs", "spotlight", "simruntimes", "vmdisks",
                                             "folders", "assets", "dbother", "appsupport", "containers",
                                             "mailmsg"}));
    for (size_t i = 0; i < entries.size(); ++i) {
        SCOPED_TRACE(entries[i].id);
        if (i < 5) {
            ASSERT_TRUE(entries[i].action.has_value());
            EXPECT_EQ(entries[i].action->risk, Risk::caution);
            EXPECT_FALSE(entries[i].protectedNote.has_value());
        } else {
            EXPECT_FALSE(entries[i].action.has_value());
            ASSERT_TRUE(entries[i].protectedNote.has_value());
            EXPECT_FALSE(entries[i].protectedNote->empty());
        }
        EXPECT_FALSE(entries[i].paths.empty() && entries[i].id != "tm");
    }
    EXPECT_EQ(&entries, &SystemDataCatalog::entries());
}

TEST(SystemDataCatalog, TextsAreExact) {
    const SystemDataEntry tm{"tm",
                             "Time Machine local snapshots",
                             "Local snapshots Time Machine keeps between backups — usually the largest part "
                             "of System Data, and counted "
                             "as purgeable space.",
                             "clock.badge.checkmark",
                             {},
                             SystemDataEntry::Action{"Delete All Snapshots",
                                                     "for d in $(tmutil listlocalsnapshotdates / | grep -E "
                                                     "'^[0-9]'); do tmutil deletelocalsnapshots \"$d\"; "
                                                     "done",
                                                     true, Risk::caution,
                                                     "Backups on your Time Machine drive stay intact, but "
                                                     "you can no longer restore from local snapshots."},
                             std::nullopt};
    EXPECT_EQ(entry("tm"), tm);

    const SystemDataEntry simruntimes{
        "simruntimes",
        "iOS Simulator Runtimes & Devices",
        "Simulator runtimes (iOS/watchOS/visionOS) and Simulator device data.",
        "iphone.gen3.radiowaves.left.and.right",
        {"/Library/Developer/CoreSimulator/Volumes", "/Library/Developer/CoreSimulator/Images",
         "/Library/Developer/CoreSimulator/Cryptex", "~/Library/Developer/CoreSimulator/Devices"},
        SystemDataEntry::Action{
            "Delete Runtimes Unused for 30 Days", "xcrun simctl runtime delete --notUsedSinceDays 30", false,
            Risk::caution,
            "Deleted runtimes must be re-downloaded from Xcode → Settings → Platforms if needed."},
        std::nullopt};
    EXPECT_EQ(entry("simruntimes"), simruntimes);

    const SystemDataEntry folders{
        "folders",
        "System Temp & Caches (/private/var/folders)",
        "Temporary files and caches of all users and daemons. Your own files older than 3 "
        "days are cleaned under \"Temporary Files\"; macOS clears the rest on restart.",
        "folder.badge.gearshape",
        {"/private/var/folders"},
        std::nullopt,
        "Restart your Mac to let macOS clear these"};
    EXPECT_EQ(entry("folders"), folders);

    const SystemDataEntry vmdisks{
        "vmdisks",
        "Docker / OrbStack / Virtual Machines",
        "VM and container disks — shrink them from inside the app (e.g. docker system prune).",
        "shippingbox",
        {"~/Library/Containers/com.docker.docker/Data/vms",
         "~/Library/Group Containers/HUAQ24HBR6.dev.orbstack", "~/.orbstack",
         "~/Library/Containers/com.utmapp.UTM", "~/Parallels", "~/.colima", "~/.lima"},
        std::nullopt,
        "Manage from within Docker/OrbStack/your VM app to avoid data loss"};
    EXPECT_EQ(entry("vmdisks"), vmdisks);

    EXPECT_EQ(entry("containers").protectedNote,
              "App data — removable caches are under \"Sandboxed App Caches\"");
    EXPECT_EQ(entry("mailmsg").protectedNote,
              "Manage in System Settings → General → Storage, or in Mail/Messages");
    EXPECT_EQ(entry("unifiedlogs").action->title, "Erase All Logs (log erase)");
    EXPECT_EQ(entry("spotlight").detail,
              "Spotlight's search index (system + ~/Library/Metadata/CoreSpotlight). If "
              "it's unusually large, rebuilding shrinks it.");
}

TEST(SystemDataCatalog, ExpandedPathsUseTheHomeFolder) {
    const std::string& home = sharedHome().home();
    EXPECT_EQ(entry("mailmsg").expandedPaths(),
              (std::vector<std::string>{home + "/Library/Mail", home + "/Library/Messages"}));
    EXPECT_EQ(entry("spotlight").expandedPaths(),
              (std::vector<std::string>{"/System/Volumes/Data/.Spotlight-V100",
                                        home + "/Library/Metadata/CoreSpotlight"}));
    EXPECT_EQ(entry("vm").expandedPaths(), std::vector<std::string>{"/private/var/vm"});
    EXPECT_TRUE(entry("tm").expandedPaths().empty());
}
