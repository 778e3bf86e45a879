#include "support/ForkedChild.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

int runInChild(const std::function<int()>& body, unsigned seconds) {
    const pid_t child = ::fork();
    if (child < 0)
        return -1;
    if (child == 0) {
        ::alarm(seconds);
        int code = 126;
        try {
            code = body();
        } catch (...) {
            code = 124;
        }
        ::_exit(code);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::optional<std::vector<int64_t>> numbersFromChild(const std::function<std::vector<int64_t>()>& body) {
    int channel[2];
    if (::pipe(channel) != 0)
        return std::nullopt;
    const int status = runInChild([&] {
        ::close(channel[0]);
        const std::vector<int64_t> numbers = body();
        const size_t bytes = numbers.size() * sizeof(int64_t);
        const bool written = ::write(channel[1], numbers.data(), bytes) == static_cast<ssize_t>(bytes);
        ::close(channel[1]);
        return written ? 0 : 3;
    });
    ::close(channel[1]);
    std::vector<int64_t> numbers;
    int64_t value = 0;
    while (::read(channel[0], &value, sizeof value) == static_cast<ssize_t>(sizeof value))
        numbers.push_back(value);
    ::close(channel[0]);
    if (status != 0)
        return std::nullopt;
    return numbers;
}

bool enterPrivateMountNamespace() {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}
