#include "scanning/FileSizer.h"

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

// A folder is measured by an iterative walk over directory descriptors. Each folder
// is read in large getdents64 batches; regular files are measured with fstatat
// relative to their folder's descriptor, and d_type spares the stat of folders and
// links. No path below the starting point is ever spelled out, so neither depth nor
// path length is limited, and nothing but the current chain of folders is kept.

namespace {

constexpr size_t kReadBufferSize = 64 * 1024;
constexpr uint64_t kCancelInterval = 2000;
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// At most this many folder descriptors of the current chain stay open (plus the
// starting folder's), so eight measurements at once fit well inside the usual
// 1,024-descriptor limit however deep the tree. Deeper down, the oldest open
// ancestor is closed after noting its read position; on the way back it is opened
// again through its child's "..", checked to be the same (dev, ino), and sought to
// that position. Where ".." leads elsewhere or cannot be opened (part of the tree
// was moved, or its permissions changed, while the walk was in it) the ancestor is
// reached again by name from the nearest open folder below it, checked at every
// step. Real trees rarely go this deep, so the common case never pays for any of it.
constexpr size_t kOpenWindow = 32;

struct Entry {
    const char* name;
    unsigned char type;
    unsigned short length;
};

// getdents64 records have the layout of glibc's dirent64.
Entry entryAt(const char* record) {
    unsigned short length = 0;
    std::memcpy(&length, record + offsetof(dirent64, d_reclen), sizeof length);
    return {record + offsetof(dirent64, d_name),
            static_cast<unsigned char>(record[offsetof(dirent64, d_type)]), length};
}

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

int64_t allocation(const struct stat& st) {
    return static_cast<int64_t>(st.st_blocks) * 512;
}

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

struct Folder {
    int fd = -1;
    dev_t dev = 0;
    ino_t ino = 0;
    // The name under which the parent listed it, for reaching it again by name.
    std::string name;
    // Records of the parent's batch that were still unread when the walk went down
    // into a child (the child's reads reuse the one read buffer).
    std::vector<char> pending;
    size_t pendingPos = 0;
    // Read position noted when the descriptor was closed to save descriptors.
    off_t resumeOffset = 0;
};

class TreeWalk {
public:
    explicit TreeWalk(const std::function<bool()>& isCancelled) : isCancelled_(isCancelled) {}
    ~TreeWalk() {
        for (size_t i = 0; i < depth_; ++i)
            if (chain_[i].fd >= 0)
                ::close(chain_[i].fd);
    }
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    // Takes ownership of `rootFd`, an open folder whose identity is `rootStat`.
    int64_t run(int rootFd, const struct stat& rootStat);

private:
    void push(int fd, const struct stat& st, const char* name);
    void pop();
    bool isOnChain(dev_t dev, ino_t ino) const;
    void reopen(size_t index, int childFd);
    int openByName(size_t index) const;
    bool isSameFolder(int fd, const Folder& folder) const;

