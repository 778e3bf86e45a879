#include "platform/SafeFs.h"

#include "platform/MountIdentity.h"
#include "platform/SafeFsInternals.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>

namespace SafeFs {

Dir& Dir::operator=(Dir&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = other.release();
    }
    return *this;
}

Dir::~Dir() {
    if (fd_ >= 0)
        ::close(fd_);
}

int Dir::release() {
    return std::exchange(fd_, -1);
}

int splitAbsolutePath(const std::string& path, std::vector<std::string>& components) {
    components.clear();
    if (path.empty() || path.front() != '/' || path.find('\0') != std::string::npos)
        return EINVAL;
    size_t start = 0;
    while (start < path.size()) {
        size_t end = path.find('/', start);
        if (end == std::string::npos)
            end = path.size();
        if (end > start) {
            std::string component = path.substr(start, end - start);
            if (component == "." || component == "..")
                return EINVAL;
            components.push_back(std::move(component));
        }
        start = end + 1;
    }
    return components.empty() ? EINVAL : 0;
}

namespace {

constexpr int kDirectoryPath = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Walks `count` components from "/" one openat at a time. With O_PATH | O_NOFOLLOW
// a link would be opened as itself, but O_DIRECTORY refuses it (ENOTDIR); the
// fstat below guards that promise.
int walkComponents(const std::vector<std::string>& components, size_t count, Dir& dir) {
    Dir current(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!current)
        return errno;
    for (size_t i = 0; i < count; ++i) {
        Dir next(::openat(current.fd(), components[i].c_str(), kDirectoryPath));
        if (!next)
            return errno;
        struct stat st {};
        if (::fstat(next.fd(), &st) != 0)
            return errno;
        if (!S_ISDIR(st.st_mode))
            return ENOTDIR;
        current = std::move(next);
    }
    dir = std::move(current);
    return 0;
}

// openat2 resolves the whole chain in the kernel and refuses every link in it.
// Returns -1 when the caller should fall back to the component walk.
int openWithoutLinks(const std::string& path, Dir& dir) {
    open_how how{};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    const long fd = ::syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how);
    if (fd >= 0) {
        dir = Dir(static_cast<int>(fd));
        return 0;
    }
    if (errno == ENOSYS || errno == ENAMETOOLONG || errno == E2BIG)
        return -1;
    return errno;
}

std::string joinComponents(const std::vector<std::string>& components, size_t count) {
    std::string path;
    for (size_t i = 0; i < count; ++i)
        path += "/" + components[i];
    return path.empty() ? "/" : path;
}

int openFolder(const std::vector<std::string>& components, size_t count, Dir& dir) {
    const int result = openWithoutLinks(joinComponents(components, count), dir);
    return result >= 0 ? result : walkComponents(components, count, dir);
}

bool isValidName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

} // namespace

int openParentByComponents(const std::string& path, Dir& dir, std::string& name) {
    std::vector<std::string> components;
    if (const int error = splitAbsolutePath(path, components))
        return error;
    if (const int error = walkComponents(components, components.size() - 1, dir))
        return error;
    name = components.back();
    return 0;
}

int openParent(const std::string& path, Dir& dir, std::string& name) {
    std::vector<std::string> components;
    if (const int error = splitAbsolutePath(path, components))
        return error;
    if (const int error = openFolder(components, components.size() - 1, dir))
        return error;
    name = components.back();
    return 0;
}

