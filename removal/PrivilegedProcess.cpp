// The user's side of a helper run: the work list goes in, answer lines come out as
// they are written, and the run can be stopped from here even though, once pkexec
// has granted the rights, this process may not signal the helper: closing its
// standard input is the stop request it always receives, also when this process
// dies.

#include "platform/Localized.h"
#include "removal/ChildProcess.h"
#include "removal/Privileged.h"
#include "removal/WorkList.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstring>
#include <mutex>
#include <optional>
#include <poll.h>
#include <set>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;
using ChildProcess::Descriptor;

// Without a pidfd, how often we look for the helper's end.
constexpr auto exitCheckInterval = std::chrono::milliseconds(20);
// Output still in flight after the helper ended (a grandchild may hold the pipe).
constexpr auto drainAfterEnd = std::chrono::milliseconds(200);

std::string errorDescription(int error) {
    char buffer[256];
    return localized(::strerror_r(error, buffer, sizeof buffer));
}

// The runs of this process, so that quitting can stop them all.
struct Run {
    Descriptor wake{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::atomic<bool> stopRequested{false};
};

struct Registry {
    std::mutex lock;
    std::condition_variable changed;
    std::set<Run*> runs;
    bool ending = false;
};

Registry& registry() {
    static Registry instance;
    return instance;
}

class Registration {
public:
    explicit Registration(Run& run) : run_(run) {
        Registry& all = registry();
        std::lock_guard guard(all.lock);
        accepted_ = !all.ending;
        if (accepted_)
            all.runs.insert(&run_);
    }
    ~Registration() {
        if (!accepted_)
            return;
        Registry& all = registry();
        std::lock_guard guard(all.lock);
        all.runs.erase(&run_);
        all.changed.notify_all();
    }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    bool accepted() const { return accepted_; }

private:
    Run& run_;
    bool accepted_ = false;
};

std::vector<std::string> environmentWith(const std::vector<std::string>& extra) {
    std::vector<std::string> entries;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view text(*entry);
        const bool replaced = std::any_of(extra.begin(), extra.end(), [&](const std::string& added) {
            return text.substr(0, text.find('=') + 1) == added.substr(0, added.find('=') + 1);
        });
        if (!replaced)
            entries.emplace_back(text);
    }
    entries.insert(entries.end(), extra.begin(), extra.end());
    return entries;
}

int millisecondsUntil(Clock::time_point moment, Clock::time_point now) {
    if (moment <= now)
        return 0;
    const auto ms = std::chrono::ceil<std::chrono::milliseconds>(moment - now).count();
    return static_cast<int>(std::min<long long>(ms, 1000LL * 60 * 60));
}

// Hands every complete line of `pending` to the callback and keeps the rest.
void deliverLines(std::string& pending, const Privileged::LineCallback& onLine, bool final) {
    size_t start = 0;
    for (size_t end; (end = pending.find('\n', start)) != std::string::npos; start = end + 1)
        if (onLine)
            onLine(std::string_view(pending).substr(start, end - start));
    pending.erase(0, start);
    if (final && !pending.empty()) {
        if (onLine)
            onLine(pending);
        pending.clear();
    }
}

} // namespace

namespace Privileged {

Shell::Output runProcess(const std::vector<std::string>& command, const Launch& launch,
                         const std::vector<std::string>& extraEnvironment) {
    Run run;
    const Registration registration(run);
    if (!registration.accepted())
        return {-1, "", localized("Veltro is quitting.")};

    ChildProcess::Child child;
    if (const int error = ChildProcess::start(
            command, environmentWith(extraEnvironment),
            {ChildProcess::Stream::pipe, ChildProcess::Stream::pipe, ChildProcess::Stream::pipe}, child))
        return {-1, "", errorDescription(error)};

    const Clock::time_point start = Clock::now();
    const double limit = launch.request.timeout > 0 ? std::min(launch.request.timeout, 1e9) : 0.0;
    const Clock::time_point deadline =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(limit));

    const std::string input = WorkList::framed(launch.request.workList);
    size_t written = 0;
    std::string outputBytes, errorBytes, pending;
    bool stopping = false;
    bool ended = false;
    std::optional<Clock::time_point> stopReading;
    for (;;) {
        if (!ended)
            ended = ChildProcess::hasEnded(child.pid);
        const Clock::time_point now = Clock::now();
        if (!stopping && (now >= deadline || run.stopRequested)) {
            // Closing the list's pipe is the request the helper always gets; the
            // signal reaches pkexec while its dialog is open (never the root helper).
            child.input.close();
            ::kill(-child.pid, SIGTERM);
            stopping = true;
        }
        if (ended) {
            if (!child.output && !child.error)
                break;
            if (!stopReading)
                stopReading = now + drainAfterEnd;
            if (now >= *stopReading)
                break;
        }

        Clock::time_point wake = stopping ? Clock::time_point::max() : deadline;
        if (!ended && !child.exit)
            wake = std::min(wake, now + exitCheckInterval);
        if (stopReading)
            wake = std::min(wake, *stopReading);
        const int wait = wake == Clock::time_point::max() ? -1 : millisecondsUntil(wake, now);
        const bool writing = child.input && written < input.size();
        pollfd fds[5] = {{child.output.get(), POLLIN, 0},
                         {child.error.get(), POLLIN, 0},
                         {writing ? child.input.get() : -1, POLLOUT, 0},
                         {ended ? -1 : child.exit.get(), POLLIN, 0},
                         {run.wake.get(), POLLIN, 0}};
        if (::poll(fds, 5, wait) < 0 && errno != EINTR)
            ::poll(nullptr, 0, static_cast<int>(exitCheckInterval.count()));
        if (fds[0].revents) {
            const size_t before = outputBytes.size();
            ChildProcess::drain(child.output, outputBytes);
            pending.append(outputBytes, before);
            deliverLines(pending, launch.onLine, !child.output);
        }
        if (fds[1].revents)
            ChildProcess::drain(child.error, errorBytes);
        if (fds[2].revents) {
            const ssize_t n =
                ::send(child.input.get(), input.data() + written, input.size() - written, MSG_NOSIGNAL);
            if (n > 0)
                written += static_cast<size_t>(n);
            else if (n < 0 && errno != EAGAIN && errno != EINTR)
                child.input.close(); // the helper is gone or stopped reading
        }
        if (fds[4].revents) {
            uint64_t count = 0;
            if (::read(run.wake.get(), &count, sizeof count) < 0) {
                // Nothing to do: the flag below is what counts.
            }
        }
    }
    deliverLines(pending, launch.onLine, true);
    child.input.close();
    Shell::Output result;
    result.status = ChildProcess::reap(child.pid);
    result.standardOutput = Shell::decodeUtf8Lossy(outputBytes);
    result.standardError = Shell::decodeUtf8Lossy(errorBytes);
    return result;
}

bool endAll(std::chrono::milliseconds patience) {
    Registry& all = registry();
    std::unique_lock guard(all.lock);
    all.ending = true;
    for (Run* run : all.runs) {
        run->stopRequested = true;
        const uint64_t one = 1;
        if (::write(run->wake.get(), &one, sizeof one) < 0) {
            // The run also looks at the flag on its own.
        }
    }
    return all.changed.wait_for(guard, patience, [&] { return all.runs.empty(); });
}

} // namespace Privileged
