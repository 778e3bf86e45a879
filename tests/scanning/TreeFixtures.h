#pragma once
// Helpers for the scanning tests that the shared support does not offer: an
// independent allocation count, a folder's listing order, and a scratch file system for trees that are costly
// to make on disk.

#include <cstdint>
#include <string>
#include <vector>

// Sum of st_blocks * 512 over every regular file below `root` (not following
// links, hard links counted each time), by nftw: the reference figure.
int64_t allocatedBytesOfRegularFiles(const std::string& root);

// Entry names of a folder in the order the file system lists them (the shared
// entriesOf sorts them); none when it cannot be read.
std::vector<std::string> namesInListingOrder(const std::string& folder);

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
