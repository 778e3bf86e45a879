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
#include <pwd.h>
#include <string_view>
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

// The locale of the session, which pkexec passes on; nothing that names a folder.
bool isLocaleSetting(std::string_view entry) {
    return entry.starts_with("LANG=") || entry.starts_with("LANGUAGE=") || entry.starts_with("LC_");
}

// Root's own home, from the password database.
std::string rootHome() {
    const long suggested = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<size_t>(suggested) : 16384);
    passwd record{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &record, buffer.data(), buffer.size(), &found) == 0 && found &&
        found->pw_dir && found->pw_dir[0] == '/')
        return found->pw_dir;
    return "/";
}

// Started by pkexec for someone else, the tools get an environment of root's own: the
// user's HOME and TMPDIR (which the helper takes on for its safety check) would have
// root's tools write their caches and temporary files into the user's folders, and
// the user's PATH would choose the tools. Started directly, the helper has its
// caller's own rights and runs tools as its caller would.
std::vector<std::string> toolEnvironment() {
    std::vector<std::string> entries;
    if (std::getenv("PKEXEC_UID")) {
        for (char** entry = environ; entry && *entry; ++entry)
            if (isLocaleSetting(*entry))
                entries.emplace_back(*entry);
        entries.push_back("HOME=" + rootHome());
        entries.emplace_back(systemPath);
        return entries;
    }
    bool hasPath = false;
    for (char** entry = environ; entry && *entry; ++entry) {
        hasPath = hasPath || std::strncmp(*entry, "PATH=", 5) == 0;
        entries.emplace_back(*entry);
    }
    if (!hasPath)
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
