#include "app/ScanReport.h"

#include "model/ItemKey.h"
#include "platform/ByteCount.h"
#include "platform/Localized.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <QJsonArray>
#include <QTextStream>

#include <algorithm>

namespace {

QJsonValue optionalText(const std::optional<std::string>& text) {
    return text ? QJsonValue(ItemKey::displayText(*text)) : QJsonValue(QJsonValue::Null);
}

QString sizeText(int64_t bytes) {
    return QString::fromStdString(formatByteCount(bytes));
}

QString padRight(const QString& text, int width) {
    return text.leftJustified(width, u' ', false);
}

} // namespace

namespace ScanReport {

QJsonObject itemJson(const ScanItem& item) {
    QJsonObject object;
    object.insert("id", ItemKey::fromID(item.id));
    object.insert("name", ItemKey::displayText(item.name));
    if (item.url)
        insertPath(object, *item.url);
    else
        object.insert("path", QJsonValue(QJsonValue::Null));
    object.insert("size",
                  item.size ? QJsonValue(static_cast<qint64>(*item.size)) : QJsonValue(QJsonValue::Null));
    object.insert("modified", item.modified
                                  ? QJsonValue(QString::fromStdString(Dates::iso8601(*item.modified)))
                                  : QJsonValue(QJsonValue::Null));
    object.insert("method", QString::fromUtf8(item.method.name()));
    object.insert("command", item.method.isCommand() ? QJsonValue(QString::fromStdString(item.method.command))
                                                     : QJsonValue(QJsonValue::Null));
    object.insert("admin", item.method.admin);
    object.insert("note", optionalText(item.note));
    return object;
}

QJsonObject json(const AppModel& model) {
    QJsonObject root;
    root.insert("disk", QJsonObject{{"total", model.diskTotal()}, {"available", model.diskAvailable()}});
    root.insert("hasFullDiskAccess", model.hasFullDiskAccess());
    QJsonArray categories;
    for (const CleanCategory& category : model.categories()) {
        const QString id = QString::fromStdString(category.id);
        QJsonObject entry;
        entry.insert("id", id);
        entry.insert("group", QString::fromUtf8(CategoryGroups::rawValue(category.group)));
        entry.insert("title", QString::fromStdString(category.title));
        entry.insert("risk", QString::fromUtf8(Risks::name(category.risk)));
        entry.insert("selectedByDefault", category.selectedByDefault);
        entry.insert("totalSize", model.totalSize(id));
        QJsonArray items;
        if (const auto found = model.itemsByCategory().find(category.id);
            found != model.itemsByCategory().end())
            for (const ScanItem& item : found->second)
                items.append(itemJson(item));
        entry.insert("items", items);
        categories.append(entry);
    }
    root.insert("categories", categories);
    return root;
}

QString text(const AppModel& model, int largestCount) {
    QString out;
    QTextStream stream(&out);
    stream << QString::fromStdString(
                  localizedFormat("%1 available of %2", {formatByteCount(model.diskAvailable()),
                                                         formatByteCount(model.diskTotal())}))
           << "\n";
    if (!model.hasFullDiskAccess())
        stream << QString::fromStdString(
                      localized("Full Disk Access has not been granted; some places were skipped."))
               << "\n";
    for (CategoryGroup group : CategoryGroups::allCases()) {
        stream << "\n"
               << QString::fromStdString(CategoryGroups::title(group)) << "  "
               << sizeText(model.totalSize(group)) << "\n";
        for (const CleanCategory& category : model.categoriesOf(group)) {
            const QString id = QString::fromStdString(category.id);
            const int count = model.itemCountOf(id);
            stream << "  " << padRight(QString::fromStdString(category.title), 44) << " "
                   << (count > 0 ? sizeText(model.totalSize(id)) : QStringLiteral("—")).rightJustified(10)
                   << "  " << QString::fromStdString(localizedFormat("%1 items", {std::to_string(count)}))
                   << "\n";
        }
    }
    ScanItems largest = ScanResults::sortedForDisplay(model.items());
    if (static_cast<int>(largest.size()) > largestCount)
        largest.resize(static_cast<size_t>(largestCount));
    if (!largest.empty()) {
        stream << "\n" << QString::fromStdString(localized("Largest Items")) << "\n";
        for (const ScanItem& item : largest) {
            const QString size = item.size ? sizeText(*item.size) : QStringLiteral("—");
            const QString where = shownText(item.url ? Paths::abbreviatingHome(*item.url) : item.location());
            const auto category = model.category(QString::fromStdString(item.categoryID));
            stream << "  " << size.rightJustified(10) << "  " << where;
            if (category)
                stream << "  (" << QString::fromStdString(category->title) << ")";
            stream << "\n";
        }
    }
    return out;
}

QString shownText(const std::string& raw) {
    return QString::fromStdString(Text::escapedForTerminal(raw));
}

// JSON text cannot carry bytes that are not UTF-8; the exact path goes alongside.
void insertPath(QJsonObject& object, const std::string& path) {
    object.insert("path", ItemKey::displayText(path));
    if (!ItemKey::isValidUtf8(path))
        object.insert("pathBytes", QString::fromLatin1(QByteArray::fromStdString(path).toBase64()));
}

} // namespace ScanReport
