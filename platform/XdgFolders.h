#pragma once
// The desktop's per-user folders (XDG base directories and the user's download
// folder). Each is read once per process, like the home folder, so all parts of one
// run agree on them.

#include <optional>
#include <string>
#include <string_view>

namespace XdgFolders {

// $XDG_CACHE_HOME, $XDG_CONFIG_HOME and $XDG_DATA_HOME when set to an absolute path
// (standardized: no trailing "/", "." or ".."); otherwise, and for an empty or relative value, the home
// folder joined with ".cache", ".config" and ".local/share".
const std::string& cacheHome();
const std::string& configHome();
const std::string& dataHome();

// The download folder named in "user-dirs.dirs" of the config folder; none when the
// file is missing, names none, or names the home folder itself (or the root).
const std::optional<std::string>& downloadFolder();

// The download folder that the text of a "user-dirs.dirs" file names for `home`: the
// last valid XDG_DOWNLOAD_DIR line, its value in double quotes with backslash escapes,
// either "$HOME" or "$HOME/…" or an absolute "/…", trailing "/" removed.
std::optional<std::string> downloadFolderIn(std::string_view text, const std::string& home);

} // namespace XdgFolders
