#include "catalogue/CategoryGroup.h"

#include "platform/Localized.h"

namespace CategoryGroups {

const std::array<CategoryGroup, 5>& allCases() {
    static constexpr std::array<CategoryGroup, 5> cases{CategoryGroup::user, CategoryGroup::system,
                                                        CategoryGroup::developer, CategoryGroup::apps,
                                                        CategoryGroup::large};
    return cases;
}

std::string_view rawValue(CategoryGroup group) {
    switch (group) {
    case CategoryGroup::user:
        return "user";
    case CategoryGroup::system:
        return "system";
    case CategoryGroup::developer:
        return "developer";
    case CategoryGroup::apps:
        return "apps";
    case CategoryGroup::large:
        return "large";
    }
    return {};
}

std::string_view id(CategoryGroup group) { return rawValue(group); }

std::optional<CategoryGroup> fromRawValue(std::string_view raw) {
    for (CategoryGroup group : allCases())
        if (rawValue(group) == raw)
            return group;
    return std::nullopt;
}

std::string title(CategoryGroup group) {
    switch (group) {
    case CategoryGroup::user:
        return localized("User");
    case CategoryGroup::system:
        return localized("System \u00B7 admin");
    case CategoryGroup::developer:
        return localized("Developer");
    case CategoryGroup::apps:
        return localized("Browsers & Apps");
    case CategoryGroup::large:
        return localized("Large Files");
    }
    return {};
}

Rgb tint(CategoryGroup group) {
    switch (group) {
    case CategoryGroup::user:
        return {0.31, 0.42, 0.85};
    case CategoryGroup::system:
        return {0.88, 0.38, 0.35};
    case CategoryGroup::developer:
        return {0.89, 0.64, 0.31};
    case CategoryGroup::apps:
        return {0.25, 0.72, 0.69};
    case CategoryGroup::large:
        return {0.61, 0.48, 0.88};
    }
    return {};
}

} // namespace CategoryGroups
