#pragma once
// Where a scan looks: per category, the existing folders it searches, so that a
// report can show which places were looked at (the Linux ones among them). Costs one
// expansion of each rule's patterns, nothing per found item.

#include "scanning/ScanOptions.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace SearchedPlaces {

// Category id -> folders, each once, in the order the scan meets them.
using PerCategory = std::unordered_map<std::string, std::vector<std::string>>;

// For each rule a scan with `options` walks (the Full Disk Access rules only with
// access): the folders its `children` sources list, the folders in which its `items`
// sources look for their last component, and for the large category the roots of the
// large-file search. Folders that do not exist are left out.
PerCategory of(const ScanOptions& options);

} // namespace SearchedPlaces
