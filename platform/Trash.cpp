#include "platform/Trash.h"

#include "platform/Environment.h"
#include "platform/MountIdentity.h"
#include "platform/SafeFs.h"
#include "platform/SafeFsInternals.h"
#include "platform/Text.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Trash {

namespace {

constexpr size_t kMaxNameBytes = NAME_MAX;

// The longest prefix of `name` of at most `limit` bytes that does not end inside a
// well-formed UTF-8 sequence; bytes that are not UTF-8 are cut anywhere.
std::string candidate(const std::string& name, unsigned number) {
    const std::string suffix = number == 0 ? std::string() : " " + std::to_string(number);
    const size_t room = kMaxNameBytes > suffix.size() ? kMaxNameBytes - suffix.size() : 0;
    return Text::prefixWithinBytes(name, room) + suffix;
}

bool isTaken(int folderFd, const std::string& name) {
    struct stat st {};
    return ::fstatat(folderFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0;
}

// Opens `name` inside `parentFd` as a directory that is really there (never a link),
// creating it with mode 0700 when missing. `ownedByUs` also refuses a folder owned
// by someone else or open to others, for folders on volumes shared between users.
int openOrCreateFolder(int parentFd, const std::string& name, bool ownedByUs, SafeFs::Dir& folder) {
    if (::mkdirat(parentFd, name.c_str(), 0700) == 0) {
        // The umask may have taken bits away; the owner needs all three.
        const int fd = ::openat(parentFd, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd >= 0) {
            ::fchmod(fd, 0700);
            ::close(fd);
        }
    } else if (errno != EEXIST) {
        const int error = errno;
        MountIdentity existing;
        if (mountIdentityAt(parentFd, name, existing) != 0)
            return error;
    }
    SafeFs::Dir opened(::openat(parentFd, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!opened)
        return errno;
    struct stat st {};
    if (::fstat(opened.fd(), &st) != 0)
        return errno;
    if (!S_ISDIR(st.st_mode))
        return ENOTDIR;
    if (ownedByUs && (st.st_uid != ::geteuid() || (st.st_mode & (S_IWGRP | S_IWOTH))))
        return EACCES;
    folder = std::move(opened);
    return 0;
}

std::string realHomeFolder() {
    const std::string& home = Environment::homeFolder();
    // The home folder is the user's own setting; a link in its path (a home under a
    // linked /home) is not an attack, so it is resolved once here.
    char* resolved = ::realpath(home.c_str(), nullptr);
    std::string result = resolved ? resolved : home;
    std::free(resolved);
    return result;
}

std::string parentPath(const std::vector<std::string>& components) {
    std::string path;
    for (size_t i = 0; i + 1 < components.size(); ++i)
        path += "/" + components[i];
    return path.empty() ? "/" : path;
}

// The outermost folder of `path` (a folder) that is still on `volume`.
std::string mountPointOf(std::string path, const MountIdentity& volume) {
    while (path != "/") {
        const size_t slash = path.rfind('/');
        const std::string up = slash == 0 ? "/" : path.substr(0, slash);
        MountIdentity identity;
        if (mountIdentityAt(AT_FDCWD, up, identity) != 0 || !identity.sameMount(volume))
            break;
        path = up;
    }
    return path;
}

// The Trash folder for an item whose parent folder is open as `parentFd` at the
// path `parent` (both already free of links).
int openTrashFolder(int parentFd, const std::string& parent, SafeFs::Dir& trash, std::string& folder) {
    MountIdentity itemVolume;
    if (const int error = mountIdentityAt(parentFd, "", itemVolume))
        return error;

    const std::string home = realHomeFolder();
    SafeFs::Dir homeDir;
    if (const int error = SafeFs::openDirectory(home, homeDir))
        return error;
    MountIdentity homeVolume;
    if (const int error = mountIdentityAt(homeDir.fd(), "", homeVolume))
        return error;
    if (homeVolume.sameMount(itemVolume)) {
        if (const int error = openOrCreateFolder(homeDir.fd(), ".Trash", false, trash))
            return error;
        folder = home == "/" ? "/.Trash" : home + "/.Trash";
        return 0;
    }

    const std::string mountPoint = mountPointOf(parent, itemVolume);
    SafeFs::Dir mountDir;
    if (const int error = SafeFs::openDirectory(mountPoint, mountDir))
        return error;
    MountIdentity opened;
    if (const int error = mountIdentityAt(mountDir.fd(), "", opened))
        return error;
    if (!opened.sameMount(itemVolume))
        return EXDEV;
    SafeFs::Dir trashes;
    if (const int error = openOrCreateFolder(mountDir.fd(), ".Trashes", false, trashes))
        return error;
    const std::string user = std::to_string(Environment::realUserID());
    if (const int error = openOrCreateFolder(trashes.fd(), user, true, trash))
        return error;
    folder = (mountPoint == "/" ? std::string() : mountPoint) + "/.Trashes/" + user;
    return 0;
}

int renameWithoutReplacing(int fromFd, const std::string& from, int toFd, const std::string& to) {
    if (::renameat2(fromFd, from.c_str(), toFd, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // The file system (or kernel) cannot refuse to replace; check the name ourselves.
    // EINVAL may also mean a folder moved into itself, which the plain rename reports
    // in the same way.
    if (isTaken(toFd, to))
        return EEXIST;
    return ::renameat(fromFd, from.c_str(), toFd, to.c_str()) == 0 ? 0 : errno;
}

} // namespace

int trashFolderFor(const std::string& path, std::string& folder) {
    std::vector<std::string> components;
    if (const int error = SafeFs::splitAbsolutePath(path, components))
        return error;
    SafeFs::Dir parent;
    std::string name;
    if (const int error = SafeFs::openParent(path, parent, name))
        return error;
    SafeFs::Dir trash;
    return openTrashFolder(parent.fd(), parentPath(components), trash, folder);
}

std::string freeName(int folderFd, const std::string& name) {
    // The bound only matters on a file system that claims every name exists; the
    // rename then refuses to replace and reports it.
    constexpr unsigned kMaxNumber = 100000;
    std::string tried;
    for (unsigned number = 0; number <= kMaxNumber; ++number) {
        tried = candidate(name, number);
        if (!isTaken(folderFd, tried))
            break;
    }
    return tried;
}

MoveResult moveToTrash(const std::string& path) {
    MoveResult result;
    std::vector<std::string> components;
    if ((result.error = SafeFs::splitAbsolutePath(path, components)))
        return result;
    SafeFs::Dir parent;
    std::string name;
    if ((result.error = SafeFs::openParent(path, parent, name)))
        return result;
    struct stat st {};
    if (::fstatat(parent.fd(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        result.error = errno;
        return result;
    }
    SafeFs::Dir trash;
    std::string folder;
    if ((result.error = openTrashFolder(parent.fd(), parentPath(components), trash, folder)))
        return result;
    // Another process may take the free name between the look and the rename; the
    // rename refuses to replace it and the next free name is tried.
    for (int attempt = 0; attempt < 64; ++attempt) {
        const std::string target = freeName(trash.fd(), name);
        result.error = renameWithoutReplacing(parent.fd(), name, trash.fd(), target);
        if (result.error == 0) {
            result.location = folder + "/" + target;
            return result;
        }
        if (result.error != EEXIST)
            return result;
    }
    return result;
}

} // namespace Trash
