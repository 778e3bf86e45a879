#include "removal/HelperStop.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace {

std::atomic<bool> stopFlag{false};
int stopEvent = -1;

void onSignal(int) {
    HelperStop::request();
}

} // namespace

namespace HelperStop {

void install() {
    stopEvent = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
    // A write to a closed answer pipe must fail with EPIPE, not end the helper mid-item.
    ::signal(SIGPIPE, SIG_IGN);
    const pid_t parent = ::getppid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    // The parent may have gone before the signal was armed.
    if (::getppid() != parent)
        request();
}

void watchInput(int fd) {
    std::thread([fd] {
        char buffer[256];
        for (;;) {
            pollfd watched{fd, POLLIN, 0};
            if (::poll(&watched, 1, -1) < 0 && errno == EINTR)
                continue;
            const ssize_t n = ::read(fd, buffer, sizeof buffer);
            if (n > 0 || (n < 0 && (errno == EINTR || errno == EAGAIN)))
                continue;
            request();
            return;
        }
    }).detach();
}

// Async-signal-safe: called from the signal handler.
void request() {
    stopFlag.store(true);
    if (stopEvent >= 0) {
        const uint64_t one = 1;
        [[maybe_unused]] const ssize_t ignored = ::write(stopEvent, &one, sizeof one);
    }
}

bool requested() {
    return stopFlag.load();
}

int descriptor() {
    return stopEvent;
}

} // namespace HelperStop
