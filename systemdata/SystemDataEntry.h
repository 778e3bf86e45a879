#pragma once

#include "catalogue/Risk.h"

#include <optional>
#include <string>
#include <vector>

// One known area of "System Data" storage.
struct SystemDataEntry {
    // The one thing the user may do about the area.
    struct Action {
        std::string title;
        std::string shell;
        bool admin = false;
        Risk risk = Risk::caution;
        std::string confirm;
        bool operator==(const Action&) const = default;
    };

    std::string id;
    std::string title;
    std::string detail;
    std::string symbol;
    std::vector<std::string> paths; // may begin with "~"
    std::optional<Action> action;
    std::optional<std::string> protectedNote;

    bool operator==(const SystemDataEntry&) const = default;

    // `paths` with a leading "~" expanded to the home folder, order kept.
    std::vector<std::string> expandedPaths() const;
};
