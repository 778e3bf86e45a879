#pragma once
// What a clean is about to do, grouped by how items go: the figures of the
// confirmation step, shared by the window and the headless clean command.

#include "catalogue/CleanCategory.h"
#include "catalogue/ScanItem.h"

#include <vector>

struct CleanPlan {
    std::vector<ScanItem> toTrash;     // trash or adminTrash
    std::vector<ScanItem> permanent;   // deleted outright
    std::vector<ScanItem> commands;    // run a tool's command, admin or not
    std::vector<ScanItem> needsAdmin;  // adminTrash, or an admin command
    std::vector<ScanItem> largeFiles;  // of the large-file category
    std::vector<ScanItem> review;      // of review-risk categories other than large files

    // Partitions `items` in their order; `categories` decides the review risk (an item
    // of an unknown category is not counted as review).
    static CleanPlan of(const std::vector<ScanItem>& items, const std::vector<CleanCategory>& categories);
};
