#include "platform/Trash.h"

#include "platform/Date.h"
#include "platform/Environment.h"
#include "platform/MountIdentity.h"
#include "platform/MountPoints.h"
#include "platform/Paths.h"
#include "platform/SafeFs.h"
#include "platform/SafeFsInternals.h"
#include "platform/TrashFolders.h"
#include "platform/TrashInfo.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Trash {

namespace {

// Bounds the search for a free name on a trash that claims every name is taken.
constexpr unsigned kMaxNumber = 100000;

std::string mountTrashName() {
    return ".Trash-" + std::to_string(Environment::realUserID());
}

// The folder the user named, with the links in its path resolved once: a home under
// a linked /home is the user's own setting, not an attack. The trash inside it is
// never resolved, so a link there is refused like any other.
std::string resolved(const std::string& folder) {
    char* real = ::realpath(folder.c_str(), nullptr);
    const std::string result = real ? real : folder;
    std::free(real);
    return result;
}

std::string readHomeTrashFolder() {
    const char* data = std::getenv("XDG_DATA_HOME");
    if (data && data[0] == '/')
        return Paths::join(resolved(Paths::standardizedPath(data)), "Trash");
    return Paths::join(resolved(Environment::homeFolder()), ".local/share/Trash");
}

bool isTaken(int folderFd, const std::string& name) {
    struct stat st {};
    return ::fstatat(folderFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isGone(int folderFd, const std::string& name) {
    struct stat st {};
    return ::fstatat(folderFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0 && errno == ENOENT;
}

// The mount of the folder at `path`, or of its nearest existing ancestor: a trash
// not made yet will be made on that mount.
int volumeOfNearest(std::string path, MountIdentity& volume) {
    for (;;) {
        SafeFs::Dir dir;
        const int error = SafeFs::openDirectory(path, dir);
        if (error == 0)
            return mountIdentityAt(dir.fd(), "", volume);
        if (error != ENOENT || path == "/")
            return error;
        path = Paths::parentFolder(path);
    }
}

// The outermost folder of `path` (a folder) that is still on `volume`.
std::string mountPointOf(std::string path, const MountIdentity& volume) {
    while (path != "/") {
        const std::string up = Paths::parentFolder(path);
        MountIdentity identity;
        if (mountIdentityAt(AT_FDCWD, up, identity) != 0 || !identity.sameMount(volume))
            break;
        path = up;
    }
    return path;
}

// Opens the trash for an item at `path` whose parent folder is open as `parentFd`,
// and says what the info file records as its original place.
int openTrashFor(int parentFd, const std::string& path, TrashFolders::Opened& trash, std::string& recorded) {
    MountIdentity itemVolume;
    if (const int error = mountIdentityAt(parentFd, "", itemVolume))
        return error;
    const uid_t uid = ::geteuid();
    const gid_t gid = ::getegid();

    const std::string& home = homeTrashFolder();
    MountIdentity homeVolume;
    if (const int error = volumeOfNearest(home, homeVolume))
        return error;
    if (homeVolume.sameMount(itemVolume)) {
        trash.path = home;
        recorded = path;
        if (const int error = TrashFolders::openOrCreatePath(home, uid, gid, trash.root))
            return error;
        return TrashFolders::openContents(trash, uid, gid, TrashFolders::Check::none);
    }

    const std::string mountPoint = mountPointOf(Paths::parentFolder(path), itemVolume);
    SafeFs::Dir mountDir;
    if (const int error = SafeFs::openDirectory(mountPoint, mountDir))
        return error;
    MountIdentity opened;
    if (const int error = mountIdentityAt(mountDir.fd(), "", opened))
        return error;
    if (!opened.sameMount(itemVolume))
        return EXDEV;
    // A volume is shared between users: its trash must be ours alone.
    constexpr auto check = TrashFolders::Check::ownerOnlyAccess;
    if (const int error =
            TrashFolders::openOrCreate(mountDir.fd(), mountTrashName(), uid, gid, check, trash.root))
        return error;
    trash.path = Paths::join(mountPoint, mountTrashName());
    recorded = mountPoint == "/" ? path.substr(1) : path.substr(mountPoint.size() + 1);
    return TrashFolders::openContents(trash, uid, gid, check);
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

// Directly inside the files/ folder of the home trash or of a mount's trash of ours.
bool liesInTrashFiles(const std::string& path) {
    const std::string files = Paths::parentFolder(path);
    if (Paths::lastComponent(files) != "files")
        return false;
    const std::string trash = Paths::parentFolder(files);
    return trash == homeTrashFolder() || Paths::lastComponent(trash) == mountTrashName();
}

} // namespace

const std::string& homeTrashFolder() {
    static const std::string folder = readHomeTrashFolder();
    return folder;
}

MoveResult moveToTrash(const std::string& path) {
    MoveResult result;
    SafeFs::Dir parent;
    std::string name;
    if ((result.error = SafeFs::openParent(path, parent, name)))
        return result;
    struct stat st {};
    if (::fstatat(parent.fd(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0) {
        result.error = errno;
        return result;
    }
    // The parent was opened without links, so `path` is where the folder really is.
    if (S_ISDIR(st.st_mode) && (result.error = MountPoints::checkNoneWithin(Paths::standardizedPath(path))))
        return result;
    TrashFolders::Opened trash;
    std::string recorded;
    if ((result.error = openTrashFor(parent.fd(), path, trash, recorded)))
        return result;

    const std::string info = TrashInfo::text(recorded, Dates::now());
    for (unsigned number = 0; number <= kMaxNumber; ++number) {
        const std::string target = TrashInfo::candidateName(name, number);
        if (isTaken(trash.files.fd(), target))
            continue;
        result.error = TrashInfo::create(trash.info.fd(), target, info, ::geteuid(), ::getegid());
        if (result.error == EEXIST)
            continue;
        if (result.error != 0)
            return result;
        result.error = renameWithoutReplacing(parent.fd(), name, trash.files.fd(), target);
        if (result.error == 0) {
            result.location = Paths::join(trash.path, "files/" + target);
            return result;
        }
        TrashInfo::remove(trash.info.fd(), target);
        // Another process took the name between the look and the rename.
        if (result.error != EEXIST)
            return result;
    }
    result.error = EEXIST;
    return result;
}

int deleteForGood(const std::string& path, const SafeFs::StopRequested& stop) {
    SafeFs::Dir parent;
    std::string name;
    if (const int error = SafeFs::openParent(path, parent, name))
        return error;
    const int error = SafeFs::removeTree(parent.fd(), name, stop);
    if (!liesInTrashFiles(path) || !isGone(parent.fd(), name))
        return error;
    // Through the files/ folder that held the item, so its own trash is the one meant.
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    const SafeFs::Dir trash(::openat(parent.fd(), "..", flags));
    if (!trash)
        return error;
    const SafeFs::Dir info(::openat(trash.fd(), "info", flags));
    if (info)
        TrashInfo::remove(info.fd(), name);
    return error;
}

bool isInsideTrash(const std::string& path) {
    const std::string mountTrashFiles = "/" + mountTrashName() + "/files/";
    return path.find("/.Trash/") != std::string::npos || path.find("/.Trashes/") != std::string::npos ||
           path.starts_with(homeTrashFolder() + "/files/") || path.find(mountTrashFiles) != std::string::npos;
}

} // namespace Trash
