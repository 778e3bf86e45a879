#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ScanOptions {
    int64_t largeFileThreshold = 0;      // bytes; a file of exactly this size qualifies
    std::vector<std::string> extraRoots; // folders added to the large-file search
    bool hasFullDiskAccess = false;
};
