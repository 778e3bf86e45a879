#pragma once
// Puts a trashed item back the way a file manager does: reads its info file, decodes
// Path= and renames the item there. Written from the trash layout alone, sharing no
// code with the side that trashes, so a wrong encoding cannot cancel itself out.

#include <string>

struct Restored {
    std::string original; // where the item went back to; empty on failure
    std::string problem;  // why it could not, for failure messages
};

// `trashed` is <trash>/files/<name>. A relative Path= is taken from the folder that
// holds the trash (a mount's .Trash-<uid>). The info file is removed afterwards.
Restored restoreFromTrash(const std::string& trashed);
