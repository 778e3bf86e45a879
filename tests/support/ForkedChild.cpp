#include "ForkedChild.h"

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

bool enterPrivateMountNamespace() {
    return ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}
