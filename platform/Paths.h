#pragma once
// Path strings are raw bytes (std::string); nothing here assumes UTF-8.

#include <string>
#include <string_view>

namespace Paths {

// The last component: "/a/b/" -> "b", "/" -> "/", "name" -> "name".
std::string lastComponent(std::string_view path);

// The parent folder: "/a/b" -> "/a", "/a" -> "/", "/" -> "/", "name" -> "".
std::string parentFolder(std::string_view path);

// parent + "/" + name without doubling the separator.
std::string join(std::string_view parent, std::string_view name);

// The identity of a found path: the parent folder with symbolic links resolved
// (realpath), the last component appended unchanged, so a link that is itself the
// item is never followed. When the parent cannot be resolved the path is returned
// standardized.
std::string canonicalPath(std::string_view path);

// Lexical standardization: a leading "~" or "~/" expanded to the home folder,
// "." components and doubled or trailing separators removed, ".." resolved against
// the components before it. No file-system access.
std::string standardizedPath(std::string_view path);

// Number of components of an absolute path, the root "/" counting as one:
// "/" -> 1, "/Users" -> 2, "/Users/someone/Library" -> 4.
size_t componentCount(std::string_view path);

// The home-relative display form: the home folder prefix replaced by "~" (only on a
// component boundary); other paths unchanged.
std::string abbreviatingHome(std::string_view path);

// Current user's access, judged with the effective ids (faccessat AT_EACCESS).
bool isWritable(const std::string& path);
bool isReadable(const std::string& path);

} // namespace Paths
