#include "systemdata/SystemDataCatalog.h"

#include "SystemDataTesting.h"

#include <gtest/gtest.h>

#include <tuple>

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

// What each action runs, and whether it asks for the administrator: the commands that
// change the system, where a slip would do real harm.
TEST(SystemDataCatalog, ActionsRunExactlyTheseCommands) {
    const std::vector<std::tuple<std::string, std::string, bool>> expected = {
        {"tm",
         "for d in $(tmutil listlocalsnapshotdates / | grep -E '^[0-9]'); do tmutil deletelocalsnapshots "
         "\"$d\"; done",
         true},
        {"vm", "rm -f /private/var/vm/sleepimage", true},
        {"unifiedlogs", "log erase --all", true},
        {"spotlight", "mdutil -E /", true},
        {"simruntimes", "xcrun simctl runtime delete --notUsedSinceDays 30", false},
    };
    for (const auto& [id, shell, admin] : expected) {
        ASSERT_TRUE(entry(id).action.has_value()) << id;
        EXPECT_EQ(entry(id).action->shell, shell);
        EXPECT_EQ(entry(id).action->admin, admin) << id;
        EXPECT_FALSE(entry(id).action->confirm.empty()) << id;
    }
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
