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

uid_t realUserID();
gid_t realGroupID();

} // namespace Environment
