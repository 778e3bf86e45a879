#pragma once
// What a clean is about to do, grouped by how items go: the figures of the
// confirmation step, shared by the window and the headless clean command.

#include "catalogue/CleanCategory.h"
#include "catalogue/ScanItem.h"

#include <vector>

// The groups point into the list the plan was made of: valid while it is.
struct CleanPlan {
    using Items = std::vector<const ScanItem*>;
    Items toTrash;    // trash or adminTrash
    Items permanent;  // deleted outright
    Items commands;   // run a tool's command, admin or not
    Items needsAdmin; // adminTrash, or an admin command
    Items largeFiles; // of the large-file category
    Items review;     // of review-risk categories other than large files

    // Partitions `items` in their order; `categories` decides the review risk (an item
    // of an unknown category is not counted as review).
    template <class List>
    static CleanPlan of(const List& items, const std::vector<CleanCategory>& categories) {
        CleanPlan plan;
        for (const ScanItem& item : items)
            plan.add(item, categories);
        return plan;
    }

private:
    void add(const ScanItem& item, const std::vector<CleanCategory>& categories);
};
