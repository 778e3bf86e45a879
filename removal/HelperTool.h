#pragma once
// The programs veltro-helper runs (du, /bin/sh -c for commands and actions): started
// without a shell of ours (under pkexec in a fixed system search path), standard
// input from /dev/null, and ended with their whole process group when the helper must
// stop.

#include <string>
#include <vector>

namespace HelperTool {

enum class Output {
    capture, // standard output collected, standard error discarded
    discard, // both discarded
    inherit, // both passed through to the helper's own
};

struct Result {
    int status = -1; // exit status, 128 + signal, or -1 when it could not start
    std::string output;
    bool stopped = false; // ended because the helper was told to stop
};

Result run(const std::vector<std::string>& argv, Output output);

// /bin/sh -c text.
Result runShell(const std::string& text, Output output);

} // namespace HelperTool
