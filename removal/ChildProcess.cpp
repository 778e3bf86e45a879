#include "removal/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ChildProcess {

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    if (this != &other) {
        close();
        fd_ = std::exchange(other.fd_, -1);
    }
    return *this;
}

void Descriptor::close() {
    if (fd_ >= 0)
        ::close(fd_);
    fd_ = -1;
}

namespace {

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

    // `fd` becomes the child's `target`; -1 means /dev/null, -2 leaves ours.
    int stream(int target, int fd, int nullFlags) {
        if (fd == -2)
            return 0;
        if (fd == -1)
            return ::posix_spawn_file_actions_addopen(&actions_, target, "/dev/null", nullFlags, 0);
        return ::posix_spawn_file_actions_adddup2(&actions_, fd, target);
    }

    int prepare() {
        if (!actionsReady_ || !attributesReady_)
            return ENOMEM;
        // Its own group, so that stopping it also stops what it started; the
        // caller's blocked or ignored signals must not leak into it.
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

// Both ends close on exec: only the dup2 of the spawn reaches the child, so no other
// child started meanwhile can hold a pipe open.
int openPipe(Descriptor& readEnd, Descriptor& writeEnd) {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0)
        return errno;
    readEnd = Descriptor(fds[0]);
    writeEnd = Descriptor(fds[1]);
    return 0;
}

// Standard input is a socket: writing to it with MSG_NOSIGNAL cannot raise SIGPIPE in
// this process when the child has gone, and its end of file still tells the child
// that this process closed it or died.
int openSocketPair(Descriptor& childEnd, Descriptor& ourEnd) {
    int fds[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0)
        return errno;
    childEnd = Descriptor(fds[0]);
    ourEnd = Descriptor(fds[1]);
    return 0;
}

int childSide(Stream stream, const Descriptor& pipeEnd) {
    switch (stream) {
    case Stream::null:
        return -1;
    case Stream::inherit:
        return -2;
    case Stream::pipe:
        return pipeEnd.get();
    }
    return -1;
}

} // namespace

int start(const std::vector<std::string>& argv, const std::vector<std::string>& environment, Streams streams,
          Child& child) {
    if (argv.empty() || argv.front().empty() || argv.front().front() != '/')
        return EINVAL;
    Descriptor inRead, inWrite, outRead, outWrite, errRead, errWrite;
    if (streams.input == Stream::pipe)
        if (int e = openSocketPair(inRead, inWrite))
            return e;
    if (streams.output == Stream::pipe)
        if (int e = openPipe(outRead, outWrite))
            return e;
    if (streams.error == Stream::pipe)
        if (int e = openPipe(errRead, errWrite))
            return e;

    SpawnSetup setup;
    if (int e = setup.prepare())
        return e;
    if (int e = setup.stream(STDIN_FILENO, childSide(streams.input, inRead), O_RDONLY))
        return e;
    if (int e = setup.stream(STDOUT_FILENO, childSide(streams.output, outWrite), O_WRONLY))
        return e;
    if (int e = setup.stream(STDERR_FILENO, childSide(streams.error, errWrite), O_WRONLY))
        return e;

    std::vector<std::string> arguments = argv;
    std::vector<char*> argumentPointers;
    for (std::string& argument : arguments)
        argumentPointers.push_back(argument.data());
    argumentPointers.push_back(nullptr);
    std::vector<std::string> entries = environment;
    std::vector<char*> environmentPointers;
    for (std::string& entry : entries)
        environmentPointers.push_back(entry.data());
    environmentPointers.push_back(nullptr);

    pid_t pid = -1;
    if (int e = ::posix_spawn(&pid, arguments.front().c_str(), setup.actions(), setup.attributes(),
                              argumentPointers.data(), environmentPointers.data()))
        return e;
    child.pid = pid;
    child.input = std::move(inWrite);
    child.output = std::move(outRead);
    child.error = std::move(errRead);
    for (const Descriptor* fd : {&child.output, &child.error})
        if (*fd)
            ::fcntl(fd->get(), F_SETFL, O_NONBLOCK);
    if (child.input)
        ::fcntl(child.input.get(), F_SETFL, O_NONBLOCK);
    const long pidfd = ::syscall(SYS_pidfd_open, pid, 0);
    if (pidfd >= 0)
        child.exit = Descriptor(static_cast<int>(pidfd));
    return 0;
}

bool hasEnded(pid_t pid) {
    siginfo_t info{};
    for (;;) {
        if (::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0)
            return info.si_pid == pid;
        if (errno != EINTR)
            return true; // not ours to wait for: nothing left to watch
    }
}

int reap(pid_t pid) {
    int status = 0;
    for (;;) {
        if (::waitpid(pid, &status, 0) == pid)
            break;
        if (errno != EINTR)
            return 1;
    }
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return 1;
}

bool drain(Descriptor& fd, std::string& into) {
    char buffer[65536];
    while (fd) {
        const ssize_t n = ::read(fd.get(), buffer, sizeof buffer);
        if (n > 0) {
            into.append(buffer, static_cast<size_t>(n));
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            return true;
        fd.close();
    }
    return false;
}

} // namespace ChildProcess
