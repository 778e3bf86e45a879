#pragma once
// The desktop's Trash (the freedesktop.org layout), so that what Veltro moves can be
// put back from the file manager. The home trash is $XDG_DATA_HOME/Trash (else
// ~/.local/share/Trash); an item on another mount goes to that mount's own
// .Trash-<uid>, never copied across. Each trashed item has its info file in info/.

#include "platform/SafeFs.h"

#include <string>

namespace Trash {

struct MoveResult {
    int error = 0;        // 0, or the errno that stopped the move (EACCES/EPERM: a permission error)
    std::string location; // <trash>/files/<name> when error == 0
};

// $XDG_DATA_HOME/Trash when that variable is an absolute path, else
// <home>/.local/share/Trash; the links in the path of $XDG_DATA_HOME or of the home
// folder are resolved (the user's own setting, like a home under a linked /home).
// Read once per process.
const std::string& homeTrashFolder();

// Moves the item (its parent chain opened without following links) into its mount's
// trash by renaming: a free name is reserved by creating its info file first, and
// the info file goes again if the rename fails. EXDEV and every other refusal is an
// error, never a copy; a folder with something mounted inside it is not moved (EBUSY).
MoveResult moveToTrash(const std::string& path);

// Deletes the item for good (SafeFs::removeItem). When it lay directly in a trash's
// files/ folder and is gone, its info file goes too (a link there is removed as a
// link; an info/ that is a link is left alone). Returns 0 or the removal's errno
// (ECANCELED when `stop` ended it part way).
int deleteForGood(const std::string& path, const SafeFs::StopRequested& stop = {});

// Whether the standardized absolute `path` lies inside a trash folder: the home
// trash's files/, a mount's .Trash-<uid>/files/, or a ".Trash" or ".Trashes" folder.
bool isInsideTrash(const std::string& path);

} // namespace Trash
