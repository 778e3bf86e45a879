#include "platform/TrashFolders.h"

#include "platform/SafeFsInternals.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace TrashFolders {

namespace {

constexpr int kFolderPath = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool isEmptyFolder(int fd) {
    DIR* stream = ::fdopendir(::openat(fd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!stream)
        return false;
    bool empty = true;
    while (const dirent* entry = ::readdir(stream)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") {
            empty = false;
            break;
        }
    }
    ::closedir(stream);
    return empty;
}

// Gives a folder just made to its owner with the mode a trash needs (the umask may
// have taken bits away).
int finishNewFolder(int parentFd, const std::string& name, uid_t owner, gid_t group) {
    SafeFs::Dir folder;
    if (const int error = openJustMade(parentFd, name, folder))
        return error;
    if (::geteuid() != owner && ::fchown(folder.fd(), owner, group) != 0)
        return errno;
    return ::fchmod(folder.fd(), 0700) == 0 ? 0 : errno;
}

int checkFolder(int fd, uid_t owner, Check check) {
    struct stat st {};
    if (::fstat(fd, &st) != 0)
        return errno;
    if (!S_ISDIR(st.st_mode))
        return ENOTDIR;
    if (check != Check::none && st.st_uid != owner)
        return EACCES;
    if (check == Check::ownerOnlyAccess && (st.st_mode & (S_IWGRP | S_IWOTH)))
        return EACCES;
    return 0;
}

bool mayCreateIn(int parentFd, uid_t owner) {
    if (::geteuid() == owner)
        return true;
    struct stat st {};
    return ::fstat(parentFd, &st) == 0 && st.st_uid == owner;
}

} // namespace

int openJustMade(int parentFd, const std::string& name, SafeFs::Dir& dir) {
    struct stat made {};
    if (::fstatat(parentFd, name.c_str(), &made, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    SafeFs::Dir opened(::openat(parentFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!opened)
        return errno;
    struct stat st {};
    if (::fstat(opened.fd(), &st) != 0)
        return errno;
    if (st.st_dev != made.st_dev || st.st_ino != made.st_ino || st.st_uid != ::geteuid() ||
        !isEmptyFolder(opened.fd()))
        return EBUSY;
    dir = std::move(opened);
    return 0;
}

int openOrCreate(int parentFd, const std::string& name, uid_t owner, gid_t group, Check check,
                 SafeFs::Dir& dir) {
    if (::mkdirat(parentFd, name.c_str(), 0700) == 0) {
        if (const int error = finishNewFolder(parentFd, name, owner, group))
            return error;
    } else if (errno != EEXIST) {
        return errno;
    }
    SafeFs::Dir opened(::openat(parentFd, name.c_str(), kFolderPath));
    if (!opened)
        return errno;
    if (const int error = checkFolder(opened.fd(), owner, check))
        return error;
    dir = std::move(opened);
    return 0;
}

int openOrCreatePath(const std::string& path, uid_t owner, gid_t group, SafeFs::Dir& dir) {
    const int error = SafeFs::openDirectory(path, dir);
    if (error != ENOENT)
        return error;
    std::vector<std::string> components;
    if (const int splitError = SafeFs::splitAbsolutePath(path, components))
        return splitError;
    SafeFs::Dir current(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!current)
        return errno;
    for (const std::string& component : components) {
        SafeFs::Dir next(::openat(current.fd(), component.c_str(), kFolderPath));
        if (!next) {
            if (errno != ENOENT)
                return errno;
            if (!mayCreateIn(current.fd(), owner))
                return EACCES;
            if (const int createError =
                    openOrCreate(current.fd(), component, owner, group, Check::none, next))
                return createError;
        } else if (const int checkError = checkFolder(next.fd(), owner, Check::none)) {
            return checkError;
        }
        current = std::move(next);
    }
    dir = std::move(current);
    return 0;
}

int openContents(Opened& trash, uid_t owner, gid_t group, Check check) {
    if (const int error = openOrCreate(trash.root.fd(), "files", owner, group, check, trash.files))
        return error;
    return openOrCreate(trash.root.fd(), "info", owner, group, check, trash.info);
}

} // namespace TrashFolders
