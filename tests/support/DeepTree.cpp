#include "support/DeepTree.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

int openFolderAt(int fd, const char* name) {
    int child = ::openat(fd, name, kFolderFlags);
    if (child < 0 && errno == EACCES && ::fchmodat(fd, name, 0700, 0) == 0)
        child = ::openat(fd, name, kFolderFlags);
    return child;
}

// Unlinks every non-folder in `fd` and returns the name of one sub-folder, if any.
std::optional<std::string> clearFilesAndFindFolder(int fd) {
    const int listing = ::dup(fd);
    DIR* dir = listing >= 0 ? ::fdopendir(listing) : nullptr;
    if (!dir) {
        if (listing >= 0)
            ::close(listing);
        return std::nullopt;
    }
    ::rewinddir(dir);
    std::optional<std::string> folder;
    while (const dirent* entry = ::readdir(dir)) {
        if (isDotOrDotDot(entry->d_name))
            continue;
        struct stat st {};
        if (::fstatat(fd, entry->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISDIR(st.st_mode)) {
            folder = entry->d_name;
            break;
        }
        ::unlinkat(fd, entry->d_name, 0);
    }
    ::closedir(dir);
    return folder;
}

} // namespace

int buildDeepTree(const std::string& top, int levels, const std::function<void(int, int)>& atLevel) {
    int fd = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; fd >= 0 && level < levels; ++level) {
        if (level % 10 == 0) {
            const int file = ::openat(fd, "f", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            if (file < 0 || ::write(file, "x", 1) != 1)
                return errno;
            ::close(file);
        }
        if (level % 100 == 0) {
            if (::mkdirat(fd, "side", 0755) != 0 || ::mkdirat(fd, "side/s1", 0755) != 0 ||
                ::mkdirat(fd, "side/s1/s2", 0755) != 0 ||
                ::mknodat(fd, "side/s1/s2/g", S_IFREG | 0644, 0) != 0)
                return errno;
        }
        if (atLevel)
            atLevel(fd, level);
        if (::mkdirat(fd, "d", 0755) != 0)
            return errno;
        const int next = ::openat(fd, "d", kFolderFlags);
        ::close(fd);
        fd = next;
    }
    if (fd < 0)
        return errno;
    ::close(fd);
    return 0;
}

bool removeTreeByDescriptors(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return false;
    const std::string parentPath = slash == 0 ? "/" : path.substr(0, slash);
    const int parent = ::open(parentPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (parent < 0)
        return false;
    std::vector<std::string> names{path.substr(slash + 1)};
    int fd = openFolderAt(parent, names.back().c_str());
    if (fd < 0) {
        const bool removed = ::unlinkat(parent, names.back().c_str(), 0) == 0;
        ::close(parent);
        return removed;
    }
    // One descriptor at a time: down by name, back up by "..".
    while (true) {
        if (const std::optional<std::string> folder = clearFilesAndFindFolder(fd)) {
            const int child = openFolderAt(fd, folder->c_str());
            if (child < 0)
                break;
            ::close(fd);
            fd = child;
            names.push_back(*folder);
            continue;
        }
        const int up =
            names.size() == 1 ? ::dup(parent) : ::openat(fd, "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(fd);
        fd = -1;
        if (up < 0 || ::unlinkat(up, names.back().c_str(), AT_REMOVEDIR) != 0) {
            if (up >= 0)
                ::close(up);
            break;
        }
        names.pop_back();
        if (names.empty()) {
            ::close(up);
            ::close(parent);
            return true;
        }
        fd = up;
    }
    if (fd >= 0)
        ::close(fd);
    ::close(parent);
    return false;
}
