#include "support/Unprivileged.h"

#include "support/ForkedChild.h"

#include <grp.h>
#include <unistd.h>

uid_t unprivilegedUid() {
    return 65534;
}
gid_t unprivilegedGid() {
    return 65534;
}

bool becomeUnprivileged() {
    if (::geteuid() != 0)
        return true;
    const gid_t gid = unprivilegedGid();
    return ::setgroups(1, &gid) == 0 && ::setgid(gid) == 0 && ::setuid(unprivilegedUid()) == 0;
}

int runUnprivileged(const std::function<int()>& body) {
    return runInChild([&] { return becomeUnprivileged() ? body() : 125; });
}
