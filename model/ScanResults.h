#pragma once
// How found items are arranged wherever a list is shown: shared by the model and
// the headless commands so the two can never disagree.

#include "catalogue/CleanCategory.h"
#include "catalogue/ScanItem.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

using ScanItems = std::vector<ScanItem>;
using ItemsByCategory = std::map<std::string, ScanItems>;
using ItemIDs = std::set<std::string>;

namespace ScanResults {

// Largest size first, an unknown size counting as -1, stable for equal sizes.
ScanItems sortedForDisplay(ScanItems items);

// Grouped by categoryID, each group sorted for display; a category without items
// has no key.
ItemsByCategory groupedByCategory(const ScanItems& items);

// Sum of the known sizes (unknown counts 0).
int64_t totalSize(const ScanItems& items);

// Ids of the items of recommended categories that are not removed by a command.
ItemIDs recommendedIDs(const ScanItems& items, const std::vector<CleanCategory>& categories);

// `items` without those whose id is in `removed`, order kept.
ScanItems without(const ScanItems& items, const ItemIDs& removed);

} // namespace ScanResults
