#pragma once
// File-system operations that cannot be tricked by symbolic links swapped in after
// a scan. Every path is resolved component by component from "/" with O_NOFOLLOW,
// so a link anywhere in the parent chain makes the operation fail with ELOOP or
// ENOTDIR instead of acting on the link's target. Errors are errno values; nothing
// throws.

#include <cstdint>
#include <functional>
#include <string>

namespace SafeFs {

// An open directory descriptor that closes itself.
class Dir {
public:
    Dir() = default;
    explicit Dir(int fd) : fd_(fd) {}
    Dir(Dir&& other) noexcept : fd_(other.release()) {}
    Dir& operator=(Dir&& other) noexcept;
    Dir(const Dir&) = delete;
    Dir& operator=(const Dir&) = delete;
    ~Dir();

    int fd() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    int release();

private:
    int fd_ = -1;
};

// Asked between entries by the walks that may take long (a cache of a million files);
// true ends the walk where it is, leaving what it has not reached (ECANCELED).
using StopRequested = std::function<bool()>;

// Opens the parent folder of an absolute path without following any link in it.
// On success `dir` holds it and `name` the last component; returns 0 or an errno.
int openParent(const std::string& path, Dir& dir, std::string& name);

// Deletes `name` inside `parent` and, for a directory, everything below it, walking
// by descriptors (openat/unlinkat, no recursion, no path strings), never following
// a link and never entering another file system. Returns 0 or the first errno met
// (deletion continues past failures so as much as possible goes).
// A link named `name` is removed as a link, its target untouched. A folder that
// cannot be read stays (EACCES); a mount point inside, or `name` itself being one,
// is left alone with what is mounted on it (EBUSY).
int removeTree(int parentFd, const std::string& name, const StopRequested& stop = {});

// Deletes the item at an absolute path: openParent + removeTree.
int removeItem(const std::string& path, const StopRequested& stop = {});

} // namespace SafeFs
