#include "platform/MountIdentity.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

int mountIdentityAt(int dirFd, const std::string& name, MountIdentity& identity) {
    const int flags = AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | (name.empty() ? AT_EMPTY_PATH : 0);
    struct statx sx {};
    if (::statx(dirFd, name.c_str(), flags, STATX_TYPE | STATX_INO | STATX_UID | STATX_MNT_ID, &sx) == 0) {
        identity.device = makedev(sx.stx_dev_major, sx.stx_dev_minor);
        identity.inode = static_cast<ino_t>(sx.stx_ino);
        identity.mountId = (sx.stx_mask & STATX_MNT_ID) ? sx.stx_mnt_id : 0;
        identity.isMountRoot =
            (sx.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT) && (sx.stx_attributes & STATX_ATTR_MOUNT_ROOT);
        identity.isDirectory = S_ISDIR(sx.stx_mode);
        identity.owner = sx.stx_uid;
        return 0;
    }
    if (errno != ENOSYS)
        return errno;
    struct stat st {};
    if (::fstatat(dirFd, name.c_str(), &st, flags) != 0)
        return errno;
    identity = {};
    identity.device = st.st_dev;
    identity.inode = st.st_ino;
    identity.isDirectory = S_ISDIR(st.st_mode);
    identity.owner = st.st_uid;
    return 0;
}
