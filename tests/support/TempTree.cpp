#include "support/TempTree.h"

#include <cerrno>
#include <climits>
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
#include <utime.h>
#include <vector>

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

void makeParents(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos || slash == 0)
        return;
    std::error_code ignored;
    std::filesystem::create_directories(path.substr(0, slash), ignored);
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

} // namespace

TempTree::TempTree() {
    std::string pattern = baseTemporaryFolder() + "/veltro-test-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (!::mkdtemp(buffer.data()))
        fail("mkdtemp");
    char* real = ::realpath(buffer.data(), nullptr);
    root_ = real ? real : buffer.data();
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
    makeParents(full);
    const int fd = ::open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        fail("open " + full);
    size_t written = 0;
    while (written < content.size()) {
        const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
        if (n <= 0) {
            ::close(fd);
            fail("write " + full);
        }
        written += static_cast<size_t>(n);
    }
    ::close(fd);
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
    makeParents(full);
    const int fd = ::open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        fail("open " + full);
    if (bytes > 0 && ::posix_fallocate(fd, 0, bytes) != 0) {
        // Fall back to writing real blocks where fallocate is not supported.
        std::vector<char> block(1 << 16, 'x');
        int64_t left = bytes;
        while (left > 0) {
            const size_t chunk =
                static_cast<size_t>(std::min<int64_t>(left, static_cast<int64_t>(block.size())));
            if (::write(fd, block.data(), chunk) != static_cast<ssize_t>(chunk)) {
                ::close(fd);
                fail("write " + full);
            }
            left -= static_cast<int64_t>(chunk);
        }
    }
    ::close(fd);
    return full;
}

std::string TempTree::makeSparseFile(const std::string& relative, int64_t bytes) const {
    const std::string full = path(relative);
    makeParents(full);
    const int fd = ::open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        fail("open " + full);
    if (::ftruncate(fd, bytes) != 0) {
        ::close(fd);
        fail("ftruncate " + full);
    }
    ::close(fd);
    return full;
}

std::string TempTree::makeSymlink(const std::string& relative, const std::string& target) const {
    const std::string full = path(relative);
    makeParents(full);
    if (::symlink(target.c_str(), full.c_str()) != 0)
        fail("symlink " + full);
    return full;
}

std::string TempTree::makeHardLink(const std::string& relative, const std::string& existingRelative) const {
    const std::string full = path(relative);
    makeParents(full);
    if (::link(path(existingRelative).c_str(), full.c_str()) != 0)
        fail("link " + full);
    return full;
}

std::string TempTree::makeFifo(const std::string& relative) const {
    const std::string full = path(relative);
    makeParents(full);
    if (::mkfifo(full.c_str(), 0644) != 0)
        fail("mkfifo " + full);
    return full;
}

std::string TempTree::makeSocket(const std::string& relative) const {
    const std::string full = path(relative);
    makeParents(full);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (full.size() >= sizeof address.sun_path)
        throw std::runtime_error("socket path too long: " + full);
    full.copy(address.sun_path, full.size());
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0 || ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        if (fd >= 0)
            ::close(fd);
        errno = error;
        fail("socket " + full);
    }
    ::close(fd);
    return full;
}

int64_t allocatedBytes(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        return -1;
    return static_cast<int64_t>(st.st_blocks) * 512;
}

void setModificationTime(const std::string& path, int64_t secondsSinceEpoch) {
    timespec times[2];
    times[0].tv_sec = static_cast<time_t>(secondsSinceEpoch);
    times[0].tv_nsec = 0;
    times[1] = times[0];
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
int openUp(const char* path, const struct stat* st, int type, FTW*) {
    if (type == FTW_D || type == FTW_DNR || type == FTW_DP)
        ::chmod(path, (st->st_mode & 07777) | S_IRWXU);
    return 0;
}
} // namespace

void chownTree(const std::string& path, uid_t uid, gid_t gid) {
    chownUid = uid;
    chownGid = gid;
    ::nftw(path.c_str(), chownOne, 64, FTW_PHYS);
}

void removeTreeForcefully(const std::string& path) {
    if (path.empty() || path == "/")
        return;
    // Unreadable or unwritable folders made by a test would stop the removal.
    ::chmod(path.c_str(), 0700);
    ::nftw(path.c_str(), openUp, 64, FTW_PHYS);
    ::nftw(path.c_str(), openUp, 64, FTW_PHYS | FTW_DEPTH);
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}
