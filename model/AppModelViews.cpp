// Read-only shapes of the model's state for the views: plain maps and lists, so the
// screens stay free of logic that could drift from the model's.

#include "model/AppModel.h"

#include "catalogue/CleanupRules.h"
#include "model/CleanPlan.h"
#include "model/ItemKey.h"
#include "systemdata/SystemDataAreas.h"

#include <QColor>

#include <algorithm>
#include <ranges>
#include <sys/stat.h>

namespace {

QColor colorOf(const Rgb& rgb) {
    return QColor::fromRgbF(float(rgb.red), float(rgb.green), float(rgb.blue));
}

QVariantMap categoryMap(const CleanCategory& category) {
    return {
        {"categoryId", QString::fromStdString(category.id)},
        {"group", QString::fromUtf8(CategoryGroups::rawValue(category.group))},
        {"groupTitle", QString::fromStdString(CategoryGroups::title(category.group))},
        {"title", QString::fromStdString(category.title)},
        {"detail", QString::fromStdString(category.detail)},
        {"symbol", QString::fromStdString(category.symbol)},
        {"tint", colorOf(CategoryGroups::tint(category.group))},
        {"risk", QString::fromUtf8(Risks::name(category.risk))},
        {"riskLabel", QString::fromStdString(Risks::label(category.risk))},
        {"selectedByDefault", category.selectedByDefault},
    };
}

QStringList names(const CleanPlan::Items& items) {
    QStringList out;
    for (const ScanItem* item : items)
        out << ItemKey::displayText(item->name);
    return out;
}

} // namespace

QVariantList AppModel::ranking() const {
    // Each category's total once: the sort compares them many times.
    struct Ranked {
        const CleanCategory* category;
        qint64 total;
    };
    std::vector<Ranked> ranked;
    for (const CleanCategory& category : categories()) {
        const QString id = QString::fromStdString(category.id);
        if (stateOf(id) != CategoryScanState::done || itemCountOf(id) == 0)
            continue;
        if (const qint64 total = totalSize(id); total > 0)
            ranked.push_back({&category, total});
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const Ranked& a, const Ranked& b) { return a.total > b.total; });
    if (ranked.size() > 8)
        ranked.resize(8);
    const double largest = ranked.empty() ? 1.0 : std::max<double>(1.0, double(ranked.front().total));
    QVariantList out;
    for (const Ranked& entry : ranked) {
        const QString id = QString::fromStdString(entry.category->id);
        QVariantMap row = categoryMap(*entry.category);
        row.insert("total", entry.total);
        row.insert("fraction", double(entry.total) / largest);
        row.insert("count", itemCountOf(id));
        row.insert("checked", selectedCount(id));
        out.append(row);
    }
    return out;
}

QVariantList AppModel::largestItems() const {
    // The first eight of the order only: picked in one pass, not by sorting everything.
    // Ties keep the scanner's order, as a stable sort would.
    std::vector<const ScanItem*> top;
    const auto before = [](const ScanItem* a, const ScanItem* b) { return a->sortSize() > b->sortSize(); };
    for (const ScanItem& item : items_) {
        if (item.method.isCommand() || !item.size || *item.size <= 0)
            continue;
        if (top.size() == 8 && !before(&item, top.back()))
            continue;
        top.insert(std::upper_bound(top.begin(), top.end(), &item, before), &item);
        if (top.size() > 8)
            top.pop_back();
    }
    QVariantList out;
    for (const ScanItem* item : top) {
        QVariantMap row{
            {"key", ItemKey::fromID(item->id)},
            {"name", ItemKey::displayText(item->name)},
            {"path", ItemKey::displayText(item->url ? *item->url : item->location())},
            {"location", ItemKey::displayText(item->location())},
            {"size", static_cast<qint64>(item->sortSize())},
            {"hasURL", item->url.has_value()},
            {"categoryId", QString::fromStdString(item->categoryID)},
            {"checked", selection_.contains(item->id)},
        };
        if (const auto category = this->category(QString::fromStdString(item->categoryID))) {
            row.insert("categoryTitle", QString::fromStdString(category->title));
            row.insert("tint", colorOf(CategoryGroups::tint(category->group)));
        }
        out.append(row);
    }
    return out;
}

