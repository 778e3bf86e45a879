#include "removal/HelperTool.h"

#include "removal/ChildProcess.h"
#include "removal/HelperStop.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <poll.h>
#include <unistd.h>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

// Root's tools only: no folder a user can write to.
constexpr const char* systemPath = "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
// A tool that ignores SIGTERM gets SIGKILL after this.
constexpr auto stopGrace = std::chrono::seconds(5);
constexpr auto drainAfterEnd = std::chrono::milliseconds(200);
constexpr int exitCheckMilliseconds = 20;

// Started by pkexec for someone else, tools come only from the system's folders.
// Started directly, the helper has its caller's own rights and finds tools where its
// caller would.
std::vector<std::string> toolEnvironment() {
    const bool forSomeoneElse = std::getenv("PKEXEC_UID") != nullptr;
    std::vector<std::string> entries;
    bool hasPath = false;
    for (char** entry = environ; entry && *entry; ++entry) {
        const bool isPath = std::strncmp(*entry, "PATH=", 5) == 0;
        hasPath = hasPath || isPath;
        if (!isPath || !forSomeoneElse)
            entries.emplace_back(*entry);
    }
    if (forSomeoneElse || !hasPath)
        entries.emplace_back(systemPath);
    return entries;
}

} // namespace

namespace HelperTool {

Result run(const std::vector<std::string>& argv, Output output) {
    using ChildProcess::Stream;
    const ChildProcess::Streams streams =
        output == Output::inherit
            ? ChildProcess::Streams{Stream::null, Stream::inherit, Stream::inherit}
            : ChildProcess::Streams{Stream::null, output == Output::capture ? Stream::pipe : Stream::null,
                                    Stream::null};
    Result result;
    if (HelperStop::requested()) {
        result.stopped = true;
        return result;
    }
    ChildProcess::Child child;
    if (ChildProcess::start(argv, toolEnvironment(), streams, child) != 0)
        return result;

    std::optional<Clock::time_point> killAt;
    std::optional<Clock::time_point> stopReading;
    bool ended = false;
    for (;;) {
        if (!ended)
            ended = ChildProcess::hasEnded(child.pid);
        const Clock::time_point now = Clock::now();
        if (ended) {
            if (!child.output)
                break;
            if (!stopReading)
                stopReading = now + drainAfterEnd;
            if (now >= *stopReading)
                break;
        }
        if (!ended && HelperStop::requested() && !result.stopped) {
            result.stopped = true;
            ::kill(-child.pid, SIGTERM);
            killAt = now + stopGrace;
        }
        if (!ended && killAt && now >= *killAt) {
            ::kill(-child.pid, SIGKILL);
            killAt.reset();
        }
        int wait = -1;
        if (!ended && (!child.exit || killAt))
            wait = exitCheckMilliseconds;
        if (stopReading)
            wait = static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(*stopReading - now).count());
        pollfd fds[3] = {{child.output.get(), POLLIN, 0},
                         {ended ? -1 : child.exit.get(), POLLIN, 0},
                         {result.stopped ? -1 : HelperStop::descriptor(), POLLIN, 0}};
        ::poll(fds, 3, std::max(wait, -1));
        if (fds[0].revents)
            ChildProcess::drain(child.output, result.output);
    }
    result.status = ChildProcess::reap(child.pid);
    return result;
}

Result runShell(const std::string& text, Output output) {
    return run({"/bin/sh", "-c", text}, output);
}

} // namespace HelperTool
