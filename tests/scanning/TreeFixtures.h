#pragma once
// Helpers for the scanning tests that the shared support cannot offer: an
// independent allocation count, trees too deep or too long for path-based tools,
// and results carried back from forked children.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Sum of st_blocks * 512 over every regular file below `root` (not following
// links, hard links counted each time), by nftw: the reference figure.
int64_t allocatedBytesOfRegularFiles(const std::string& root);

// Number of descriptors this process has open.
int openDescriptorCount();

// Removes `path` and everything below it using descriptors only, so trees deeper
// or longer than the path-based removal of TempTree can handle go too.
bool removeTreeByDescriptors(const std::string& path);

// Runs `body` in a forked child, as the unprivileged user when `unprivileged`, and
// returns the numbers it produced; nothing when the child failed.
std::optional<std::vector<int64_t>> numbersFromChild(const std::function<std::vector<int64_t>()>& body,
                                                     bool unprivileged);
