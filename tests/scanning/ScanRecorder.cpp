#include "ScanRecorder.h"

#include <atomic>
#include <mutex>

const ScanItem* RecordedScan::item(const std::string& id) const {
    for (const ScanItem& found : items)
        if (found.id == id)
            return &found;
    return nullptr;
}

std::vector<std::string> RecordedScan::idsIn(const std::string& categoryID) const {
    std::vector<std::string> ids;
    for (const ScanItem& found : items)
        if (found.categoryID == categoryID)
            ids.push_back(found.id);
    return ids;
}

const ScanEvent::CategoryFinished* RecordedScan::finished(const std::string& categoryID) const {
    for (const ScanEvent& event : events)
        if (const auto* done = std::get_if<ScanEvent::CategoryFinished>(&event.value);
            done && done->id == categoryID)
            return done;
    return nullptr;
}

RecordedScan recordScan(const ScanOptions& options,
                        const std::function<void(const ScanEvent&, std::stop_source&)>& onEvent) {
    RecordedScan recorded;
    std::stop_source stop;
    std::mutex mutex;
    std::atomic<bool> inside{false};
    recorded.items = JunkScanner::scan(
        options,
        [&](const ScanEvent& event) {
            if (inside.exchange(true))
                recorded.overlappingEvents = true;
            {
                std::lock_guard lock(mutex);
                recorded.events.push_back(event);
            }
            if (onEvent)
                onEvent(event, stop);
            inside = false;
        },
        stop.get_token());
    return recorded;
}

ScanOptions quietOptions(bool hasFullDiskAccess) {
    return ScanOptions{int64_t{1} << 50, {}, hasFullDiskAccess};
}
