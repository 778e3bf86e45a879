#pragma once
// The dated folder of the administrator batch: <home trash>/files/Veltro-<stamp>,
// with its own .trashinfo so that the file manager shows it (and can put it back in
// the home folder). The batch runs as root on the user's behalf, so nothing here is
// read from the process's environment or ids: the home folder, the home trash and
// the owner are given, the trash must belong to that owner, and whatever is created
// is handed to the owner.

#include "platform/Date.h"
#include "platform/SafeFs.h"

#include <string>
#include <sys/types.h>

namespace Trash {

struct DatedFolder {
    int error = 0;        // 0, or the errno that stopped its creation (nothing is left behind then)
    SafeFs::Dir folder;   // the dated folder, opened O_RDONLY | O_DIRECTORY, never through a link
    std::string location; // <trash folder>/files/<name>
    std::string name;     // "Veltro-<yyyyMMdd-HHmmss>", or with " 1", " 2", ... when that was taken
    SafeFs::Dir files;    // the trash's files/ and info/, for removeDatedFolderIfEmpty
    SafeFs::Dir info;
};

// Creates the dated folder for the local time `now` inside `trashFolder` (absolute,
// free of links; its missing folders are created 0700 for the owner). A name that
// exists is never merged into: the next free one is taken. The info file (Path= the
// home folder joined with the name) reserves the name and is made first, owner:group's;
// the folder is made with mkdirat 0700 and stays the process's own until
// handOverDatedFolder. A trash folder, files/ or info/ that is a link (ELOOP/ENOTDIR)
// or belongs to someone else (EACCES) is refused, and so is a folder swapped in for
// the one made (EBUSY).
DatedFolder createDatedFolder(const std::string& homeFolder, const std::string& trashFolder, uid_t owner,
                              gid_t group, Date now);

// Gives the dated folder to owner:group, once everything moved into it is theirs.
// Returns 0 or an errno.
int handOverDatedFolder(DatedFolder& folder, uid_t owner, gid_t group);

// Removes the dated folder and its info file when nothing is in the folder; a folder
// that holds something stays as it is with its info file. Returns 0, or the errno
// of the folder's removal (ENOTEMPTY when something was moved into it).
int removeDatedFolderIfEmpty(DatedFolder& folder);

} // namespace Trash
