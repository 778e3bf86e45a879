#pragma once
// Pieces of SafeFs shared with Trash and exercised directly by the tests.

#include "platform/SafeFs.h"

#include <string>
#include <vector>

namespace SafeFs {

// Splits an absolute path into its components (doubled and trailing separators
// ignored). EINVAL for a relative path, "/", an embedded NUL byte, or a "." or ".."
// component.
int splitAbsolutePath(const std::string& path, std::vector<std::string>& components);

// openParent without openat2: one openat(O_PATH | O_DIRECTORY | O_NOFOLLOW) per
// component from "/". Used where openat2 is unavailable or the path is too long for it.
int openParentByComponents(const std::string& path, Dir& dir, std::string& name);

// Opens the directory at an absolute path (the path itself included) without
// following any link; `dir` is an O_PATH descriptor. Returns 0 or an errno.
int openDirectory(const std::string& path, Dir& dir);

} // namespace SafeFs