    const std::function<bool()>& isCancelled_;
    std::vector<Folder> chain_; // reused slots; chain_[0, depth_) is the current path
    std::vector<std::pair<dev_t, ino_t>> identities_;
    size_t depth_ = 0;
    uint64_t entries_ = 0;
    int64_t sum_ = 0;
};

int64_t TreeWalk::run(int rootFd, const struct stat& rootStat) {
    push(rootFd, rootStat, "");
    const auto buffer = std::make_unique_for_overwrite<char[]>(kReadBufferSize);
    while (depth_ > 0) {
        Folder& folder = chain_[depth_ - 1];
        const char* data = nullptr;
        size_t pos = 0;
        size_t end = 0;
        const bool fromPending = folder.pendingPos < folder.pending.size();
        if (fromPending) {
            data = folder.pending.data();
            pos = folder.pendingPos;
            end = folder.pending.size();
        } else {
            folder.pending.clear();
            folder.pendingPos = 0;
            const long read = ::syscall(SYS_getdents64, folder.fd, buffer.get(), kReadBufferSize);
            if (read <= 0) {
                pop();
                continue;
            }
            data = buffer.get();
            end = static_cast<size_t>(read);
        }

        bool descended = false;
        while (pos < end) {
            const Entry entry = entryAt(data + pos);
            pos += entry.length;
            if (isDotOrDotDot(entry.name))
                continue;
            if (++entries_ % kCancelInterval == 0 && isCancelled_ && isCancelled_())
                return sum_;

            unsigned char type = entry.type;
            struct stat st {};
            bool haveStat = false;
            if (type == DT_UNKNOWN) {
                if (::fstatat(folder.fd, entry.name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                    continue;
                type = IFTODT(st.st_mode);
                haveStat = true;
            }
            if (type == DT_REG) {
                if (haveStat || ::fstatat(folder.fd, entry.name, &st, AT_SYMLINK_NOFOLLOW) == 0)
                    if (S_ISREG(st.st_mode))
                        sum_ += allocation(st);
            } else if (type == DT_DIR) {
                const int child = ::openat(folder.fd, entry.name, kFolderFlags);
                if (child < 0)
                    continue;
                if (::fstat(child, &st) != 0 || isOnChain(st.st_dev, st.st_ino)) {
                    ::close(child);
                    continue;
                }
                if (fromPending) {
                    folder.pendingPos = pos;
                } else {
                    folder.pending.assign(data + pos, data + end);
                    folder.pendingPos = 0;
                }
                push(child, st, entry.name); // may move `folder`
                descended = true;
                break;
            }
            // Links, devices, sockets and FIFOs add nothing and are never opened.
        }
        if (!descended && fromPending) {
            folder.pending.clear();
            folder.pendingPos = 0;
        }
    }
    return sum_;
}

void TreeWalk::push(int fd, const struct stat& st, const char* name) {
    if (depth_ == chain_.size())
        chain_.emplace_back();
    Folder& folder = chain_[depth_];
    folder.fd = fd;
    folder.dev = st.st_dev;
    folder.ino = st.st_ino;
    folder.name.assign(name);
    folder.pending.clear();
    folder.pendingPos = 0;
    folder.resumeOffset = 0;
    identities_.emplace_back(st.st_dev, st.st_ino);
    ++depth_;

    // The starting folder (index 0) always stays open as the anchor for reopening.
    if (depth_ > kOpenWindow + 1) {
        Folder& oldest = chain_[depth_ - 1 - kOpenWindow];
        if (oldest.fd >= 0) {
            oldest.resumeOffset = ::lseek(oldest.fd, 0, SEEK_CUR);
            ::close(oldest.fd);
            oldest.fd = -1;
        }
    }
}

void TreeWalk::pop() {
    const size_t top = depth_ - 1;
    Folder& folder = chain_[top];
    if (top >= 1 && chain_[top - 1].fd < 0)
        reopen(top - 1, folder.fd);
    if (folder.fd >= 0)
        ::close(folder.fd);
    folder.fd = -1;
    identities_.pop_back();
    --depth_;
}

// A folder that is already on the current path is not entered again: with bind
// mounts a tree can contain itself.
bool TreeWalk::isOnChain(dev_t dev, ino_t ino) const {
    for (const auto& [chainDev, chainIno] : identities_)
        if (chainIno == ino && chainDev == dev)
            return true;
    return false;
}

bool TreeWalk::isSameFolder(int fd, const Folder& folder) const {
    struct stat st {};
    return ::fstat(fd, &st) == 0 && st.st_dev == folder.dev && st.st_ino == folder.ino;
}

void TreeWalk::reopen(size_t index, int childFd) {
    Folder& folder = chain_[index];
    int fd = childFd >= 0 ? ::openat(childFd, "..", kFolderFlags) : -1;
    if (fd >= 0 && !isSameFolder(fd, folder)) {
        ::close(fd);
        fd = -1;
    }
    if (fd < 0)
        fd = openByName(index);
    if (fd >= 0 && ::lseek(fd, folder.resumeOffset, SEEK_SET) < 0) {
        ::close(fd);
        fd = -1;
    }
    folder.fd = fd;
    if (fd < 0) {
        // Gone or out of reach: what was left of it adds nothing, and the walk goes
        // on below it (its parent is reached by name when its turn comes).
        folder.pending.clear();
        folder.pendingPos = 0;
    }
}

int TreeWalk::openByName(size_t index) const {
    size_t anchor = index;
    while (anchor > 0 && chain_[anchor - 1].fd < 0)
        --anchor;
    if (anchor == 0)
        return -1;
    int current = chain_[anchor - 1].fd; // borrowed, not closed here
    bool owned = false;
    for (size_t i = anchor; i <= index; ++i) {
        const int next = ::openat(current, chain_[i].name.c_str(), kFolderFlags);
        if (owned)
            ::close(current);
        if (next < 0)
            return -1;
        if (!isSameFolder(next, chain_[i])) {
            ::close(next);
            return -1;
        }
        current = next;
        owned = true;
    }
    return current;
}

// Opens the folder that holds the last component of `path` without limiting the
// path's length: a path that the kernel would refuse as a whole is resolved in
// pieces that each stay below PATH_MAX. Links in the leading components are
// followed as the kernel would follow them. Returns AT_FDCWD when the path can be
// used as it is (then `last` is the whole path), -1 on failure.
int openContainingFolder(const std::string& path, std::string& last) {
    if (path.size() < PATH_MAX) {
        last = path;
        return AT_FDCWD;
    }
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return -1;
    last = path.substr(slash + 1);
    const std::string_view folder = std::string_view(path).substr(0, slash);
    int fd = AT_FDCWD;
    size_t pos = 0;
    while (pos < folder.size()) {
        // After the first piece, pieces are relative to the folder reached so far.
        if (fd != AT_FDCWD)
            while (pos < folder.size() && folder[pos] == '/')
                ++pos;
        if (pos >= folder.size())
            break;
        size_t end = folder.size();
        if (end - pos >= PATH_MAX) {
            end = folder.rfind('/', pos + PATH_MAX - 1);
            if (end == std::string_view::npos || end <= pos) {
                if (fd != AT_FDCWD)
                    ::close(fd);
                return -1;
            }
        }
        const std::string piece(folder.substr(pos, end - pos));
        const int next = ::openat(fd, piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        if (fd != AT_FDCWD)
            ::close(fd);
        if (next < 0)
            return -1;
        fd = next;
        pos = end;
    }
    if (fd == AT_FDCWD) // the path was "/" followed by one long name
        fd = ::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
    return fd;
}

} // namespace

namespace FileSizer {

int64_t allocatedSize(const std::string& path, const std::function<bool()>& isCancelled) {
    // A trailing slash would make the kernel follow a final link.
    std::string trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == '/')
        trimmed.pop_back();
    if (trimmed.empty())
        return 0;

    std::string last;
    const int parentFd = openContainingFolder(trimmed, last);
    if (parentFd == -1)
        return 0;
    const Descriptor parent(parentFd == AT_FDCWD ? -1 : parentFd);

    struct stat st {};
    if (::fstatat(parentFd, last.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0 || S_ISLNK(st.st_mode))
        return 0;
    if (!S_ISDIR(st.st_mode))
        return allocation(st);

    const int rootFd = ::openat(parentFd, last.c_str(), kFolderFlags);
    if (rootFd < 0)
        return 0;
    if (::fstat(rootFd, &st) != 0) {
        ::close(rootFd);
        return 0;
    }
    TreeWalk walk(isCancelled);
    return walk.run(rootFd, st);
}

} // namespace FileSizer
