#pragma once
// Which mount a file-system object lives on. The device number alone misses bind
// mounts of the same file system (and the loops they can form), so the kernel's
// mount id is compared too where the kernel reports one.

#include <cstdint>
#include <string>
#include <sys/types.h>

struct MountIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    uint64_t mountId = 0;     // 0 when the kernel does not report it
    bool isMountRoot = false; // the object is the root of a mount (only when reported)
    bool isDirectory = false;
    uid_t owner = 0;

    // Same mount: same device and, when both ids are known, the same mount id.
    bool sameMount(const MountIdentity& other) const {
        return device == other.device && (mountId == 0 || other.mountId == 0 || mountId == other.mountId);
    }
    bool sameObject(const MountIdentity& other) const {
        return device == other.device && inode == other.inode;
    }
};

// Identity of `name` inside `dirFd` without following a final link or triggering an
// automount; an empty `name` means `dirFd` itself. Returns 0 or an errno.
int mountIdentityAt(int dirFd, const std::string& name, MountIdentity& identity);
