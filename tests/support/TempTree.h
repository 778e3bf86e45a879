#pragma once
// Real temporary trees for tests. Everything is created under one fresh folder that
// is removed (permissions restored first, links never followed) when the object
// goes away.

#include <cstdint>
#include <string>
#include <sys/types.h>

class TempTree {
public:
    TempTree();
    ~TempTree();
    TempTree(const TempTree&) = delete;
    TempTree& operator=(const TempTree&) = delete;

    const std::string& root() const { return root_; }

    // Absolute path of `relative` inside the tree; a path already inside it is kept.
    std::string path(const std::string& relative) const;

    // Take a path relative to the tree or one inside it; create parent folders as
    // needed; return the absolute path.
    std::string makeDir(const std::string& relative, mode_t mode = 0755) const;
    std::string makeFile(const std::string& relative, const std::string& content = {}) const;
    // An executable shell script: "#!/bin/sh", then `body`.
    std::string makeScript(const std::string& relative, const std::string& body) const;
    // A file of `bytes` real (non-sparse) data.
    std::string makeFileOfSize(const std::string& relative, int64_t bytes) const;
    // A sparse file of logical length `bytes` with nothing allocated.
    std::string makeSparseFile(const std::string& relative, int64_t bytes) const;
    std::string makeSymlink(const std::string& relative, const std::string& target) const;
    std::string makeHardLink(const std::string& relative, const std::string& existingRelative) const;
    std::string makeFifo(const std::string& relative) const;
    // A bound Unix socket; its absolute path must fit the ~100 bytes of a socket address.
    std::string makeSocket(const std::string& relative) const;

private:
    std::string root_;
};

// Allocated bytes of one entry (st_blocks * 512, not following links).
int64_t allocatedBytes(const std::string& path);

// Sets the modification (and access) time of a path, seconds since the epoch.
void setModificationTime(const std::string& path, int64_t secondsSinceEpoch);

// Recursively gives the tree to uid:gid without following links.
void chownTree(const std::string& path, uid_t uid, gid_t gid);

// Removes a tree of any depth whatever its permissions, never following links; false
// when something stayed.
bool removeTreeForcefully(const std::string& path);
