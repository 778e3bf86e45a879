#pragma once
// Permission cases must be exercised even when the suite runs as root (as CI does):
// run the body in a forked child that has dropped to an unprivileged user.

#include <functional>
#include <sys/types.h>

// The user the child becomes when the suite runs as root ("nobody").
uid_t unprivilegedUid();
gid_t unprivilegedGid();

// Forks; the child drops to the unprivileged user when running as root (keeps its
// own ids otherwise), runs `body` and exits with its return value. Returns that
// exit status, or -1 when the child died abnormally. Do not touch gtest assertions
// inside `body`: report through the return value.
int runUnprivileged(const std::function<int()>& body);
