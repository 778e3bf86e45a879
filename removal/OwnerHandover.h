#pragma once
// Handing what the administrator batch moved to the user, so the user can empty it
// later without administrator rights.

#include "platform/SafeFs.h"

#include <string>
#include <sys/types.h>

namespace OwnerHandover {

struct Outcome {
    int error = 0;           // the first errno met, ECANCELED when stopped; 0 when none
    bool leftToRoot = false; // device files, or pipes and sockets of root's, stayed as they were
};

// Gives `name` inside `parentFd` and, for a folder, everything below it to uid:gid,
// walking by descriptors with a bounded number open (any depth), never following a
// link (a link gets the owner itself), never entering another mount (a mount point
// and what is mounted on it stay as they are), and never changing a file that has
// other names (hard links), which may lie outside. Device files, and root's pipes and
// sockets, stay as they are: owning one would give the user the device, or a say in
// what root's programs talk through. Folders change owner after their contents, so
// nobody else can change a folder while it is walked. It carries on past failures,
// and ends where it is when `stop` asks, leaving the rest as it was.
Outcome handOver(int parentFd, const std::string& name, uid_t uid, gid_t gid,
                 const SafeFs::StopRequested& stop = {});

} // namespace OwnerHandover
