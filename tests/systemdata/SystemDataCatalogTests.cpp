#include "systemdata/SystemDataCatalog.h"

#include "SystemDataTesting.h"

#include <gtest/gtest.h>

#include <tuple>

// Which entries have an action, what each runs and whether it asks for the
// administrator: the commands that change the system, where a slip would do real harm.
TEST(SystemDataCatalog, ActionsRunExactlyTheseCommands) {
    using Action = std::tuple<std::string, std::string, bool>;
    std::vector<Action> actions;
    for (const SystemDataEntry& entry : SystemDataCatalog::entries())
        if (entry.action) {
            actions.emplace_back(entry.id, entry.action->shell, entry.action->admin);
            EXPECT_FALSE(entry.action->confirm.empty()) << entry.id;
        }
    EXPECT_EQ(actions, (std::vector<Action>{
                           {"tm",
                            "for d in $(tmutil listlocalsnapshotdates / | grep -E '^[0-9]'); do tmutil "
                            "deletelocalsnapshots \"$d\"; done",
                            true},
                           {"vm", "rm -f /private/var/vm/sleepimage", true},
                           {"unifiedlogs", "log erase --all", true},
                           {"spotlight", "mdutil -E /", true},
                           {"simruntimes", "xcrun simctl runtime delete --notUsedSinceDays 30", false}}));
}
