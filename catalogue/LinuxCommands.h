#pragma once
// The Linux command of the same meaning for every catalogue command that calls a tool
// only the other platform has, keyed by the catalogue's own command text: the rule
// table's command items (shell, probe and, through the steps' tools, requires), the
// snapshot count of the System Data measurement and the System Data actions. A text
// the table does not know runs as written. Plain data and a search-path lookup; no
// process is ever started here, so the interface thread may ask.

#include <string>
#include <string_view>
#include <vector>

struct LinuxCommandStep {
    std::string shell;
    bool admin = false;
    // The step runs where one of these executables is installed.
    std::vector<std::string> tools;

    bool operator==(const LinuxCommandStep&) const = default;
};

struct LinuxCommand {
    // Run in order, each where its tool is installed; empty when Linux has nothing of
    // the same meaning.
    std::vector<LinuxCommandStep> steps;
    // Why nothing is offered when there are no steps (a sentence to localise).
    std::string unavailableNote;
};

namespace LinuxCommands {

// The Linux command standing for `catalogueText`, or null when the text runs as written.
const LinuxCommand* find(std::string_view catalogueText);

// True when `tool` is an executable file in one of the folders of the colon-separated
// `searchPath` (a tool given with a "/" is looked at directly).
bool isInstalled(std::string_view tool, std::string_view searchPath);

// The steps of `command` whose tool is installed, in order.
std::vector<LinuxCommandStep> installedSteps(const LinuxCommand& command, std::string_view searchPath);

// "" when some step of `command` can run; otherwise one localised line saying why
// not: the missing tool, or the reason Linux has no such command.
std::string unavailableReason(const LinuxCommand& command, std::string_view searchPath);

} // namespace LinuxCommands
