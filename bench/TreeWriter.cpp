#include "TreeWriter.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

TreeWriter::TreeWriter(std::string root, uint64_t seed, uint32_t emptyPercent, uint32_t smallMaxBytes)
    : root_(std::move(root)), data_(70000, 'b'), state_(seed), emptyPercent_(emptyPercent),
      smallMaxBytes_(smallMaxBytes) {}

uint32_t TreeWriter::next() {
    state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<uint32_t>(state_ >> 33);
}

std::string TreeWriter::full(const std::string& relative) const {
    return relative.empty() ? root_ : root_ + "/" + relative;
}

void TreeWriter::folders(const std::string& relative) {
    if (relative.empty()) {
        if (::mkdir(root_.c_str(), 0755) != 0 && errno != EEXIST)
            fail("mkdir", relative);
        return;
    }
    for (size_t slash = relative.find('/');; slash = relative.find('/', slash + 1)) {
        const std::string part = relative.substr(0, slash);
        if (::mkdir(full(part).c_str(), 0755) == 0)
            ++entries_;
        else if (errno != EEXIST)
            fail("mkdir", part);
        if (slash == std::string::npos)
            break;
    }
}

void TreeWriter::file(const std::string& relative) {
    int fd = ::open(full(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0 && errno == ENOENT) {
        folders(relative.substr(0, relative.rfind('/')));
        fd = ::open(full(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    }
    if (fd < 0)
        fail("open", relative);
    const uint32_t pick = next() % 100;
    const size_t bytes = pick < emptyPercent_ ? 0 : pick < 99 ? next() % smallMaxBytes_ + 1 : data_.size();
    if (bytes > 0 && ::write(fd, data_.data(), bytes) != static_cast<ssize_t>(bytes))
        fail("write", relative);
    ::close(fd);
    ++entries_;
}

void TreeWriter::symlink(const std::string& relative, const std::string& target) {
    if (::symlink(target.c_str(), full(relative).c_str()) != 0)
        fail("symlink", relative);
    ++entries_;
}

void TreeWriter::bigFile(const std::string& relative, int64_t bytes) {
    folders(relative.substr(0, relative.rfind('/')));
    const int fd = ::open(full(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0 || ::posix_fallocate(fd, 0, bytes) != 0)
        fail("fallocate", relative);
    ::close(fd);
    ++entries_;
}

void TreeWriter::fail(const char* what, const std::string& relative) const {
    std::fprintf(stderr, "%s %s: %s\n", what, full(relative).c_str(), std::strerror(errno));
    std::exit(1);
}

std::string hex(uint32_t value, int digits) {
    static constexpr char letters[] = "0123456789abcdef";
    std::string out(static_cast<size_t>(digits), '0');
    for (int i = digits - 1; i >= 0; --i, value >>= 4)
        out[static_cast<size_t>(i)] = letters[value & 15];
    return out;
}
