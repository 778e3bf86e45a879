#pragma once
// Byte counts as people read them: decimal units (1 KB = 1000 bytes).

#include <cstdint>
#include <string>

// The file-style formatter: "1 byte", "999 bytes", "1 KB", "1.5 MB", "8.59 GB".
// Picks the smallest unit whose rounded value stays below 1000; fraction digits are
// 0 for bytes and KB, 1 for MB, 2 from GB up, trailing zeros dropped; the decimal
// separator is the current C locale's.
std::string formatFileSize(int64_t bytes);

// The shared size text of every screen: below 1 byte "0 KB", otherwise
// formatFileSize.
std::string formatByteCount(int64_t bytes);
