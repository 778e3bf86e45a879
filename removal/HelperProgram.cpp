#include "removal/HelperProgram.h"

#include "removal/HelperBatch.h"
#include "removal/HelperMeasurement.h"
#include "removal/HelperStop.h"
#include "removal/HelperTool.h"
#include "removal/InvokingUser.h"
#include "removal/WorkList.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <unistd.h>

namespace HelperProgram {

namespace {

constexpr int refused = 2;
// Far more than any clean's list; a larger input is not ours.
constexpr size_t maxListBytes = size_t{64} << 20;

int refuse(const std::string& reason) {
    std::fprintf(stderr, "veltro-helper: %s\n", reason.c_str());
    return refused;
}

// Reads standard input until `accepts` takes what came (a list ends with "end", and
// only the decoder knows whether that "end" closes it).
bool readList(const std::function<bool(std::string_view)>& accepts) {
    std::string bytes;
    char buffer[65536];
    while (bytes.size() <= maxListBytes) {
        const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        bytes.append(buffer, static_cast<size_t>(n));
        if (WorkList::mayBeComplete(bytes) && accepts(bytes))
            return true;
    }
    return false;
}

int clean() {
    std::optional<WorkList::Batch> batch;
    if (!readList([&](std::string_view bytes) { return (batch = WorkList::decodeBatch(bytes)).has_value(); }))
        return refuse("incomplete or malformed work list");
    HelperStop::watchInput(STDIN_FILENO);
    InvokingUser user;
    std::string reason;
    if (!InvokingUser::establish(*batch, user, reason))
        return refuse(reason);
    // The list carries the user's wall-clock time; formatting it as UTC gives the
    // user's local stamp whatever zone root is in.
    ::setenv("TZ", "UTC0", 1);
    ::tzset();
    HelperBatch::run(*batch, user, STDOUT_FILENO, STDERR_FILENO);
    return 0;
}

int measure() {
    std::optional<std::vector<WorkList::MeasuredEntry>> entries;
    if (!readList([&](std::string_view bytes) {
            return (entries = WorkList::decodeMeasurement(bytes)).has_value();
        }))
        return refuse("incomplete or malformed work list");
    HelperStop::watchInput(STDIN_FILENO);
    HelperMeasurement::run(*entries, STDOUT_FILENO);
    return 0;
}

int runShell() {
    std::optional<std::string> text;
    if (!readList([&](std::string_view bytes) { return (text = WorkList::decodeRun(bytes)).has_value(); }))
        return refuse("incomplete or malformed work list");
    HelperStop::watchInput(STDIN_FILENO);
    const HelperTool::Result result = HelperTool::runShell(*text, HelperTool::Output::inherit);
    if (result.status < 0)
        return refuse("/bin/sh could not be started");
    // 126 would read as a dismissed password dialog.
    return result.status == 126 ? 1 : result.status;
}

} // namespace

int run(int argc, char* argv[]) {
    HelperStop::install();
    const std::string_view mode = argc == 2 ? argv[1] : "";
    if (mode == WorkList::cleanMode)
        return clean();
    if (mode == WorkList::measureMode)
        return measure();
    if (mode == WorkList::runMode)
        return runShell();
    return refuse("usage: veltro-helper clean|measure|run, with the work list on standard input");
}

} // namespace HelperProgram
