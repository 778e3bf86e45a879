#include "app/CleanReport.h"

#include "app/CountedText.h"
#include "app/ScanReport.h"
#include "model/ItemKey.h"
#include "platform/ByteCount.h"
#include "platform/Localized.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QTextStream>

namespace {

QString q(const std::string& text) {
    return QString::fromStdString(text);
}

QString rowText(const std::string& title, const CleanPlan::Items& items) {
    return QStringLiteral("  %1  %2")
        .arg(q(title).leftJustified(46, u' '))
        .arg(countedText("%Ln items · %1", items.size())
                 .arg(q(formatByteCount(ScanResults::totalSize(items)))));
}

QJsonArray itemsJson(const std::vector<ScanItem>& items) {
    QJsonArray array;
    for (const ScanItem& item : items)
        array.append(ScanReport::itemJson(item));
    return array;
}

QJsonArray itemsJson(const CleanPlan::Items& items) {
    QJsonArray array;
    for (const ScanItem* item : items)
        array.append(ScanReport::itemJson(*item));
    return array;
}

} // namespace

namespace CleanReport {

QString summary(const AppModel& model) {
    const ScanItems items = model.itemsToClean();
    const CleanPlan plan = CleanPlan::of(items, model.categories());
    QString out;
    QTextStream s(&out);
    if (!model.cleanScope().isEmpty())
        if (const auto category = model.category(model.cleanScope()))
            s << q(category->title) << "\n";
    s << countedText("Clean %Ln Items", items.size()) << " — "
      << q(localizedFormat("About %1 in total", {formatByteCount(model.itemsToCleanTotal())})) << "\n";
    s << rowText(localized("Move to Trash (recoverable)"), plan.toTrash) << "\n";
    s << rowText(localized("Delete permanently (items already in Trash)"), plan.permanent) << "\n";
    if (!plan.commands.empty()) {
        QStringList names;
        for (const ScanItem* item : plan.commands)
            names << ScanReport::shownText(item->name);
        s << "  " << q(localized("Run commands: ")) << names.join(QStringLiteral(", ")) << "\n";
    }
    if (!plan.needsAdmin.empty())
        s << "  ! "
          << countedText("%Ln system items — macOS will ask for an administrator password once",
                         plan.needsAdmin.size())
          << "\n";
    if (!plan.largeFiles.empty())
        s << "  ! "
          << countedText("%Ln large files selected — make sure you don't need them", plan.largeFiles.size())
          << "\n";
    if (!plan.review.empty())
        s << "  ! "
          << countedText("%Ln items from review categories (Downloads/Backups/Archives)", plan.review.size())
          << "\n";
    return out;
}

QString result(const AppModel& model) {
    const auto& r = model.lastResult();
    if (!r)
        return {};
    QString out;
    QTextStream s(&out);
    s << countedText("Cleaned %Ln Items", r->succeeded.size()) << "\n";
    s << q(localizedFormat("%1 moved to Trash · %2 deleted",
                           {formatByteCount(r->movedToTrashBytes), formatByteCount(r->deletedBytes)}))
      << "\n";
    s << q(localizedFormat("Now %1 available (+%2)", {formatByteCount(model.diskAvailable()),
                                                      formatByteCount(r->freeAfter - r->freeBefore)}))
      << "\n";
    if (!r->failures.empty()) {
        s << "\n" << countedText("%Ln Items Could Not Be Cleaned", r->failures.size()) << "\n";
        for (const CleanFailure& failure : r->failures) {
            const std::string& where = failure.item.url ? *failure.item.url : failure.item.location();
            s << "  " << ScanReport::shownText(failure.item.name) << "\n"
              << "    " << ScanReport::shownText(failure.reason) << "\n"
              << "    " << ScanReport::shownText(where) << "\n";
        }
        if (!model.hasFullDiskAccess())
            s << q(localized("Some items may have failed because Full Disk Access hasn't been granted."))
              << "\n";
    }
    return out;
}

QJsonObject summaryJson(const AppModel& model) {
    const ScanItems items = model.itemsToClean();
    const CleanPlan plan = CleanPlan::of(items, model.categories());
    return QJsonObject{
        {"count", static_cast<qint64>(items.size())},
        {"totalSize", model.itemsToCleanTotal()},
        {"toTrash", itemsJson(plan.toTrash)},
        {"permanent", itemsJson(plan.permanent)},
        {"commands", itemsJson(plan.commands)},
        {"needsAdmin", static_cast<qint64>(plan.needsAdmin.size())},
        {"largeFiles", static_cast<qint64>(plan.largeFiles.size())},
        {"review", static_cast<qint64>(plan.review.size())},
    };
}

QJsonObject resultJson(const AppModel& model) {
    const auto& r = model.lastResult();
    if (!r)
        return {};
    QJsonArray failures;
    for (const CleanFailure& failure : r->failures) {
        QJsonObject entry = ScanReport::itemJson(failure.item);
        entry.insert("reason", q(failure.reason));
        failures.append(entry);
    }
    QJsonArray trashed;
    for (const std::string& path : r->trashedURLs) {
        QJsonObject entry;
        ScanReport::insertPath(entry, path);
        trashed.append(entry);
    }
    QJsonObject out{
        {"succeeded", itemsJson(r->succeeded)},
        {"failures", failures},
        {"trashed", trashed},
        {"movedToTrashBytes", static_cast<qint64>(r->movedToTrashBytes)},
        {"deletedBytes", static_cast<qint64>(r->deletedBytes)},
        {"freeBefore", static_cast<qint64>(r->freeBefore)},
        {"freeAfter", static_cast<qint64>(r->freeAfter)},
    };
    if (!model.purgeMessage().isEmpty())
        out.insert("purgeMessage", model.purgeMessage());
    return out;
}

} // namespace CleanReport
