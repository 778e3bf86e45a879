#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace FileSizer {

// Bytes allocated on disk (st_blocks * 512) by a file or a whole tree, never
// following a symbolic link: a link measures 0, a non-directory its own
// allocation, a directory the sum over every regular file below it (hard links
// counted each time they are met). Unreadable parts add nothing. `isCancelled` is
// asked after every 2,000th entry; when it answers true the sum so far is returned.
// Safe to call from many threads at once.
int64_t allocatedSize(const std::string& path, const std::function<bool()>& isCancelled = {});

} // namespace FileSizer
