#pragma once

#include "platform/Date.h"

#include <cstdint>
#include <map>
#include <string>

struct SystemDataReport {
    std::map<std::string, int64_t> sizes; // entry id -> bytes
    int snapshotCount = 0;
    int64_t purgeable = 0;
    Date date{};

    bool operator==(const SystemDataReport&) const = default;
};
