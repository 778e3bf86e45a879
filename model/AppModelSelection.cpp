// Selection and the totals derived from it.

#include "model/AppModel.h"

#include "catalogue/CleanupRules.h"
#include "model/AppModelChanges.h"
#include "model/ItemKey.h"

namespace {

std::optional<CategoryGroup> groupNamed(const QString& group) {
    return CategoryGroups::fromRawValue(group.toStdString());
}

} // namespace

CategoryItems AppModel::itemsOf(const std::string& categoryID) const {
    static const ItemPositions none;
    const auto found = itemsByCategory_.find(categoryID);
    return CategoryItems(items_, found == itemsByCategory_.end() ? none : found->second);
}

std::vector<CleanCategory> AppModel::categoriesOf(CategoryGroup group) const {
    std::vector<CleanCategory> out;
    for (const CleanCategory& category : categories())
        if (category.group == group)
            out.push_back(category);
    return out;
}

std::optional<CleanCategory> AppModel::category(const QString& id) const {
    const std::string wanted = id.toStdString();
    for (const CleanCategory& category : categories())
        if (category.id == wanted)
            return category;
    return std::nullopt;
}

qint64 AppModel::totalSize(const QString& categoryID) const {
    qint64 sum = 0;
    for (const ScanItem& item : itemsOf(categoryID.toStdString()))
        sum += item.size.value_or(0);
    return sum;
}

qint64 AppModel::selectedSize(const QString& categoryID) const {
    qint64 sum = 0;
    if (!selection_.empty())
        for (const ScanItem& item : itemsOf(categoryID.toStdString()))
            if (selection_.contains(item.id))
                sum += item.size.value_or(0);
    return sum;
}

int AppModel::selectedCount(const QString& categoryID) const {
    int count = 0;
    if (!selection_.empty())
        for (const ScanItem& item : itemsOf(categoryID.toStdString()))
            if (selection_.contains(item.id))
                ++count;
    return count;
}

int AppModel::itemCountOf(const QString& categoryID) const {
    return static_cast<int>(itemsOf(categoryID.toStdString()).size());
}

qint64 AppModel::totalSize(CategoryGroup group) const {
    qint64 sum = 0;
    for (const CleanCategory& category : categoriesOf(group))
        sum += totalSize(QString::fromStdString(category.id));
    return sum;
}

AppModel::CategoryScanState AppModel::stateOf(const QString& categoryID) const {
    const auto found = categoryState_.find(categoryID.toStdString());
    return found == categoryState_.end() ? CategoryScanState::pending : found->second;
}

AppModel::CategoryScanState AppModel::state(CategoryGroup group) const {
    bool allDone = true, anyScanning = false, anyDone = false;
    for (const CleanCategory& category : categoriesOf(group)) {
        const CategoryScanState state = stateOf(QString::fromStdString(category.id));
        allDone = allDone && state == CategoryScanState::done;
        anyScanning = anyScanning || state == CategoryScanState::scanning;
        anyDone = anyDone || state == CategoryScanState::done;
    }
    if (allDone)
        return CategoryScanState::done; // also for a group without categories
    if (anyScanning || anyDone)
        return CategoryScanState::scanning;
    return CategoryScanState::pending;
}

ScanItems AppModel::selectedItems() const {
    ScanItems out;
    if (!selection_.empty())
        for (const ScanItem& item : items_)
            if (selection_.contains(item.id))
                out.push_back(item);
    return out;
}

ScanItems AppModel::itemsToClean() const {
    if (cleanScope_.isEmpty())
        return selectedItems();
    ScanItems out;
    if (!selection_.empty())
        for (const ScanItem& item : itemsOf(cleanScope_.toStdString()))
            if (selection_.contains(item.id))
                out.push_back(item);
    return out;
}

qint64 AppModel::itemsToCleanTotal() const {
    return cleanScope_.isEmpty() ? selectedTotal() : selectedSize(cleanScope_);
}

const ScanItem* AppModel::findItem(const std::string& id) const {
    for (const ScanItem& item : items_)
        if (item.id == id)
            return &item;
    return nullptr;
}

// Ticks change in place: a copy of the whole set per tick would make ticking every
// item of a long list cost the square of its length.
void AppModel::setSelected(const std::string& id, bool on) {
    if (selection_.contains(id) == on)
        return;
    Changes changes(*this);
    if (on)
        selection_.insert(id);
    else
        selection_.erase(id);
    announce(changes, &AppModel::selectionChanged);
}

void AppModel::setAll(const QString& categoryID, bool on) {
    const CategoryItems list = itemsOf(categoryID.toStdString());
    if (list.empty())
        return;
    Changes changes(*this);
    bool changed = false;
    if (on)
        selection_.reserve(selection_.size() + list.size());
    for (const ScanItem& item : list)
        changed = (on ? selection_.insert(item.id).second : selection_.erase(item.id) > 0) || changed;
    if (changed)
        announce(changes, &AppModel::selectionChanged);
}

void AppModel::selectRecommended() {
    Changes changes(*this);
    const size_t before = selection_.size();
    selection_.merge(ScanResults::recommendedIDs(items_, categories()));
    if (selection_.size() != before)
        announce(changes, &AppModel::selectionChanged);
}

void AppModel::clearSelection() {
    if (selection_.empty())
        return;
    Changes changes(*this);
    selection_.clear();
    announce(changes, &AppModel::selectionChanged);
}

void AppModel::setItemSelected(const QString& key, bool on) {
    setSelected(ItemKey::toID(key), on);
}

bool AppModel::isItemSelected(const QString& key) const {
    return isSelected(ItemKey::toID(key));
}

QStringList AppModel::categoryIDsOf(const QString& group) const {
    QStringList ids;
    if (const auto named = groupNamed(group))
        for (const CleanCategory& category : categoriesOf(*named))
            ids.append(QString::fromStdString(category.id));
    return ids;
}

qint64 AppModel::groupTotalSize(const QString& group) const {
    const auto named = groupNamed(group);
    return named ? totalSize(*named) : 0;
}

int AppModel::groupState(const QString& group) const {
    const auto named = groupNamed(group);
    return static_cast<int>(named ? state(*named) : CategoryScanState::done);
}

int AppModel::categoryScanState(const QString& categoryID) const {
    return static_cast<int>(stateOf(categoryID));
}
