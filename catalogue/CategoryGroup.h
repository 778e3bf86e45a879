#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

// sRGB colour components 0…1, fully opaque.
struct Rgb {
    double red = 0;
    double green = 0;
    double blue = 0;
    bool operator==(const Rgb&) const = default;
};

// The five groups in declaration order: also the sidebar order and the order in
// which categories are arranged for display.
enum class CategoryGroup { user, system, developer, apps, large };

namespace CategoryGroups {

const std::array<CategoryGroup, 5>& allCases();

// The raw value, which is also the group's id: "user", "system", ...
std::string_view rawValue(CategoryGroup group);
std::string_view id(CategoryGroup group);

// Exact, case-sensitive: fromRawValue("User") is empty.
std::optional<CategoryGroup> fromRawValue(std::string_view raw);

// Localised display title ("System · admin" holds U+00B7).
std::string title(CategoryGroup group);

Rgb tint(CategoryGroup group);

} // namespace CategoryGroups
