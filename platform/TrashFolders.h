#pragma once
// Opening (and creating) the folders of a trash by descriptors: the trash itself and
// its files/ and info/. Shared by the moves of the running user and the dated folder
// that the administrator batch fills as root on the user's behalf, so every check
// names the owner explicitly instead of taking the process's own ids.

#include "platform/SafeFs.h"

#include <string>
#include <sys/types.h>

namespace TrashFolders {

enum class Check {
    none,           // any real folder (never a link)
    owner,          // and owned by the owner
    ownerOnlyAccess // and owned by the owner, writable by nobody else (folders on shared volumes)
};

// A trash open by descriptors (O_PATH, never through a link).
struct Opened {
    std::string path; // of the trash folder itself
    SafeFs::Dir root;
    SafeFs::Dir files;
    SafeFs::Dir info;
};

// Opens `name` inside `parentFd` as a real folder, creating it (0700, given to
// owner:group) when missing. A link, or a folder failing `check`, is refused
// (ELOOP/ENOTDIR, EACCES). Returns 0 or an errno.
int openOrCreate(int parentFd, const std::string& name, uid_t owner, gid_t group, Check check,
                 SafeFs::Dir& dir);

// Opens the folder at the absolute `path` without following any link, creating the
// missing folders of its chain as openOrCreate does. A missing folder is created only
// inside a folder that belongs to the owner (or anywhere when the process is the
// owner), so a root caller never makes folders in somebody else's place.
int openOrCreatePath(const std::string& path, uid_t owner, gid_t group, SafeFs::Dir& dir);

// Opens `name` inside `parentFd` (O_RDONLY), a folder the caller has just made there
// with mkdirat, but only while it is still that folder: the process's own, empty, and
// the object the parent's entry named right after mkdirat. Whoever may write the
// parent can swap something else in meanwhile, which is never changed nor given away
// (EBUSY; ELOOP or ENOTDIR for what is not a folder). Returns 0 or an errno.
int openJustMade(int parentFd, const std::string& name, SafeFs::Dir& dir);

// Opens files/ and info/ of `trash.root`, creating them as openOrCreate does.
int openContents(Opened& trash, uid_t owner, gid_t group, Check check);

} // namespace TrashFolders
