#pragma once
// Facts about the running user and process that every layer needs. Each is read
// once per process and then kept, so all parts of one run agree on them.

#include <string>
#include <sys/types.h>

namespace Environment {

// $HOME when set and absolute, else the password-database entry of the real user
// id. Never ends in "/" (unless it is "/" itself).
const std::string& homeFolder();

// $TMPDIR when set and absolute (trailing "/" removed), else "/tmp".
const std::string& temporaryFolder();

// True when the temporary folder came from $TMPDIR rather than the "/tmp" default.
bool temporaryFolderIsSet();

// The user the process works for: its real user, or, in the privileged helper running
// as root, the user who asked for the work (see workFor).
uid_t realUserID();
gid_t realGroupID();

// Makes `uid`/`gid` the user the process works for. Called once by the privileged
// helper, before anything asks, so the trash folders and owners it derives are the
// user's and not root's.
void workFor(uid_t uid, gid_t gid);

} // namespace Environment
