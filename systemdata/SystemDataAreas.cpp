#include "systemdata/SystemDataAreas.h"

#include "catalogue/LinuxCommands.h"
#include "removal/Shell.h"
#include "systemdata/LinuxSystemDataFolders.h"
#include "systemdata/SystemDataCatalog.h"

namespace {

std::vector<SystemDataEntry> buildEntries() {
    std::vector<SystemDataEntry> entries = SystemDataCatalog::entries();
    for (SystemDataEntry& entry : entries) {
        const std::vector<std::string>& folders = LinuxSystemDataFolders::of(entry.id);
        entry.paths.insert(entry.paths.end(), folders.begin(), folders.end());
        if (!entry.action)
            continue;
        const LinuxCommand* command = LinuxCommands::find(entry.action->shell);
        if (command && command->steps.empty()) {
            entry.protectedNote = LinuxCommands::unavailableReason(*command, {});
            entry.action.reset();
        }
    }
    return entries;
}

} // namespace

namespace SystemDataAreas {

const std::vector<SystemDataEntry>& entries() {
    static const std::vector<SystemDataEntry> areas = buildEntries();
    return areas;
}

std::string unavailableReason(const SystemDataEntry& entry) {
    if (!entry.action)
        return {};
    const LinuxCommand* command = LinuxCommands::find(entry.action->shell);
    return command ? LinuxCommands::unavailableReason(*command, Shell::path()) : std::string();
}

} // namespace SystemDataAreas
