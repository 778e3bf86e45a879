#include "app/SystemDataPrintout.h"

#include "app/CountedText.h"

#include "model/ItemKey.h"
#include "platform/ByteCount.h"
#include "platform/Localized.h"
#include "systemdata/SystemDataAreas.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QTextStream>

namespace {

QString q(const std::string& text) {
    return QString::fromStdString(text);
}

std::optional<int64_t> sizeOf(const AppModel& model, const std::string& id) {
    if (!model.systemReport())
        return std::nullopt;
    const auto found = model.systemReport()->sizes.find(id);
    return found == model.systemReport()->sizes.end() ? std::nullopt : std::optional(found->second);
}

// The size column as the screen writes it.
QString sizeText(const AppModel& model, const SystemDataEntry& entry) {
    if (entry.id == "tm") {
        const int count = model.systemSnapshotCount();
        return count == 0 ? q(localized("None")) : countedText("%Ln snapshots", static_cast<size_t>(count));
    }
    const std::optional<int64_t> size = sizeOf(model, entry.id);
    return size ? q(formatByteCount(*size)) : QStringLiteral("—");
}

} // namespace

namespace SystemDataPrintout {

QString text(const AppModel& model) {
    QString out;
    QTextStream s(&out);
    s << q(localized("System Data")) << "  " << q(formatByteCount(model.systemMeasuredTotal())) << "\n";
    for (const SystemDataEntry& entry : SystemDataAreas::entries()) {
        s << "  " << q(entry.title).leftJustified(46, u' ', false) << " "
          << sizeText(model, entry).rightJustified(12);
        if (const std::string reason = SystemDataAreas::unavailableReason(entry); !reason.empty())
            s << "  (" << q(entry.action->title) << ": " << q(reason) << ")";
        s << "\n";
    }
    s << q(localizedFormat("Purgeable: %1", {formatByteCount(model.systemPurgeable())})) << "\n";
    return out;
}

QJsonObject json(const AppModel& model) {
    QJsonArray entries;
    for (const SystemDataEntry& entry : SystemDataAreas::entries()) {
        QJsonArray folders;
        for (const std::string& folder : entry.expandedPaths())
            folders.append(ItemKey::displayText(folder));
        const std::optional<int64_t> size = entry.id == "tm" ? std::nullopt : sizeOf(model, entry.id);
        QJsonValue action(QJsonValue::Null);
        if (entry.action) {
            const std::string reason = SystemDataAreas::unavailableReason(entry);
            action =
                QJsonObject{{"title", q(entry.action->title)},
                            {"admin", entry.action->admin},
                            {"available", reason.empty()},
                            {"unavailableReason", reason.empty() ? QJsonValue(QJsonValue::Null) : q(reason)}};
        }
        entries.append(QJsonObject{
            {"id", q(entry.id)},
            {"title", q(entry.title)},
            {"size", size ? QJsonValue(static_cast<qint64>(*size)) : QJsonValue(QJsonValue::Null)},
            {"folders", folders},
            {"note",
             entry.protectedNote ? QJsonValue(q(*entry.protectedNote)) : QJsonValue(QJsonValue::Null)},
            {"action", action},
        });
    }
    const auto& report = model.systemReport();
    return QJsonObject{
        {"date", report ? QJsonValue(q(Dates::iso8601(report->date))) : QJsonValue(QJsonValue::Null)},
        {"total", model.systemMeasuredTotal()},
        {"snapshotCount", model.systemSnapshotCount()},
        {"purgeable", model.systemPurgeable()},
        {"entries", entries},
    };
}

} // namespace SystemDataPrintout
