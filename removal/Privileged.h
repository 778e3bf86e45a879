#pragma once
// Runs a shell script with administrator rights, asking the user once per call.

#include "removal/Shell.h"

#include <functional>
#include <string>

namespace Privileged {

// The one seam to the authorisation tool: given the written script file, the
// prompt (double quotes already turned into single quotes) and the time limit, run
// `/bin/sh <script>` as the administrator. A dismissed dialog must come back with
// "-128" in standardError.
using AuthorizationTool =
    std::function<Shell::Output(const std::string& scriptPath, const std::string& prompt, double timeout)>;

// The platform's tool: effective uid 0 runs `/bin/sh <file>` directly; otherwise
// `LC_ALL=C /usr/bin/pkexec /bin/sh <file>` through Shell::run, with pkexec's
// dismissal (exit 126) reported as "-128".
Shell::Output runWithPlatformTool(const std::string& scriptPath, const std::string& prompt, double timeout);

// The unprivileged half of the platform's tool with pkexec's location given:
// status 127 and a message when it is missing; its exit 126 gains a "-128: " prefix.
Shell::Output runThroughPkexec(const std::string& pkexec, const std::string& scriptPath, double timeout);

// Replaces the tool for the whole process (tests); an empty function restores the
// platform's.
void setAuthorizationTool(AuthorizationTool tool);

// Writes the script to "<tmp>/korvane-<UUID>.sh" (UTF-8, atomically, mode 0700),
// runs it through the tool with `timeout` (covering the dialog and the run), and
// removes the file afterwards whatever happened. When the file cannot be written:
// status -1 and "Could not write helper script: <reason>".
Shell::Output run(const std::string& script, const std::string& prompt, double timeout);

// The macOS form of the request, kept as pure functions: the AppleScript text for
// script path P and prompt T (its double quotes turned into single quotes), and the
// quoted osascript command line.
std::string appleScript(const std::string& scriptPath, const std::string& prompt);
std::string osascriptCommand(const std::string& scriptPath, const std::string& prompt);

} // namespace Privileged
