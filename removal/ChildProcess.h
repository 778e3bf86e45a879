#pragma once
// Starting a program (never through a shell) with chosen standard streams, in a
// process group of its own, and learning when it ends. Used on both sides of the
// privileged helper: by the user process to start it, and by the helper for the
// tools it runs. Errors are errno values; nothing throws.

#include <string>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace ChildProcess {

// A file descriptor that closes itself.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    void close();

private:
    int fd_ = -1;
};

enum class Stream {
    null,    // /dev/null
    pipe,    // connected to this process (standard input: a socket we write to; the others: pipes)
    inherit, // this process's own
};

struct Child {
    pid_t pid = -1;
    Descriptor input;  // our end of its standard input, when a pipe
    Descriptor output; // our ends of its output streams, when pipes (non-blocking)
    Descriptor error;
    Descriptor exit; // readable once it has ended (a pidfd), when the kernel offers one
};

struct Streams {
    Stream input = Stream::null;
    Stream output = Stream::null;
    Stream error = Stream::null;
};

// Starts `argv` (argv[0] an absolute path) with `environment` ("NAME=value" entries).
// Returns 0 or an errno.
int start(const std::vector<std::string>& argv, const std::vector<std::string>& environment, Streams streams,
          Child& child);

// True once the child has ended; it stays a zombie (its pid and group id reserved)
// until reap.
bool hasEnded(pid_t pid);

// Waits for the child and returns its exit status, or 128 + the signal that ended it.
int reap(pid_t pid);

// Reads what is available now into `into`; closes `fd` at end of file or on error.
// Returns false once closed.
bool drain(Descriptor& fd, std::string& into);

} // namespace ChildProcess
