#pragma once
// How found items are arranged wherever a list is shown: shared by the model and
// the headless commands so the two can never disagree. Items are held once, in the
// scanner's order; a category's display order is a list of positions into them.

#include "catalogue/CleanCategory.h"
#include "catalogue/ScanItem.h"

#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

using ScanItems = std::vector<ScanItem>;
// Positions in a ScanItems list.
using ItemPositions = std::vector<uint32_t>;
using ItemsByCategory = std::map<std::string, ItemPositions>;
using ItemIDs = std::unordered_set<std::string>;

// One category's items in display order, read through the list they are held in.
// Valid while that list is unchanged.
class CategoryItems {
public:
    class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = ScanItem;
        using difference_type = std::ptrdiff_t;
        using pointer = const ScanItem*;
        using reference = const ScanItem&;

        Iterator() = default;
        Iterator(const ScanItems* all, ItemPositions::const_iterator at) : all_(all), at_(at) {}
        const ScanItem& operator*() const { return (*all_)[*at_]; }
        const ScanItem* operator->() const { return &(*all_)[*at_]; }
        Iterator& operator++() {
            ++at_;
            return *this;
        }
        Iterator operator++(int) {
            Iterator before = *this;
            ++at_;
            return before;
        }
        bool operator==(const Iterator& other) const { return at_ == other.at_; }

    private:
        const ScanItems* all_ = nullptr;
        ItemPositions::const_iterator at_;
    };

    CategoryItems(const ScanItems& all, const ItemPositions& positions)
        : all_(&all), positions_(&positions) {}

    size_t size() const { return positions_->size(); }
    bool empty() const { return positions_->empty(); }
    const ScanItem& operator[](size_t index) const { return (*all_)[(*positions_)[index]]; }
    Iterator begin() const { return {all_, positions_->begin()}; }
    Iterator end() const { return {all_, positions_->end()}; }
    const ItemPositions& positions() const { return *positions_; }

private:
    const ScanItems* all_;
    const ItemPositions* positions_;
};

namespace ScanResults {

// `positions` (of items of `all`) put largest size first, an unknown size counting as
// -1, stable for equal sizes.
void sortForDisplay(const ScanItems& all, ItemPositions& positions);

// Positions grouped by categoryID, each group in display order; a category without
// items has no key.
ItemsByCategory groupedByCategory(const ScanItems& items);

// Sum of the known sizes (unknown counts 0).
int64_t totalSize(const ScanItems& items);
int64_t totalSize(const std::vector<const ScanItem*>& items);

// Ids of the items of recommended categories that are not removed by a command.
ItemIDs recommendedIDs(const ScanItems& items, const std::vector<CleanCategory>& categories);

// `items` without those whose id is in `removed`, order kept.
ScanItems without(ScanItems items, const ItemIDs& removed);

} // namespace ScanResults
