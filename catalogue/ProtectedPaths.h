#pragma once
// The one test of whether a path may never be offered or removed, shared by the
// scanner, the cleaner and the privileged helper.

#include <string_view>

namespace ProtectedPaths {

// True for the rule table's protected paths, the Linux ones, and, when the home
// folder is reached through a symbolic link, the resolved home folder and its
// protected folders under that spelling too. `path` is compared as an exact string:
// pass a canonical or standardized absolute path.
bool contains(std::string_view path);

} // namespace ProtectedPaths
