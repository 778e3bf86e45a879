#include "support/Unprivileged.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

uid_t unprivilegedUid() { return 65534; }
gid_t unprivilegedGid() { return 65534; }

int runUnprivileged(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child < 0)
        return -1;
    if (child == 0) {
        if (::geteuid() == 0) {
            const gid_t gid = unprivilegedGid();
            if (::setgroups(1, &gid) != 0 || ::setgid(gid) != 0 || ::setuid(unprivilegedUid()) != 0)
                ::_exit(125);
        }
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
