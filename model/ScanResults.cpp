#include "model/ScanResults.h"

#include <algorithm>
#include <unordered_set>

namespace ScanResults {

ScanItems sortedForDisplay(ScanItems items) {
    std::stable_sort(items.begin(), items.end(),
                     [](const ScanItem& a, const ScanItem& b) { return a.sortSize() > b.sortSize(); });
    return items;
}

ItemsByCategory groupedByCategory(const ScanItems& items) {
    ItemsByCategory grouped;
    for (const ScanItem& item : items)
        grouped[item.categoryID].push_back(item);
    for (auto& [id, list] : grouped)
        list = sortedForDisplay(std::move(list));
    return grouped;
}

int64_t totalSize(const ScanItems& items) {
    int64_t sum = 0;
    for (const ScanItem& item : items)
        sum += item.size.value_or(0);
    return sum;
}

ItemIDs recommendedIDs(const ScanItems& items, const std::vector<CleanCategory>& categories) {
    std::unordered_set<std::string> recommended;
    for (const CleanCategory& category : categories)
        if (category.selectedByDefault)
            recommended.insert(category.id);
    ItemIDs ids;
    for (const ScanItem& item : items)
        if (recommended.contains(item.categoryID) && !item.method.isCommand())
            ids.insert(item.id);
    return ids;
}

ScanItems without(const ScanItems& items, const ItemIDs& removed) {
    ScanItems kept;
    kept.reserve(items.size());
    for (const ScanItem& item : items)
        if (!removed.contains(item.id))
            kept.push_back(item);
    return kept;
}

} // namespace ScanResults
