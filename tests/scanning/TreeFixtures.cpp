#include "TreeFixtures.h"

#include "support/Unprivileged.h"

#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

int64_t nftwSum = 0;

int addRegularFile(const char*, const struct stat* st, int type, FTW*) {
    if (type == FTW_F && S_ISREG(st->st_mode))
        nftwSum += static_cast<int64_t>(st->st_blocks) * 512;
    return 0;
}

bool isDotOrDotDot(const char* name) {
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
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

int64_t allocatedBytesOfRegularFiles(const std::string& root) {
    nftwSum = 0;
    ::nftw(root.c_str(), addRegularFile, 32, FTW_PHYS);
    return nftwSum;
}

int openDescriptorCount() {
    int count = 0;
    DIR* dir = ::opendir("/proc/self/fd");
    if (!dir)
        return -1;
    while (const dirent* entry = ::readdir(dir))
        if (!isDotOrDotDot(entry->d_name))
            ++count;
    ::closedir(dir);
    return count - 1; // the listing's own descriptor
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
    int fd = ::openat(parent, names.back().c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        const bool removed = ::unlinkat(parent, names.back().c_str(), 0) == 0;
        ::close(parent);
        return removed;
    }
    // One descriptor at a time: down by name, back up by "..".
    while (true) {
        if (const std::optional<std::string> folder = clearFilesAndFindFolder(fd)) {
            const int child = ::openat(fd, folder->c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
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

PrivateScratch::PrivateScratch(std::string folder) : folder_(std::move(folder)) {
    mounted_ = ::unshare(CLONE_NEWNS) == 0 &&
               ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
               ::mount("veltro-scratch", folder_.c_str(), "tmpfs", 0, "size=512m,mode=0755") == 0;
}

PrivateScratch::~PrivateScratch() {
    if (mounted_) {
        ::umount2(folder_.c_str(), MNT_DETACH);
        return;
    }
    // Empty the folder but keep it, as the tmpfs case does.
    const int fd = ::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    while (const std::optional<std::string> folder = clearFilesAndFindFolder(fd))
        if (!removeTreeByDescriptors(folder_ + "/" + *folder))
            break;
    ::close(fd);
}

std::optional<std::vector<int64_t>> numbersFromChild(const std::function<std::vector<int64_t>()>& body,
                                                     bool unprivileged) {
    int channel[2];
    if (::pipe(channel) != 0)
        return std::nullopt;
    const auto childBody = [&]() -> int {
        ::close(channel[0]);
        const std::vector<int64_t> numbers = body();
        const size_t bytes = numbers.size() * sizeof(int64_t);
        const bool written = ::write(channel[1], numbers.data(), bytes) == static_cast<ssize_t>(bytes);
        ::close(channel[1]);
        return written ? 0 : 3;
    };
    int status = -1;
    if (unprivileged) {
        status = runUnprivileged(childBody);
    } else {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(childBody());
        int raw = 0;
        if (child > 0 && ::waitpid(child, &raw, 0) == child && WIFEXITED(raw))
            status = WEXITSTATUS(raw);
    }
    ::close(channel[1]);
    std::vector<int64_t> numbers;
    int64_t value = 0;
    while (::read(channel[0], &value, sizeof value) == static_cast<ssize_t>(sizeof value))
        numbers.push_back(value);
    ::close(channel[0]);
    if (status != 0)
        return std::nullopt;
    return numbers;
}
