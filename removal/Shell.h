#pragma once
// The only place that starts processes. Blocking; never throws.

#include <cstdint>
#include <string>

namespace Shell {

struct Output {
    int32_t status = 0;         // termination status; 0 is success; -1 when not started
    std::string standardOutput; // decoded as UTF-8, invalid bytes replaced by U+FFFD
    std::string standardError;  // or, when not started, the reason

    bool operator==(const Output&) const = default;
};

// The search path given to every child: the usual tool folders around the home
// folder H: /opt/homebrew/bin:/usr/local/bin:H/.orbstack/bin:H/.docker/bin:/usr/bin:/bin:/usr/sbin:/sbin
std::string path();

// Runs `/bin/sh -c command` with PATH = path(), stdin from /dev/null, both output
// streams drained concurrently. The child leads its own process group; when
// `timeout` seconds pass, SIGTERM goes to that group, so neither a pipeline nor a
// background grandchild can hold the call past the limit. A child ended by a
// signal reports the signal's number: 15 (SIGTERM) when the limit ended it. Must not be called on the
// interface thread.
Output run(const std::string& command, double timeout);

// Replaces invalid UTF-8 sequences by U+FFFD.
std::string decodeUtf8Lossy(std::string_view bytes);

} // namespace Shell
