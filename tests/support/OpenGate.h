#pragma once
// Holds whoever opens a folder until released, as a slow disk would hold a walk that
// reaches it, so that a test can act while an operation is known to be midway: a
// fanotify permission event, which needs root.

#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/fanotify.h>
#include <sys/types.h>
#include <unistd.h>

// Closing lets everything through.
struct OpenGate {
    explicit OpenGate(const std::string& folder)
        : armed(fd >= 0 &&
                ::fanotify_mark(fd, FAN_MARK_ADD, FAN_OPEN_PERM | FAN_ONDIR, AT_FDCWD, folder.c_str()) == 0) {
    }
    ~OpenGate() { ::close(fd); }
    // The process held, or -1 when none came within a minute.
    pid_t awaitOpener() {
        pollfd watched{fd, POLLIN, 0};
        const bool came =
            ::poll(&watched, 1, 60'000) == 1 && ::read(fd, &event, sizeof event) == sizeof event;
        return came ? event.pid : -1;
    }
    void release() {
        const fanotify_response allow{event.fd, FAN_ALLOW};
        [[maybe_unused]] const ssize_t written = ::write(fd, &allow, sizeof allow);
        ::close(event.fd);
    }
    const int fd = ::fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, O_RDONLY | O_CLOEXEC);
    const bool armed;
    fanotify_event_metadata event{0, 0, 0, 0, 0, -1, 0};
};
