#include "model/CleanPlan.h"

#include "catalogue/CleanupRules.h"

#include <algorithm>

CleanPlan CleanPlan::of(const std::vector<ScanItem>& items, const std::vector<CleanCategory>& categories) {
    CleanPlan plan;
    auto riskOf = [&categories](const std::string& id) -> const CleanCategory* {
        auto found = std::find_if(categories.begin(), categories.end(),
                                  [&id](const CleanCategory& category) { return category.id == id; });
        return found == categories.end() ? nullptr : &*found;
    };
    for (const ScanItem& item : items) {
        using Kind = RemovalMethod::Kind;
        switch (item.method.kind) {
        case Kind::trash:
        case Kind::adminTrash:
            plan.toTrash.push_back(item);
            break;
        case Kind::permanent:
            plan.permanent.push_back(item);
            break;
        case Kind::command:
            plan.commands.push_back(item);
            break;
        }
        if (item.method.kind == Kind::adminTrash || (item.method.isCommand() && item.method.admin))
            plan.needsAdmin.push_back(item);
        if (item.categoryID == CleanupRules::largeFilesCategoryID) {
            plan.largeFiles.push_back(item);
        } else if (const CleanCategory* category = riskOf(item.categoryID);
                   category && category->risk == Risk::review) {
            plan.review.push_back(item);
        }
    }
    return plan;
}
