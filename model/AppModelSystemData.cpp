// System Data: analysing the areas and running their actions.

#include "model/AppModel.h"

#include "model/AppModelChanges.h"
#include "platform/ByteCount.h"
#include "platform/Localized.h"
#include "systemdata/SystemDataAnalyzer.h"
#include "systemdata/SystemDataAreas.h"

void AppModel::analyzeSystemData() {
    if (systemAnalyzing_)
        return;
    OptionalSystemReport previous = systemReport_;
    {
        Changes changes(*this);
        change(changes, systemAnalyzing_, true, &AppModel::systemAnalyzingChanged);
        change(changes, systemMessage_, QString(), &AppModel::systemMessageChanged);
        SystemDataReport fresh;
        fresh.date = Dates::now();
        change(changes, systemReport_, OptionalSystemReport(fresh), &AppModel::systemReportChanged);
        change(changes, systemSnapshotsMeasured_, false, &AppModel::systemSnapshotsMeasuredChanged);
    }
    const uint64_t analysis = nextOperation_;
    startWorker([analysis, previous](std::stop_token, const MainThreadCall& toMain) {
        SystemDataAnalyzer::Analysis result =
            SystemDataAnalyzer::analyze([&toMain, analysis](const std::string& id, int64_t value) {
                toMain([analysis, id, value](AppModel& model) {
                    model.deliverSystemEntry(analysis, id, value);
                });
            });
        if (!result.report)
            result.report = previous;
        toMain([analysis, result = std::move(result)](AppModel& model) {
            model.finishSystemAnalysis(analysis, result.report, result.message);
        });
    });
    activeAnalysis_ = analysis;
}

void AppModel::deliverSystemEntry(uint64_t analysis, const std::string& id, int64_t value) {
    if (analysis != activeAnalysis_ || !systemAnalyzing_ || !systemReport_)
        return;
    Changes changes(*this);
    OptionalSystemReport report = systemReport_;
    if (id == "tm") {
        report->snapshotCount = static_cast<int>(value);
        change(changes, systemSnapshotsMeasured_, true, &AppModel::systemSnapshotsMeasuredChanged);
    } else {
        report->sizes[id] = value;
    }
    change(changes, systemReport_, std::move(report), &AppModel::systemReportChanged);
}

void AppModel::finishSystemAnalysis(uint64_t analysis, std::optional<SystemDataReport> report,
                                    std::optional<std::string> message) {
    if (analysis != activeAnalysis_)
        return;
    activeAnalysis_ = 0;
    Changes changes(*this);
    change(changes, systemReport_, std::move(report), &AppModel::systemReportChanged);
    change(changes, systemSnapshotsMeasured_, true, &AppModel::systemSnapshotsMeasuredChanged);
    change(changes, systemMessage_, message ? QString::fromStdString(*message) : QString(),
           &AppModel::systemMessageChanged);
    change(changes, systemAnalyzing_, false, &AppModel::systemAnalyzingChanged);
    change(changes, disk_, DiskInfo::current(), &AppModel::diskChanged);
}

void AppModel::runSystemAction(const SystemDataEntry& entry) {
    if (!entry.action || !systemRunningEntry_.isEmpty() || !SystemDataAreas::unavailableReason(entry).empty())
        return;
    {
        Changes changes(*this);
        change(changes, systemRunningEntry_, QString::fromStdString(entry.id),
               &AppModel::systemRunningEntryChanged);
        change(changes, systemMessage_, QString(), &AppModel::systemMessageChanged);
    }
    const int64_t availableBefore = DiskInfo::current().available;
    startWorker([entry, availableBefore](std::stop_token, const MainThreadCall& toMain) {
        std::optional<std::string> message = SystemDataAnalyzer::perform(*entry.action);
        toMain([entry, availableBefore, message](AppModel& model) {
            model.finishSystemAction(entry, availableBefore, message);
        });
    });
}

void AppModel::finishSystemAction(const SystemDataEntry& entry, int64_t availableBefore,
                                  const std::optional<std::string>& message) {
    Changes changes(*this);
    change(changes, systemRunningEntry_, QString(), &AppModel::systemRunningEntryChanged);
    const DiskInfo now = DiskInfo::current();
    change(changes, disk_, now, &AppModel::diskChanged);
    std::string text;
    if (message) {
        text = localizedFormat("%1: %2", {entry.title, *message});
    } else {
        text = localizedFormat("%1 completed — %2 more free space (re-analyze to update sizes)",
                               {entry.action->title, formatByteCount(now.available - availableBefore)});
    }
    change(changes, systemMessage_, QString::fromStdString(text), &AppModel::systemMessageChanged);
}

void AppModel::runSystemActionFor(const QString& entryID) {
    const std::string id = entryID.toStdString();
    for (const SystemDataEntry& entry : SystemDataAreas::entries())
        if (entry.id == id) {
            runSystemAction(entry);
            return;
        }
}

void AppModel::refreshSystemTools() {
    std::map<std::string, std::string> unavailable;
    for (const SystemDataEntry& entry : SystemDataAreas::entries())
        unavailable[entry.id] = SystemDataAreas::unavailableReason(entry);
    if (unavailable == systemUnavailable_)
        return;
    systemUnavailable_ = std::move(unavailable);
    emit systemToolsChanged();
}
