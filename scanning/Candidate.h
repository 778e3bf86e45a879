#pragma once

#include "catalogue/RemovalMethod.h"
#include "platform/Date.h"

#include <cstdint>
#include <optional>
#include <string>

// A found path not yet measured.
struct Candidate {
    std::string categoryID;
    std::string path; // canonical absolute path
    RemovalMethod method; // permanent, trash or adminTrash; never command
    std::optional<Date> modified;
    std::optional<std::string> note;
    // What a file (never a folder) occupies, when the look that found it already
    // told: a hundred thousand files then cost no second look each.
    std::optional<int64_t> knownSize;

    bool operator==(const Candidate&) const = default;
};
