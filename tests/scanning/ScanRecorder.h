#pragma once
// Runs a whole scan and keeps every event it reported, for the scanner's tests.

#include "scanning/JunkScanner.h"

#include <functional>
#include <stop_token>
#include <string>
#include <vector>

struct RecordedScan {
    std::vector<ScanEvent> events;
    std::vector<ScanItem> items;
    bool overlappingEvents = false; // an event arrived while another was being handled

    const ScanItem* item(const std::string& id) const;
    // Ids of the returned items of one category, in order.
    std::vector<std::string> idsIn(const std::string& categoryID) const;
    // The CategoryFinished event of a category, if it was reported.
    const ScanEvent::CategoryFinished* finished(const std::string& categoryID) const;
};

// `onEvent` sees each event after it was recorded and may request a stop.
RecordedScan recordScan(const ScanOptions& options,
                        const std::function<void(const ScanEvent&, std::stop_source&)>& onEvent = {});

// Options that keep the large-file search out of the way.
ScanOptions quietOptions(bool hasFullDiskAccess = false);
