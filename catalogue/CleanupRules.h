#pragma once
// The built-in knowledge of where junk lies. Built once on first use, thread-safe,
// never changed while the process runs. The order of `rules` is behaviour: the
// first rule to reach a path owns it.

#include "catalogue/CleanCategory.h"
#include "catalogue/Rule.h"

#include <set>
#include <string>
#include <vector>

namespace CleanupRules {

// The 22 rules in table order.
const std::vector<Rule>& rules();

// The rules' categories arranged by group (declaration order), table order within a
// group: the one display order everywhere.
const std::vector<CleanCategory>& categories();

// Absolute paths never offered, compared as exact strings with canonical paths.
const std::set<std::string>& protectedPaths();

// Generated source lists (102, 14 and 7 sources).
std::vector<Source> browserSources();
std::vector<Source> electronSources();
std::vector<Source> sandboxSources();

// The application's own bundle identifiers, excluded from the user caches.
inline constexpr const char* bundleIdentifier = "app.veltro.Veltro";
inline constexpr const char* earlierBundleIdentifier = "app.veltro.cleaner";

// Id of the one category filled by the large-file search.
inline constexpr const char* largeFilesCategoryID = "large.files";

} // namespace CleanupRules
