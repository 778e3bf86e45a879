#include "model/CleanPlan.h"

#include "catalogue/CleanupRules.h"

#include <algorithm>

void CleanPlan::add(const ScanItem& item, const std::vector<CleanCategory>& categories) {
    using Kind = RemovalMethod::Kind;
    switch (item.method.kind) {
    case Kind::trash:
    case Kind::adminTrash:
        toTrash.push_back(&item);
        break;
    case Kind::permanent:
        permanent.push_back(&item);
        break;
    case Kind::command:
        commands.push_back(&item);
        break;
    }
    if (item.method.kind == Kind::adminTrash || (item.method.isCommand() && item.method.admin))
        needsAdmin.push_back(&item);
    if (item.categoryID == CleanupRules::largeFilesCategoryID) {
        largeFiles.push_back(&item);
        return;
    }
    const auto category =
        std::find_if(categories.begin(), categories.end(),
                     [&item](const CleanCategory& each) { return each.id == item.categoryID; });
    if (category != categories.end() && category->risk == Risk::review)
        review.push_back(&item);
}
