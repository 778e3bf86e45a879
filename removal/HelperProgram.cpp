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
#include <string>
#include <string_view>
#include <unistd.h>

namespace HelperProgram {

namespace {

constexpr int refused = 2;

int refuse(const std::string& reason) {
    std::fprintf(stderr, "veltro-helper: %s\n", reason.c_str());
    return refused;
}

// Reads standard input until the whole list has come; it must then decode.
template <typename Decoded>
std::optional<Decoded> readList(std::optional<Decoded> (*decode)(std::string_view)) {
    std::string bytes;
    char buffer[65536];
    for (;;) {
        bool malformed = false;
        if (const auto list = WorkList::unframed(bytes, malformed))
            return decode(*list);
        if (malformed)
            return std::nullopt;
        const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return std::nullopt;
        bytes.append(buffer, static_cast<size_t>(n));
    }
}

int clean() {
    const std::optional<WorkList::Batch> batch = readList(&WorkList::decodeBatch);
    if (!batch)
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
    const auto entries = readList(&WorkList::decodeMeasurement);
    if (!entries)
        return refuse("incomplete or malformed work list");
    HelperStop::watchInput(STDIN_FILENO);
    HelperMeasurement::run(*entries, STDOUT_FILENO);
    return 0;
}

int runShell() {
    const std::optional<std::string> text = readList(&WorkList::decodeRun);
    if (!text)
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
