#pragma once
// Runs a body in a forked child so that it can change what the test process must
// keep (mount namespace, descriptor limit) or so that a call that blocks is caught.

#include <functional>

// The child's exit status (the body's return value), or -1 when it died from a
// signal, which includes the alarm after `seconds`. No gtest assertions in `body`.
int runInChild(const std::function<int()>& body, unsigned seconds = 60);

// Exit status a child uses to say that the environment does not allow the test.
constexpr int kChildCannotSetUp = 77;

// In a child: a private mount namespace, so that mounts vanish with the child even
// if it crashes. Returns false when not permitted.
bool enterPrivateMountNamespace();
