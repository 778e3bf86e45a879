#pragma once

#include "catalogue/CategoryGroup.h"
#include "catalogue/Risk.h"

#include <functional>
#include <string>

// One category of junk. Identity, equality and hashing use `id` alone.
struct CleanCategory {
    std::string id;
    CategoryGroup group = CategoryGroup::user;
    std::string title;
    std::string detail;
    std::string symbol;
    Risk risk = Risk::safe;
    bool selectedByDefault = false;

    bool operator==(const CleanCategory& other) const { return id == other.id; }
};

template <> struct std::hash<CleanCategory> {
    size_t operator()(const CleanCategory& category) const noexcept { return std::hash<std::string>{}(category.id); }
};
