#pragma once
// The `.trashinfo` file that lets a file manager show and restore a trashed item:
// its text, the encoding of the original path, and the trash names that keep the
// info file's name within the file system's 255 bytes. Creating the info file with
// O_EXCL is what reserves a name in the Trash.

#include "platform/Date.h"

#include <ctime>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace TrashInfo {

// Every byte outside the unreserved and path characters (ASCII letters, digits,
// "-_.!~*'()", ":@&=+$,;" and "/") as %XX, so any byte string, newlines and bytes
// that are not UTF-8 included, comes back exactly when decoded.
std::string encodePath(std::string_view path);

// `date` broken down in local time, honouring TZ as it is now.
std::tm localTime(Date date);

// "[Trash Info]", "Path=" + the encoded path, "DeletionDate=" local YYYY-MM-DDThh:mm:ss,
// each line ending in a line feed.
std::string text(std::string_view originalPath, Date deletedAt);

// The `number`-th candidate trash name for `name`: the name itself, then "name 1",
// "name 2", ...; the name is shortened (at a character boundary where it is UTF-8)
// so that the candidate plus ".trashinfo" fits in 255 bytes.
std::string candidateName(const std::string& name, unsigned number);

inline constexpr std::string_view kSuffix = ".trashinfo";

// Creates `<name>.trashinfo` inside `infoFd` with O_CREAT|O_EXCL (never replacing and
// never following a link) and writes `content` into it; the file is given to
// owner:group when the process is not that owner. Returns 0, or an errno (EEXIST:
// the name is taken). A file that could not be written whole is removed again.
int create(int infoFd, const std::string& name, const std::string& content, uid_t owner, gid_t group);

// Removes `<name>.trashinfo` inside `infoFd` (a link there is removed as a link).
void remove(int infoFd, const std::string& name);

} // namespace TrashInfo
