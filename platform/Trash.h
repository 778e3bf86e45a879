#pragma once
// Moving items into the Trash by renaming, never by copy-and-delete. The home
// volume's Trash is ~/.Trash; another volume's is <mount point>/.Trashes/<uid>.

#include <string>

namespace Trash {

struct MoveResult {
    int error = 0;        // 0, or the errno that stopped the move (EACCES/EPERM: a permission error)
    std::string location; // the new path when error == 0
};

// The Trash folder for an item at `path` (created 0700 when missing).
// Returns 0 or an errno.
int trashFolderFor(const std::string& path, std::string& folder);

// The first free name in `folderFd` among "name", "name 1", "name 2", ...; a name
// near the 255-byte limit is shortened at a UTF-8 character boundary so the suffix
// fits. Existing entries, dangling links included, are never overwritten.
std::string freeName(int folderFd, const std::string& name);

// Renames the item (opened safely, see SafeFs) into its volume's Trash under a free
// name. Never follows a link in the item's parent chain.
MoveResult moveToTrash(const std::string& path);

} // namespace Trash
