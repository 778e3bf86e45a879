#pragma once

#include "catalogue/RemovalMethod.h"
#include "platform/Date.h"

#include <optional>
#include <string>

// A found path not yet measured.
struct Candidate {
    std::string categoryID;
    std::string path; // canonical absolute path
    RemovalMethod method; // permanent, trash or adminTrash; never command
    std::optional<Date> modified;
    std::optional<std::string> note;

    bool operator==(const Candidate&) const = default;
};
