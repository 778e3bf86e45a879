#pragma once
// A record of everything below a folder, to prove that an operation changed
// nothing but what it was given.

#include <map>
#include <set>
#include <string>
#include <sys/types.h>

struct TreeEntry {
    char type = '?'; // f file, d folder, l link, p fifo, s socket, ? other
    mode_t mode = 0;
    uid_t owner = 0;
    long long size = 0;
    long long modified = 0; // nanoseconds; 0 for folders, whose times change with their entries
    std::string content;    // hash of a file's bytes, or a link's target
    bool operator==(const TreeEntry&) const = default;
};

using TreeSnapshot = std::map<std::string, TreeEntry>;

// Walks `root` with nftw(FTW_PHYS), never following links, leaving out the subtrees
// in `excluded` (absolute paths). A walk that fails adds an entry "<walk failed>".
TreeSnapshot snapshotTree(const std::string& root, const std::set<std::string>& excluded = {});

// The differences between two snapshots, one path per line, for failure messages.
std::string describeDifferences(const TreeSnapshot& before, const TreeSnapshot& after);
