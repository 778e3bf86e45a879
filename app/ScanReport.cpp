#include "app/ScanReport.h"

#include "app/CountedText.h"

#include "model/ItemKey.h"
#include "platform/ByteCount.h"
#include "platform/Localized.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTextStream>

#include <algorithm>
#include <string_view>
#include <unordered_set>

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

// True when every byte is printable ASCII: such a text is written as it is, with
// only quotes and backslashes escaped, exactly as QJsonDocument writes it.
bool isPlainAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
}

void appendQuoted(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\')
            out += '\\';
        out += c;
    }
    out += '"';
}

void appendQuotedOrNull(std::string& out, const std::optional<std::string>& text) {
    if (text)
        appendQuoted(out, *text);
    else
        out += "null";
}

// The common item, written without building a QJsonObject and a document per item
// (which cost more than the rest of the report); anything else is left to itemJson.
bool appendPlainItem(std::string& out, const ScanItem& item) {
    const bool plain = isPlainAscii(item.id) && isPlainAscii(item.name) &&
                       (!item.url || isPlainAscii(*item.url)) && (!item.note || isPlainAscii(*item.note)) &&
                       isPlainAscii(item.method.command);
    if (!plain)
        return false;
    // Keys in QJsonObject's (sorted) order.
    out += "{\"admin\":";
    out += item.method.admin ? "true" : "false";
    out += ",\"command\":";
    if (item.method.isCommand())
        appendQuoted(out, item.method.command);
    else
        out += "null";
    out += ",\"id\":";
    appendQuoted(out, item.id);
    out += ",\"method\":";
    appendQuoted(out, item.method.name());
    out += ",\"modified\":";
    if (item.modified)
        appendQuoted(out, Dates::iso8601(*item.modified));
    else
        out += "null";
    out += ",\"name\":";
    appendQuoted(out, item.name);
    out += ",\"note\":";
    appendQuotedOrNull(out, item.note);
    out += ",\"path\":";
    appendQuotedOrNull(out, item.url);
    out += ",\"size\":";
    out += item.size ? std::to_string(*item.size) : std::string("null");
    out += '}';
    return true;
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

void writeJson(const AppModel& model, const SearchedPlaces::PerCategory& searched, FILE* out) {
    auto put = [out](const QByteArray& bytes) { std::fwrite(bytes.constData(), 1, bytes.size(), out); };
    auto compact = [](const QJsonObject& object) {
        return QJsonDocument(object).toJson(QJsonDocument::Compact);
    };
    put("{\"categories\":[");
    bool firstCategory = true;
    for (const CleanCategory& category : model.categories()) {
        const QString id = QString::fromStdString(category.id);
        QJsonObject entry;
        entry.insert("id", id);
        entry.insert("group", QString::fromUtf8(CategoryGroups::rawValue(category.group)));
        entry.insert("title", QString::fromStdString(category.title));
        entry.insert("risk", QString::fromUtf8(Risks::name(category.risk)));
        entry.insert("selectedByDefault", category.selectedByDefault);
        entry.insert("totalSize", model.totalSize(id));
        entry.insert("items", QJsonArray());
        QJsonArray folders;
        if (const auto places = searched.find(category.id); places != searched.end())
            for (const std::string& folder : places->second)
                folders.append(ItemKey::displayText(folder));
        entry.insert("searched", folders);
        // Inside a JSON string every quote is escaped, so the bare key below is the
        // one place the empty list stands.
        const QByteArray shell = compact(entry);
        const QByteArray emptyItems = "\"items\":[]";
        const qsizetype at = shell.indexOf(emptyItems) + emptyItems.size() - 1;
        if (!firstCategory)
            put(",");
        firstCategory = false;
        put(shell.left(at));
        std::string text;
        bool firstItem = true;
        for (const ScanItem& item : model.itemsOf(category.id)) {
            if (!firstItem)
                text += ',';
            firstItem = false;
            if (!appendPlainItem(text, item))
                text += compact(itemJson(item)).toStdString();
            if (text.size() > 64 * 1024) {
                std::fwrite(text.data(), 1, text.size(), out);
                text.clear();
            }
        }
        std::fwrite(text.data(), 1, text.size(), out);
        put(shell.mid(at));
    }
    put("],");
    const QJsonObject rest{
        {"disk", QJsonObject{{"total", model.diskTotal()}, {"available", model.diskAvailable()}}},
        {"hasFullDiskAccess", model.hasFullDiskAccess()}};
    put(compact(rest).mid(1));
    put("\n");
}

QString text(const AppModel& model, const SearchedPlaces::PerCategory& searched, int largestCount) {
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
                   << "  " << countedText("%Ln items", static_cast<size_t>(count)) << "\n";
        }
    }
    // Only the first few are printed: pick them without copying or sorting every item.
    // Ties keep the model's order, as the sorted list shows them.
    const ScanItems& all = model.items();
    std::vector<size_t> order(all.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    const auto shown = order.begin() + std::min<ptrdiff_t>(std::max(largestCount, 0), std::ssize(order));
    std::partial_sort(order.begin(), shown, order.end(), [&all](size_t a, size_t b) {
        return std::pair(-all[a].sortSize(), a) < std::pair(-all[b].sortSize(), b);
    });
    order.erase(shown, order.end());
    if (!order.empty()) {
        stream << "\n" << QString::fromStdString(localized("Largest Items")) << "\n";
        for (const size_t index : order) {
            const ScanItem& item = all[index];
            const QString size = item.size ? sizeText(*item.size) : QStringLiteral("—");
            const QString where = shownText(item.url ? Paths::abbreviatingHome(*item.url) : item.location());
            const auto category = model.category(QString::fromStdString(item.categoryID));
            stream << "  " << size.rightJustified(10) << "  " << where;
            if (category)
                stream << "  (" << QString::fromStdString(category->title) << ")";
            stream << "\n";
        }
    }
    std::unordered_set<std::string_view> places;
    for (const auto& [id, folders] : searched)
        places.insert(folders.begin(), folders.end());
    stream << "\n"
           << QString::fromStdString(localizedFormat("Searched %1 places.", {std::to_string(places.size())}))
           << "\n";
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
