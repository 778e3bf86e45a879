#include "removal/Shell.h"

#include "platform/Environment.h"
#include "platform/Localized.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

// How often we look for the shell's exit when no pipe event can tell us about it.
constexpr auto exitCheckInterval = std::chrono::milliseconds(20);
// After the limit has ended the shell, output still in flight is collected for this
// long; grandchildren that escaped the signal cannot hold the call longer.
constexpr auto drainAfterLimit = std::chrono::milliseconds(100);

std::string errorDescription(int error) {
    char buffer[256];
    // GNU strerror_r: thread-safe, returns a pointer that may or may not be `buffer`.
    return localized(::strerror_r(error, buffer, sizeof buffer));
}

// This process's environment with PATH set to the children's search path.
std::vector<std::string> childEnvironment() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry && *entry; ++entry) {
        if (std::strncmp(*entry, "PATH=", 5) != 0)
            entries.emplace_back(*entry);
    }
    entries.push_back("PATH=" + Shell::path());
    return entries;
}

class Fd {
public:
    Fd() = default;
    Fd(const Fd&) = delete;
    Fd& operator=(const Fd&) = delete;
    ~Fd() { close(); }

    int get() const { return fd_; }
    int* address() { return &fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    void close() {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = -1;
    }

private:
    int fd_ = -1;
};

struct Pipe {
    Fd read;
    Fd write;

    int open() {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0)
            return errno;
        *read.address() = fds[0];
        *write.address() = fds[1];
        return 0;
    }
};

class SpawnSetup {
public:
    SpawnSetup() {
        actionsReady_ = ::posix_spawn_file_actions_init(&actions_) == 0;
        attributesReady_ = ::posix_spawnattr_init(&attributes_) == 0;
    }
    ~SpawnSetup() {
        if (actionsReady_)
            ::posix_spawn_file_actions_destroy(&actions_);
        if (attributesReady_)
            ::posix_spawnattr_destroy(&attributes_);
    }
    SpawnSetup(const SpawnSetup&) = delete;
    SpawnSetup& operator=(const SpawnSetup&) = delete;

    // Returns 0 or an errno value.
    int prepare(int outputFd, int errorFd) {
        if (!actionsReady_ || !attributesReady_)
            return ENOMEM;
        if (int e = ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0))
            return e;
        if (int e = ::posix_spawn_file_actions_adddup2(&actions_, outputFd, STDOUT_FILENO))
            return e;
        if (int e = ::posix_spawn_file_actions_adddup2(&actions_, errorFd, STDERR_FILENO))
            return e;
        // Its own process group, so the limit can end pipelines and background jobs
        // too; signals blocked or ignored by the caller's thread must not leak into it.
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        if (int e = ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                                 POSIX_SPAWN_SETSIGDEF))
            return e;
        if (int e = ::posix_spawnattr_setpgroup(&attributes_, 0))
            return e;
        if (int e = ::posix_spawnattr_setsigmask(&attributes_, &none))
            return e;
        return ::posix_spawnattr_setsigdefault(&attributes_, &all);
    }

    const posix_spawn_file_actions_t* actions() const { return &actions_; }
    const posix_spawnattr_t* attributes() const { return &attributes_; }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
    bool actionsReady_ = false;
    bool attributesReady_ = false;
};

Shell::Output notStarted(int error) {
    return Shell::Output{-1, std::string(), errorDescription(error)};
}

// Reads what is available now; closes the descriptor at end-of-file or on error.
void drain(Fd& fd, std::string& into) {
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd.get(), buffer, sizeof buffer);
        if (n > 0) {
            into.append(buffer, static_cast<size_t>(n));
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            return;
        fd.close();
        return;
    }
}

// Milliseconds for poll(), rounded up so a wait never ends just before its moment.
int millisecondsUntil(Clock::time_point moment, Clock::time_point now) {
    if (moment <= now)
        return 0;
    const auto ms = std::chrono::ceil<std::chrono::milliseconds>(moment - now).count();
    return static_cast<int>(std::min<long long>(ms, 1000LL * 60 * 60));
}

// Leaves the child a zombie (WNOWAIT), so its pid and process-group id stay
// reserved and cannot name anyone else while we may still signal them.
bool hasExited(pid_t pid) {
    siginfo_t info{};
    for (;;) {
        if (::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0)
            return info.si_pid == pid;
        if (errno != EINTR)
            return true; // not ours to wait for any more; nothing left to watch
    }
}

int32_t reap(pid_t pid) {
    int status = 0;
    for (;;) {
        if (::waitpid(pid, &status, 0) == pid)
            break;
        if (errno != EINTR)
            return 1;
    }
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    // A child ended by a signal (the time limit's SIGTERM among them) reports the
    // signal's number, not a shell's 128 + number: no exit status is involved.
    if (WIFSIGNALED(status))
        return WTERMSIG(status);
    return 1;
}

} // namespace