int openDirectory(const std::string& path, Dir& dir) {
    if (path == "/") {
        dir = Dir(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
        return dir ? 0 : errno;
    }
    std::vector<std::string> components;
    if (const int error = splitAbsolutePath(path, components))
        return error;
    return openFolder(components, components.size(), dir);
}

namespace {

constexpr int kWalkFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

// Directory streams held open at once. Deeper trees close the shallowest streams
// and reopen them through ".." (checked by device and inode) on the way back up.
constexpr size_t kMaxOpenStreams = 24;

struct Frame {
    std::string name; // in the parent frame (the item's own name for the first)
    dev_t device = 0;
    ino_t inode = 0;
    DIR* stream = nullptr;                // null while closed to stay under the bound
    std::unordered_set<std::string> kept; // entries that could not be removed
    int rescans = 0;
    bool incomplete = false; // something inside could not be removed
};

class TreeRemover {
public:
    TreeRemover(int parentFd, MountIdentity root, const StopRequested& stop)
        : parentFd_(parentFd), root_(root), stop_(stop) {}
    TreeRemover(const TreeRemover&) = delete;
    TreeRemover& operator=(const TreeRemover&) = delete;
    ~TreeRemover() {
        for (Frame& frame : stack_)
            if (frame.stream)
                ::closedir(frame.stream);
    }

    int run(const std::string& name, int fd);

private:
    void note(int error) {
        if (firstError_ == 0)
            firstError_ = error;
    }
    void keep(Frame& frame, const std::string& name, int error) {
        note(error);
        frame.kept.insert(name);
        frame.incomplete = true;
    }
    bool push(const std::string& name, int fd, const MountIdentity& identity);
    bool reopen(size_t index);
    void visit(size_t index, const char* name, unsigned char type);
    void finishTop();
    bool isForeignMount(const MountIdentity& identity) const {
        return identity.isMountRoot || !identity.sameMount(root_);
    }

    int parentFd_;
    MountIdentity root_;
    const StopRequested& stop_;
    std::vector<Frame> stack_;
    size_t openStreams_ = 0;
    bool aborted_ = false;
    int firstError_ = 0;
};

bool TreeRemover::push(const std::string& name, int fd, const MountIdentity& identity) {
    DIR* stream = ::fdopendir(fd);
    if (!stream) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return false;
    }
    // A frame reopened for a rescan may have left one stream over the bound.
    while (openStreams_ >= kMaxOpenStreams) {
        Frame& oldest = stack_[stack_.size() - openStreams_];
        ::closedir(oldest.stream);
        oldest.stream = nullptr;
        --openStreams_;
    }
    Frame frame;
    frame.name = name;
    frame.device = identity.device;
    frame.inode = identity.inode;
    frame.stream = stream;
    stack_.push_back(std::move(frame));
    ++openStreams_;
    return true;
}

// Reopens a closed frame from its child (the frame above it, always open) and
// starts its listing again; what was already removed is gone and what had to stay
// is in `kept`, so nothing is visited twice.
bool TreeRemover::reopen(size_t index) {
    const int childFd = ::dirfd(stack_[index + 1].stream);
    const int fd = ::openat(childFd, "..", kWalkFlags);
    if (fd < 0) {
        note(errno);
        return false;
    }
    MountIdentity identity;
    if (mountIdentityAt(fd, "", identity) != 0 || identity.device != stack_[index].device ||
        identity.inode != stack_[index].inode) {
        // The folder was moved away while we were inside it: where ".." now leads
        // is not ours to touch.
        ::close(fd);
        note(EBUSY);
        return false;
    }
    DIR* stream = ::fdopendir(fd);
    if (!stream) {
        note(errno);
        ::close(fd);
        return false;
    }
    stack_[index].stream = stream;
    ++openStreams_;
    return true;
}

void TreeRemover::visit(size_t index, const char* name, unsigned char type) {
    const int fd = ::dirfd(stack_[index].stream);
    if (type != DT_DIR && type != DT_UNKNOWN) {
        if (::unlinkat(fd, name, 0) == 0 || errno == ENOENT)
            return;
        if (errno != EISDIR) {
            keep(stack_[index], name, errno);
            return;
        }
        // Became a directory since it was listed: look again below.
    }
    MountIdentity identity;
    if (const int error = mountIdentityAt(fd, name, identity)) {
        if (error != ENOENT)
            keep(stack_[index], name, error);
        return;
    }
    if (!identity.isDirectory) {
        if (::unlinkat(fd, name, 0) != 0 && errno != ENOENT)
            keep(stack_[index], name, errno);
        return;
    }
    if (isForeignMount(identity)) {
        keep(stack_[index], name, EBUSY);
        return;
    }
    const int childFd = ::openat(fd, name, kWalkFlags);
    if (childFd < 0) {
        const int error = errno;
        // An unreadable folder may still be empty, and then it can go.
        if (error == ENOENT || ::unlinkat(fd, name, AT_REMOVEDIR) == 0)
            return;
        keep(stack_[index], name, error);
        return;
    }
    // What was opened decides: the entry may have been swapped since the look above.
    MountIdentity opened;
    if (const int error = mountIdentityAt(childFd, "", opened)) {
        ::close(childFd);
        keep(stack_[index], name, error);
        return;
    }
    if (!opened.isDirectory || isForeignMount(opened)) {
        ::close(childFd);
        keep(stack_[index], name, EBUSY);
        return;
    }
    if (!push(name, childFd, opened))
        keep(stack_[index], name, errno);
}

void TreeRemover::finishTop() {
    const size_t top = stack_.size() - 1;
    int parentFd = parentFd_;
    if (top > 0) {
        if (!stack_[top - 1].stream && !reopen(top - 1)) {
            aborted_ = true;
            return;
        }
        parentFd = ::dirfd(stack_[top - 1].stream);
    }
    Frame& frame = stack_[top];
    if (::unlinkat(parentFd, frame.name.c_str(), AT_REMOVEDIR) != 0) {
        const int error = errno;
        // Some file systems skip entries while a listing is being emptied; look
        // again before giving up on a folder in which nothing failed.
        if (error == ENOTEMPTY && !frame.incomplete && frame.rescans < 2) {
            ++frame.rescans;
            ::rewinddir(frame.stream);
            return;
        }
        if (error != ENOENT) {
            note(error);
            if (top > 0)
                keep(stack_[top - 1], frame.name, error);
        }
    }
    ::closedir(frame.stream);
    --openStreams_;
    stack_.pop_back();
}

int TreeRemover::run(const std::string& name, int fd) {
    MountIdentity identity;
    if (const int error = mountIdentityAt(fd, "", identity)) {
        ::close(fd);
        return error;
    }
    if (!push(name, fd, identity))
        return errno;
    while (!stack_.empty() && !aborted_) {
        if (stop_ && stop_())
            return ECANCELED;
        const size_t top = stack_.size() - 1;
        errno = 0;
        const dirent* entry = ::readdir(stack_[top].stream);
        if (!entry) {
            if (errno != 0) {
                note(errno);
                stack_[top].incomplete = true;
            }
            finishTop();
            continue;
        }
        const char* entryName = entry->d_name;
        if ((entryName[0] == '.' && entryName[1] == '\0') ||
            (entryName[0] == '.' && entryName[1] == '.' && entryName[2] == '\0'))
            continue;
        if (stack_[top].kept.count(entryName))
            continue;
        visit(top, entryName, entry->d_type);
    }
    return firstError_;
}

} // namespace

