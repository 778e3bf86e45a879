#include "model/ScanResults.h"

#include <algorithm>

namespace ScanResults {

void sortForDisplay(const ScanItems& all, ItemPositions& positions) {
    std::stable_sort(positions.begin(), positions.end(),
                     [&all](uint32_t a, uint32_t b) { return all[a].sortSize() > all[b].sortSize(); });
}

ItemsByCategory groupedByCategory(const ScanItems& items) {
    ItemsByCategory grouped;
    // Items of one category mostly come together: look the group up once per run.
    ItemPositions* group = nullptr;
    const std::string* groupID = nullptr;
    for (uint32_t i = 0; i < items.size(); ++i) {
        if (!groupID || *groupID != items[i].categoryID) {
            groupID = &items[i].categoryID;
            group = &grouped[*groupID];
        }
        group->push_back(i);
    }
    for (auto& [id, positions] : grouped)
        sortForDisplay(items, positions);
    return grouped;
}

int64_t totalSize(const ScanItems& items) {
    int64_t sum = 0;
    for (const ScanItem& item : items)
        sum += item.size.value_or(0);
    return sum;
}

int64_t totalSize(const std::vector<const ScanItem*>& items) {
    int64_t sum = 0;
    for (const ScanItem* item : items)
        sum += item->size.value_or(0);
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

ScanItems without(ScanItems items, const ItemIDs& removed) {
    std::erase_if(items, [&removed](const ScanItem& item) { return removed.contains(item.id); });
    return items;
}

} // namespace ScanResults