namespace Shell {

std::string path() {
    const std::string& home = Environment::homeFolder();
    const std::string h = home == "/" ? std::string() : home;
    return "/opt/homebrew/bin:/usr/local/bin:" + h + "/.orbstack/bin:" + h +
           "/.docker/bin:/usr/bin:/bin:/usr/sbin:/sbin";
}

std::string decodeUtf8Lossy(std::string_view bytes) {
    static constexpr std::string_view replacement = "\xEF\xBF\xBD";
    std::string out;
    out.reserve(bytes.size());
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const size_t n = bytes.size();
    size_t i = 0;
    while (i < n) {
        const unsigned char c = s[i];
        size_t length = 0;
        unsigned char low = 0x80, high = 0xBF;
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
            ++i;
            continue;
        } else if (c >= 0xC2 && c <= 0xDF) {
            length = 2;
        } else if (c >= 0xE0 && c <= 0xEF) {
            length = 3;
            if (c == 0xE0)
                low = 0xA0;
            else if (c == 0xED)
                high = 0x9F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            length = 4;
            if (c == 0xF0)
                low = 0x90;
            else if (c == 0xF4)
                high = 0x8F;
        } else {
            out.append(replacement);
            ++i;
            continue;
        }
        // A maximal valid prefix of a sequence becomes one replacement character.
        size_t j = 1;
        for (; j < length && i + j < n; ++j) {
            const unsigned char next = s[i + j];
            const unsigned char lo = j == 1 ? low : 0x80;
            const unsigned char hi = j == 1 ? high : 0xBF;
            if (next < lo || next > hi)
                break;
        }
        if (j == length) {
            out.append(bytes.substr(i, length));
            i += length;
        } else {
            out.append(replacement);
            i += j;
        }
    }
    return out;
}

Output run(const std::string& command, double timeout) {
    Pipe output;
    Pipe error;
    if (int e = output.open())
        return notStarted(e);
    if (int e = error.open())
        return notStarted(e);
    SpawnSetup setup;
    if (int e = setup.prepare(output.write.get(), error.write.get()))
        return notStarted(e);

    std::vector<std::string> environment = childEnvironment();
    std::vector<char*> environmentPointers;
    environmentPointers.reserve(environment.size() + 1);
    for (std::string& entry : environment)
        environmentPointers.push_back(entry.data());
    environmentPointers.push_back(nullptr);
    std::string shell = "/bin/sh";
    std::string dashC = "-c";
    std::string commandText = command;
    char* arguments[] = {shell.data(), dashC.data(), commandText.data(), nullptr};

    const Clock::time_point start = Clock::now();
    pid_t pid = -1;
    if (int e = ::posix_spawn(&pid, shell.c_str(), setup.actions(), setup.attributes(), arguments,
                              environmentPointers.data()))
        return notStarted(e);
    output.write.close();
    error.write.close();
    ::fcntl(output.read.get(), F_SETFL, O_NONBLOCK);
    ::fcntl(error.read.get(), F_SETFL, O_NONBLOCK);

    // NaN and negative limits end the child at once; huge ones are effectively none.
    const double limit = timeout > 0 ? std::min(timeout, 1e9) : 0.0;
    const Clock::time_point deadline =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(limit));

    std::string outputBytes;
    std::string errorBytes;
    bool signalled = false;
    bool exited = false;
    std::optional<Clock::time_point> stopReading;
    for (;;) {
        exited = exited || hasExited(pid);
        const bool reading = output.read || error.read;
        if (exited && !reading)
            break;
        const Clock::time_point now = Clock::now();
        if (!signalled && now >= deadline) {
            // The child is not reaped yet, so its group id cannot name anyone else.
            ::kill(-pid, SIGTERM);
            signalled = true;
        }
        if (signalled && exited) {
            if (!stopReading)
                stopReading = now + drainAfterLimit;
            if (now >= *stopReading)
                break;
        }

        Clock::time_point wake = signalled ? Clock::time_point::max() : deadline;
        // Only time tells us that the shell has ended while its pipes are closed or
        // held open by others.
        if (!exited && (!reading || signalled))
            wake = std::min(wake, now + exitCheckInterval);
        if (stopReading)
            wake = std::min(wake, *stopReading);
        const int wait = wake == Clock::time_point::max() ? -1 : millisecondsUntil(wake, now);

        pollfd fds[2] = {{output.read.get(), POLLIN, 0}, {error.read.get(), POLLIN, 0}};
        const int ready = ::poll(fds, 2, wait); // closed (negative) descriptors are skipped
        if (ready < 0 && errno != EINTR)
            ::poll(nullptr, 0, static_cast<int>(exitCheckInterval.count()));
        if (ready > 0) {
            if (fds[0].revents)
                drain(output.read, outputBytes);
            if (fds[1].revents)
                drain(error.read, errorBytes);
        }
    }
    Output result;
    result.status = reap(pid);
    result.standardOutput = decodeUtf8Lossy(outputBytes);
    result.standardError = decodeUtf8Lossy(errorBytes);
    return result;
}

} // namespace Shell