QVariantMap AppModel::cleanPlan() const {
    // Read in place: the plan is asked for at every change of the selection.
    std::vector<const ScanItem*> items;
    if (!selection_.empty()) {
        const auto add = [&](const ScanItem& item) {
            if (selection_.contains(item.id))
                items.push_back(&item);
        };
        if (cleanScope_.isEmpty())
            std::for_each(items_.begin(), items_.end(), add);
        else
            for (const ScanItem& item : itemsOf(cleanScope_.toStdString()))
                add(item);
    }
    const CleanPlan plan = CleanPlan::of(
        items | std::views::transform([](const ScanItem* item) -> const ScanItem& { return *item; }),
        categories());
    QString scopeTitle;
    if (!cleanScope_.isEmpty())
        if (const auto scoped = category(cleanScope_))
            scopeTitle = QString::fromStdString(scoped->title);
    return {
        {"scopeTitle", scopeTitle},
        {"count", static_cast<int>(items.size())},
        {"total", static_cast<qint64>(ScanResults::totalSize(items))},
        {"trashCount", static_cast<int>(plan.toTrash.size())},
        {"trashSize", static_cast<qint64>(ScanResults::totalSize(plan.toTrash))},
        {"permanentCount", static_cast<int>(plan.permanent.size())},
        {"permanentSize", static_cast<qint64>(ScanResults::totalSize(plan.permanent))},
        {"commandNames", names(plan.commands)},
        {"adminCount", static_cast<int>(plan.needsAdmin.size())},
        {"largeCount", static_cast<int>(plan.largeFiles.size())},
        {"reviewCount", static_cast<int>(plan.review.size())},
    };
}

QVariantMap AppModel::lastResultInfo() const {
    if (!lastResult_)
        return {{"present", false}};
    const CleanResult& r = *lastResult_;
    QVariantList failures;
    for (const CleanFailure& failure : r.failures) {
        const std::string& where = failure.item.url ? *failure.item.url : failure.item.location();
        failures.append(QVariantMap{{"id", QString::fromStdString(failure.id)},
                                    {"name", ItemKey::displayText(failure.item.name)},
                                    {"reason", QString::fromStdString(failure.reason)},
                                    {"path", ItemKey::displayText(where)}});
    }
    return {
        {"present", true},
        {"succeededCount", static_cast<int>(r.succeeded.size())},
        {"movedToTrashBytes", static_cast<qint64>(r.movedToTrashBytes)},
        {"deletedBytes", static_cast<qint64>(r.deletedBytes)},
        {"gain", static_cast<qint64>(r.freeAfter - r.freeBefore)},
        {"trashedCount", static_cast<int>(r.trashedURLs.size())},
        {"failures", failures},
    };
}

QVariantList AppModel::systemEntries() const {
    QVariantList out;
    for (const SystemDataEntry& entry : SystemDataAreas::entries()) {
        QStringList paths;
        for (const std::string& path : entry.expandedPaths())
            paths << ItemKey::displayText(path);
        out.append(QVariantMap{
            {"id", QString::fromStdString(entry.id)},
            {"title", QString::fromStdString(entry.title)},
            {"detail", QString::fromStdString(entry.detail)},
            {"symbol", QString::fromStdString(entry.symbol)},
            {"hasAction", entry.action.has_value()},
            {"actionTitle", entry.action ? QString::fromStdString(entry.action->title) : QString()},
            {"actionConfirm", entry.action ? QString::fromStdString(entry.action->confirm) : QString()},
            {"protectedNote", entry.protectedNote ? QString::fromStdString(*entry.protectedNote) : QString()},
            {"unavailableNote", QString::fromStdString(SystemDataAreas::unavailableReason(entry))},
            {"paths", paths},
        });
    }
    return out;
}

QVariantMap AppModel::systemSizes() const {
    QVariantMap out;
    if (systemReport_)
        for (const auto& [id, size] : systemReport_->sizes)
            out.insert(QString::fromStdString(id), static_cast<qint64>(size));
    return out;
}

int AppModel::systemSnapshotCount() const {
    return systemReport_ ? systemReport_->snapshotCount : 0;
}

qint64 AppModel::systemPurgeable() const {
    return systemReport_ ? systemReport_->purgeable : 0;
}

qint64 AppModel::systemMeasuredTotal() const {
    qint64 sum = 0;
    if (systemReport_)
        for (const auto& [id, size] : systemReport_->sizes)
            sum += size;
    return sum;
}

QVariantMap AppModel::categoryInfo(const QString& categoryID) const {
    const auto found = category(categoryID);
    return found ? categoryMap(*found) : QVariantMap{};
}

QString AppModel::commonLocation(const QString& categoryID) const {
    // Compared by the parent folder's spelling in place; only the answer is formatted.
    const ScanItem* first = nullptr;
    std::string_view folder;
    for (const ScanItem& item : itemsOf(categoryID.toStdString())) {
        if (item.method.isCommand())
            continue;
        const std::string_view url = item.url ? std::string_view(*item.url) : std::string_view();
        const std::string_view parent = url.substr(0, std::min(url.size(), url.rfind('/')));
        if (!first) {
            first = &item;
            folder = parent;
        } else if (parent != folder || item.url.has_value() != first->url.has_value()) {
            return {};
        }
    }
    return first ? ItemKey::displayText(first->location()) : QString();
}

QString AppModel::firstExistingPath(const QString& entryID) const {
    const std::string id = entryID.toStdString();
    for (const SystemDataEntry& entry : SystemDataAreas::entries()) {
        if (entry.id != id)
            continue;
        for (const std::string& path : entry.expandedPaths()) {
            struct stat st {};
            if (::stat(path.c_str(), &st) == 0)
                return ItemKey::displayText(path);
        }
    }
    return {};
}
