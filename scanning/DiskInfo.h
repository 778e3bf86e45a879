#pragma once

#include <cstdint>

// Capacity of the volume that holds the home folder.
struct DiskInfo {
    int64_t total = 0;
    int64_t available = 0;

    bool operator==(const DiskInfo&) const = default;

    // A fresh reading every call; zero fields when the volume cannot be read.
    static DiskInfo current();
};
