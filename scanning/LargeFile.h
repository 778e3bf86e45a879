#pragma once

#include "platform/Date.h"

#include <optional>
#include <string>

// One hit of the large-file search.
struct LargeFile {
    std::string path; // canonical absolute path
    std::optional<Date> modified;
    std::optional<std::string> note;

    bool operator==(const LargeFile&) const = default;
};
