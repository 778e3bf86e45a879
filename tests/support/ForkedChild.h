#pragma once
// Runs a body in a forked child: to drop privileges, to change what the test process
// must keep (mount namespace, descriptor limit), or to catch a call that blocks.

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

// The child's exit status (the body's return value; 124 when it threw), or -1 when it
// died from a signal, which includes the alarm after `seconds`. No gtest assertions
// in `body`: report through the return value.
int runInChild(const std::function<int()>& body, unsigned seconds = 120);

// Exit status a child uses to say that the environment does not allow the test.
constexpr int kChildCannotSetUp = 77;

// Runs `body` in a child (see runInChild) and returns the numbers it produced;
// nothing when the child failed.
std::optional<std::vector<int64_t>> numbersFromChild(const std::function<std::vector<int64_t>()>& body);

// In a child: a private mount namespace, so that mounts vanish with the child even
// if it crashes. Returns false when not permitted.
bool enterPrivateMountNamespace();
