#pragma once
// Where Linux keeps the same kinds of junk as the rule table's places: sources that
// each rule walks after its own, and the Linux folders that no rule may offer. Kept
// apart from the rule table so that the two read side by side and the table stays as
// it is. Built once on first use from the environment of that moment; thread-safe.

#include "catalogue/Rule.h"

#include <array>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace LinuxLocations {

// The Linux sources of the rule with this id, in order; empty for a rule without
// any. Cache, config and data folders follow $XDG_CACHE_HOME, $XDG_CONFIG_HOME and
// $XDG_DATA_HOME; the temporary folders "/tmp" and "/var/tmp" are added only when
// $TMPDIR does not name one.
const std::vector<Source>& additions(std::string_view ruleID);

// Everything the scanner walks for `rule`, in order: the rule's own sources (the
// application's own caches left out of "~/.cache"), then those of its additions that
// are not already among them.
const std::vector<Source>& sourcesOf(const Rule& rule);

// True for a rule that offers, from its folders, only the entries the real user owns:
// the temporary folders are shared among users, and another user's file would only
// reach the administrator batch.
bool offersOnlyOwnEntries(const Rule& rule);

// Linux system folders and the home folder's Linux folders; never offered.
const std::set<std::string>& protectedPaths();

// The home folder's protected Linux folders, relative to it.
inline constexpr std::array<std::string_view, 10> protectedHomeFolders{
    ".local", ".local/share", ".local/share/Trash", ".local/share/Trash/files", ".config", ".var", ".var/app",
    "snap",   "Videos",       "Templates"};

// The application's own caches in "~/.cache", which it never offers.
inline constexpr std::array<std::string_view, 2> ownCacheNames{"Veltro", "qtshadercache"};

} // namespace LinuxLocations
