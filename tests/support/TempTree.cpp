#include "support/TempTree.h"

#include "platform/ShellQuote.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <ftw.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::string baseTemporaryFolder() {
    // The suite's own trees live in the temporary folder the process started with,
    // even after a test points TMPDIR into a fake home.
    static const std::string base = [] {
        const char* tmp = std::getenv("TMPDIR");
        return std::string(tmp && tmp[0] == '/' ? tmp : "/tmp");
    }();
    return base;
}

// `full` once its folders exist.
const std::string& withParents(const std::string& full) {
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(full).parent_path(), ignored);
    return full;
}

// A new file (replacing any) at `full`, its folders made first.
int created(const std::string& full) {
    const int fd = ::open(withParents(full).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        fail("open " + full);
    return fd;
}

} // namespace

TempTree::TempTree() {
    std::string pattern = baseTemporaryFolder() + "/veltro-test-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        fail("mkdtemp");
    char* real = ::realpath(pattern.c_str(), nullptr);
    root_ = real ? real : pattern;
    std::free(real);
    ::chmod(root_.c_str(), 0755);
}

TempTree::~TempTree() {
    removeTreeForcefully(root_);
}

std::string TempTree::path(const std::string& relative) const {
    if (relative.empty() || relative == root_ || relative.starts_with(root_ + "/"))
        return relative.empty() ? root_ : relative;
    return root_ + "/" + relative;
}

std::string TempTree::makeDir(const std::string& relative, mode_t mode) const {
    const std::string full = path(relative);
    std::error_code error;
    std::filesystem::create_directories(full, error);
    if (error)
        throw std::runtime_error("create_directories " + full + ": " + error.message());
    ::chmod(full.c_str(), mode);
    return full;
}

std::string TempTree::makeFile(const std::string& relative, const std::string& content) const {
    const std::string full = path(relative);
    const int fd = created(full);
    const bool written = ::write(fd, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    ::close(fd);
    if (!written)
        fail("write " + full);
    return full;
}

std::string TempTree::makeScript(const std::string& relative, const std::string& body) const {
    const std::string full = makeFile(relative, "#!/bin/sh\n" + body + "\n");
    if (::chmod(full.c_str(), 0755) != 0)
        fail("chmod " + full);
    return full;
}

std::string TempTree::makeFileOfSize(const std::string& relative, int64_t bytes) const {
    const std::string full = path(relative);
    // Where the file system cannot allocate, the C library writes the blocks itself.
    const int fd = created(full);
    const int error = bytes > 0 ? ::posix_fallocate(fd, 0, bytes) : 0;
    ::close(fd);
    if (error != 0) {
        errno = error;
        fail("posix_fallocate " + full);
    }
    return full;
}

std::string TempTree::makeSparseFile(const std::string& relative, int64_t bytes) const {
    const std::string full = path(relative);
    const int fd = created(full);
    const bool sized = ::ftruncate(fd, bytes) == 0;
    ::close(fd);
    if (!sized)
        fail("ftruncate " + full);
    return full;
}

std::string TempTree::makeSymlink(const std::string& relative, const std::string& target) const {
    const std::string full = withParents(path(relative));
    if (::symlink(target.c_str(), full.c_str()) != 0)
        fail("symlink " + full);
    return full;
}

std::string TempTree::makeHardLink(const std::string& relative, const std::string& existingRelative) const {
    const std::string full = withParents(path(relative));
    if (::link(path(existingRelative).c_str(), full.c_str()) != 0)
        fail("link " + full);
    return full;
}

std::string TempTree::makeFifo(const std::string& relative) const {
    const std::string full = withParents(path(relative));
    if (::mkfifo(full.c_str(), 0644) != 0)
        fail("mkfifo " + full);
    return full;
}

std::string TempTree::makeSocket(const std::string& relative) const {
    const std::string full = withParents(path(relative));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (full.size() >= sizeof address.sun_path)
        throw std::runtime_error("socket path too long: " + full);
    full.copy(address.sun_path, full.size());
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool bound = fd >= 0 && ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    const int error = errno;
    if (fd >= 0)
        ::close(fd);
    errno = error;
    if (!bound)
        fail("socket " + full);
    return full;
}

int64_t allocatedBytes(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        return -1;
    return static_cast<int64_t>(st.st_blocks) * 512;
}

void setModificationTime(const std::string& path, int64_t secondsSinceEpoch) {
    const timespec time{static_cast<time_t>(secondsSinceEpoch), 0};
    const timespec times[2] = {time, time};
    if (::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
        fail("utimensat " + path);
}

namespace {
uid_t chownUid;
gid_t chownGid;
int chownOne(const char* path, const struct stat*, int, FTW*) {
    ::lchown(path, chownUid, chownGid);
    return 0;
}
} // namespace

void chownTree(const std::string& path, uid_t uid, gid_t gid) {
    chownUid = uid;
    chownGid = gid;
    ::nftw(path.c_str(), chownOne, 64, FTW_PHYS);
}

bool removeTreeForcefully(const std::string& path) {
    struct stat st {};
    if (path.empty() || path == "/" || ::lstat(path.c_str(), &st) != 0)
        return true;
    // rm walks any depth by descriptors and never follows a link; folders a test
    // locked are opened up when it could not go on without them (not being root).
    const std::string quoted = shellQuote(path);
    if (std::system(("rm -rf -- " + quoted + " 2>/dev/null").c_str()) == 0)
        return true;
    return S_ISDIR(st.st_mode) &&
           std::system(("chmod -R u+rwx -- " + quoted + " 2>/dev/null; rm -rf -- " + quoted).c_str()) == 0;
}
