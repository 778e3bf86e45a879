#pragma once
// Permission cases must be exercised even when the suite runs as root (as CI does):
// run the body in a forked child that has dropped to an unprivileged user.

#include <functional>
#include <sys/types.h>

// The user the child becomes when the suite runs as root ("nobody").
uid_t unprivilegedUid();
gid_t unprivilegedGid();

// In a forked child: becomes the unprivileged user when running as root (keeps its
// own ids otherwise). False when the ids could not be changed.
bool becomeUnprivileged();

// runInChild (support/ForkedChild.h) with the child unprivileged first; 125 when it
// could not drop its rights.
int runUnprivileged(const std::function<int()>& body);
