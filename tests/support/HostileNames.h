#pragma once
// File names that trick shells, scripts and path handling: quotes, substitutions
// that would create the marker file, newlines, leading dashes, globs, invalid UTF-8,
// names at the 255-byte limit. Every suite that removes or moves things runs them.

#include <string>
#include <vector>

const std::vector<std::string>& hostileNames();

// The file a name's command substitution would create if a shell ever ran it.
inline constexpr const char* kInjectionMarker = "PWNED";
