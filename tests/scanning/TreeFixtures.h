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

// Removes a tree by descriptors when it goes out of scope.
class RemovedOnExit {
public:
    explicit RemovedOnExit(std::string path) : path_(std::move(path)) {}
    ~RemovedOnExit() { removeTreeByDescriptors(path_); }
    RemovedOnExit(const RemovedOnExit&) = delete;
    RemovedOnExit& operator=(const RemovedOnExit&) = delete;

private:
    std::string path_;
};

// A tmpfs mounted on an existing folder in a mount namespace of this process's own,
// where mounting is permitted: trees made there cost no disk work and vanish when
// it is unmounted, or with the process if that dies first. Where mounting is not
// permitted the folder stays on its own file system and is emptied by descriptors
// at the end.
class PrivateScratch {
public:
    explicit PrivateScratch(std::string folder);
    ~PrivateScratch();
    PrivateScratch(const PrivateScratch&) = delete;
    PrivateScratch& operator=(const PrivateScratch&) = delete;

    bool mounted() const { return mounted_; }

private:
    std::string folder_;
    bool mounted_ = false;
};

// Runs `body` in a forked child, as the unprivileged user when `unprivileged`, and
// returns the numbers it produced; nothing when the child failed.
std::optional<std::vector<int64_t>> numbersFromChild(const std::function<std::vector<int64_t>()>& body,
                                                     bool unprivileged);