int removeTree(int parentFd, const std::string& name, const StopRequested& stop) {
    if (!isValidName(name))
        return EINVAL;
    MountIdentity parent;
    if (const int error = mountIdentityAt(parentFd, "", parent))
        return error;
    for (int attempt = 0; attempt < 2; ++attempt) {
        MountIdentity item;
        if (const int error = mountIdentityAt(parentFd, name, item))
            return error;
        if (!item.isDirectory) {
            if (::unlinkat(parentFd, name.c_str(), 0) == 0)
                return 0;
            if (errno != EISDIR)
                return errno;
            continue; // swapped for a directory since the look above
        }
        // A mounted volume is never emptied through its mount point.
        if (item.isMountRoot || !item.sameMount(parent))
            return EBUSY;
        const int fd = ::openat(parentFd, name.c_str(), kWalkFlags);
        if (fd < 0) {
            const int error = errno;
            if (error == ENOENT)
                return error;
            return ::unlinkat(parentFd, name.c_str(), AT_REMOVEDIR) == 0 ? 0 : error;
        }
        MountIdentity opened;
        if (const int error = mountIdentityAt(fd, "", opened)) {
            ::close(fd);
            return error;
        }
        if (!opened.isDirectory || opened.isMountRoot || !opened.sameMount(parent)) {
            ::close(fd);
            return EBUSY;
        }
        TreeRemover remover(parentFd, opened, stop);
        return remover.run(name, fd);
    }
    return EBUSY;
}

int removeItem(const std::string& path, const StopRequested& stop) {
    Dir parent;
    std::string name;
    if (const int error = openParent(path, parent, name))
        return error;
    return removeTree(parent.fd(), name, stop);
}

} // namespace SafeFs
