#include "catalogue/LinuxCommands.h"

#include "platform/Localized.h"

#include <algorithm>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Snapshots are Snapper's when it has a configuration for the root file system, else
// Timeshift's. Snapper's number 0 is the running system itself, never a snapshot.
const std::string snapperHasRoot = "snapper -c root list >/dev/null 2>&1";
const std::string snapshotCount =
    "if " + snapperHasRoot +
    "; then snapper -c root --csvout list --columns number 2>/dev/null | grep -c '^[1-9]'; "
    "else timeshift --list --scripted 2>/dev/null | grep -c -E '^[0-9]+ +>'; fi";
// Every snapshot is tried; one that cannot go (the one booted from) fails the whole.
const std::string snapshotDeletion =
    "if " + snapperHasRoot +
    "; then s=0; for n in $(snapper -c root --csvout list --columns number | grep '^[1-9]'); "
    "do snapper -c root delete \"$n\" || s=1; done; [ \"$s\" -eq 0 ]; "
    "else timeshift --delete-all --scripted --yes; fi";
const std::vector<std::string> snapshotTools{"snapper", "timeshift"};

const std::map<std::string, LinuxCommand, std::less<>>& table() {
    static const std::map<std::string, LinuxCommand, std::less<>> commands{
        // The snapshot count: the rule table's probe and the measurement script's line.
        {"tmutil listlocalsnapshots / 2>/dev/null | grep -c 'com.apple'",
         {{{snapshotCount, false, snapshotTools}}, {}}},
        {"tmutil listlocalsnapshots / 2>/dev/null | grep -c com.apple",
         {{{snapshotCount, false, snapshotTools}}, {}}},
        // Deleting every snapshot: the rule table's command item and the System Data action.
        {"for d in $(tmutil listlocalsnapshotdates / | grep -E '^[0-9]'); do tmutil deletelocalsnapshots "
         "\"$d\"; done",
         {{{snapshotDeletion, true, snapshotTools}}, {}}},
        // A swap file in use cannot be deleted, and there is no sleep image to delete.
        {"rm -f /private/var/vm/sleepimage",
         {{}, "In use by the system as swap — resize or remove it with your distribution's tools"}},
        // The journal's active files are closed first, so that everything older can go.
        {"log erase --all",
         {{{"journalctl --rotate && journalctl --vacuum-time=1s", true, {"journalctl"}}}, {}}},
        // The file-name index is the system's; the desktop search index is the user's own.
        {"mdutil -E /",
         {{{"updatedb", true, {"updatedb"}},
           {"tracker3 reset --filesystem", false, {"tracker3"}},
           {"balooctl purge", false, {"balooctl"}}},
          {}}},
        {"xcrun simctl runtime delete --notUsedSinceDays 30",
         {{{"flatpak uninstall --system --unused -y", true, {"flatpak"}},
           {"flatpak uninstall --user --unused -y", false, {"flatpak"}}},
          {}}},
    };
    return commands;
}

std::string joined(const std::vector<std::string>& names) {
    std::string out;
    for (const std::string& name : names)
        out += (out.empty() ? "" : ", ") + name;
    return out;
}

} // namespace

namespace LinuxCommands {

const LinuxCommand* find(std::string_view catalogueText) {
    const auto found = table().find(catalogueText);
    return found == table().end() ? nullptr : &found->second;
}

bool isInstalled(std::string_view tool, std::string_view searchPath) {
    auto executable = [](const std::string& path) {
        struct stat st {};
        return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::access(path.c_str(), X_OK) == 0;
    };
    if (tool.empty())
        return false;
    if (tool.find('/') != std::string_view::npos)
        return executable(std::string(tool));
    size_t start = 0;
    while (start <= searchPath.size()) {
        const size_t end = std::min(searchPath.find(':', start), searchPath.size());
        // An empty entry would mean the working folder, which is no place to find tools.
        if (end > start &&
            executable(std::string(searchPath.substr(start, end - start)) + "/" + std::string(tool)))
            return true;
        start = end + 1;
    }
    return false;
}

std::vector<LinuxCommandStep> installedSteps(const LinuxCommand& command, std::string_view searchPath) {
    std::vector<LinuxCommandStep> steps;
    for (const LinuxCommandStep& step : command.steps)
        for (const std::string& tool : step.tools)
            if (isInstalled(tool, searchPath)) {
                steps.push_back(step);
                break;
            }
    return steps;
}

std::string unavailableReason(const LinuxCommand& command, std::string_view searchPath) {
    if (command.steps.empty())
        return localized(command.unavailableNote);
    if (!installedSteps(command, searchPath).empty())
        return {};
    std::vector<std::string> tools;
    for (const LinuxCommandStep& step : command.steps)
        for (const std::string& tool : step.tools)
            if (std::find(tools.begin(), tools.end(), tool) == tools.end())
                tools.push_back(tool);
    return tools.size() == 1 ? localizedFormat("%1 is not installed", {tools.front()})
                             : localizedFormat("None of these is installed: %1", {joined(tools)});
}

} // namespace LinuxCommands
