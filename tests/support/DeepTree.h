#pragma once
// Trees deeper than PATH_MAX, which path-based tools cannot make: made through
// descriptors, one level at a time.

#include "support/TempTree.h"

#include <functional>
#include <string>

// `levels` nested folders named "d" below the existing folder `top`; every 10th level
// holds a file "f" and every 100th a small side tree, so that a walk leaves and
// re-enters folders whose listing is half done. `atLevel(fd, level)` may add more.
// Returns 0 or an errno.
int buildDeepTree(const std::string& top, int levels, const std::function<void(int, int)>& atLevel = {});
