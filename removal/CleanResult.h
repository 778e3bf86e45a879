#pragma once

#include "catalogue/ScanItem.h"

#include <cstdint>
#include <string>
#include <vector>

// An item that was not removed, and why.
struct CleanFailure {
    std::string id; // a UUID made when the failure is recorded
    ScanItem item;
    std::string reason;

    bool operator==(const CleanFailure&) const = default;
};

// The outcome of one clean.
struct CleanResult {
    std::vector<ScanItem> succeeded;      // in the order their removal succeeded
    std::vector<CleanFailure> failures;
    std::vector<std::string> trashedURLs; // where moved items now lie
    int64_t movedToTrashBytes = 0;
    int64_t deletedBytes = 0;
    int64_t freeBefore = 0;
    int64_t freeAfter = 0;

    bool operator==(const CleanResult&) const = default;

    void recordFailure(const ScanItem& item, std::string reason);
};
