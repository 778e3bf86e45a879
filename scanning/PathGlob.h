#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace PathGlob {

// Expands a rule pattern into the existing paths it names: "~", "~/" and "~user"
// stand for home folders; components with "*", "?" or "[" are matched with fnmatch
// (no flags, so "*" matches dot names) against each folder's listing, in listing
// order; literal components must exist by lstat (a dangling link counts). No
// sorting, no de-duplication; the root itself is never returned. Never fails: what
// cannot be read narrows the result.
std::vector<std::string> expand(std::string_view pattern);

} // namespace PathGlob
