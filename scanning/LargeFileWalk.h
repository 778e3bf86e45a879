#pragma once
// The walk behind the large-file search: regular files of at least a threshold size
// below a set of roots, found on a few threads but handed back in exactly the order
// of one sequential depth-first walk (each folder in listing order, a subfolder
// entered where it is listed, roots in the order they were added).
//
// A subfolder is handed to an idle thread as a task of its own; the task that met
// it keeps a placeholder at that position, and the results are stitched together
// along the placeholders at the end. Only hits are kept, never the walked entries.

#include "scanning/Claims.h"
#include "scanning/LargeFile.h"

#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

class LargeFileWalk {
public:
    LargeFileWalk(int64_t threshold, const Claims& claims, std::stop_token stop);
    ~LargeFileWalk();
    LargeFileWalk(const LargeFileWalk&) = delete;
    LargeFileWalk& operator=(const LargeFileWalk&) = delete;

    // Adds a root. `skip` holds paths (spelled from the root as given) that are
    // neither entered nor reported. A root that cannot be opened, or whose canonical
    // path is covered by the claims, adds nothing.
    void addRoot(const std::string& root, const std::vector<std::string>& skip);

    // Walks every root and returns the hits in sequential order, paths canonical,
    // without notes and without removing files met twice through overlapping roots.
    // Stops every thread soon after `stop` is requested (polled every 5,000 entries
    // per thread) and returns what was found until then.
    std::vector<LargeFile> run();

private:
    struct Task;
    struct Shared;
    class Walker;

    std::unique_ptr<Shared> shared_;
    std::vector<Task*> roots_;
};
