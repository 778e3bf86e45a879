#pragma once
// Administrator work, asking the user once per call. Whatever runs as root is our own
// helper, veltro-helper, started through pkexec (directly when this process already
// has root rights); it reads a work list (removal/WorkList.h) on its standard input
// and answers on its standard output. No shell script is ever run as root.

#include "removal/Shell.h"
#include "removal/WorkList.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Privileged {

// One run of the helper.
struct Request {
    std::string mode;     // WorkList::cleanMode, measureMode or runMode
    std::string workList; // the encoded list for that mode
    std::string prompt;   // the sentence the dialog would show (pkexec shows the policy's own)
    double timeout = 0;   // seconds, covering the dialog and the whole run
};

// Each complete line of the helper's standard output as it arrives, without its line
// feed, on the thread that called runHelper.
using LineCallback = std::function<void(std::string_view line)>;

// What the authorisation tool is asked to start: `command` is the helper and its
// mode; run it with runProcess, prefixed by whatever grants the rights.
struct Launch {
    std::vector<std::string> command;
    const Request& request;
    const LineCallback& onLine;
};

// The one seam to the authorisation dialog (tests): run `launch.command` with
// administrator rights, or answer as a dismissed dialog would, with "-128" in
// standardError.
using AuthorizationTool = std::function<Shell::Output(const Launch& launch)>;

// Runs `command` as it is: the request's work list on its standard input (kept open
// until the run ends: closing it is how the helper is told to stop), its output lines
// handed to `launch.onLine`, ended when the time limit passes or endAll is called.
// status: the exit status (128 + signal), -1 when it could not start (reason in
// standardError). standardOutput and standardError are decoded as UTF-8.
// `extraEnvironment` ("NAME=value") is added to this process's environment for it.
Shell::Output runProcess(const std::vector<std::string>& command, const Launch& launch,
                         const std::vector<std::string>& extraEnvironment = {});

// The platform's tool: effective uid 0 runs the helper directly; otherwise
// `LC_ALL=C /usr/bin/pkexec <helper> <mode>`, with pkexec's dismissal (exit 126)
// reported as "-128".
Shell::Output runWithPlatformTool(const Launch& launch);

// The pkexec half of the platform's tool with pkexec's location given: status 127 and
// a message when it is missing; its exit 126 gains a "-128: " prefix.
Shell::Output runThroughPkexec(const std::string& pkexec, const Launch& launch);

// Replaces the tool for the whole process (tests); an empty function restores the
// platform's.
void setAuthorizationTool(AuthorizationTool tool);

// Where the helper is: the path given here (tests, tools), else veltro-helper beside
// this executable, else in the libexec folder of the prefix this executable is
// installed in. Empty when none is there.
void setHelperPath(std::string path);
std::string helperPath();

// Runs one request through the authorisation tool, blocking. A helper that cannot be
// found, or a process that is quitting (endAll), gives status -1 and the reason.
Shell::Output runHelper(const Request& request, const LineCallback& onLine = {});

// A shell script (or an action's shell text) run as the administrator: the helper's
// run mode, /bin/sh -c with the text, never a file. status, standardOutput and
// standardError are the shell's, except a dismissed dialog ("-128" in standardError)
// and a helper that could not start (-1).
Shell::Output run(const std::string& script, const std::string& prompt, double timeout);

// The System Data measurement as the administrator. For each entry, in order, the
// helper writes one line "id|value" (value: the KiB that `du -skx` gives for the
// entry's folders, summed, a missing or unreadable folder adding nothing; or, for an
// entry with a countCommand, that command's trimmed first line of output), and
// `onLine` receives it (without the line feed) on the calling thread as soon as that
// entry is measured. At the end standardOutput holds all the lines; status 0 means
// the helper ran (whatever it measured); otherwise the run did not happen or was
// ended: "-128" in standardError for a dismissed dialog. Blocking; endAll or the time
// limit ends it early, with the lines delivered so far.
Shell::Output measure(const std::vector<WorkList::MeasuredEntry>& entries, const std::string& prompt,
                      double timeout, const LineCallback& onLine);

// For quitting: tells every helper run of this process to stop (it stops at the next
// safe point between entries and ends what it started), waits until each has ended
// but no longer than `patience`, and makes later runs fail at once. False when a run
// was still going when the patience ran out: a helper working as root cannot be made
// to end by us, and a window must not hang on it. Callable from any thread.
bool endAll(std::chrono::milliseconds patience = std::chrono::seconds(10));

// The macOS form of the request, kept as pure functions: the AppleScript text for
// script path P and prompt T (its double quotes turned into single quotes), and the
// quoted osascript command line.
std::string appleScript(const std::string& scriptPath, const std::string& prompt);
std::string osascriptCommand(const std::string& scriptPath, const std::string& prompt);

} // namespace Privileged
