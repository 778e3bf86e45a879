#pragma once
// What is mounted where, as this process's mount namespace sees it. Renaming a folder
// takes whatever is mounted inside it along (only a mount point itself refuses to
// move), so a folder is moved only when nothing is mounted in it.

#include <string>

namespace MountPoints {

// 0 when nothing is mounted on the folder at `path` (absolute, standardized, free of
// links, as a parent opened without following links proves) or anywhere below it;
// EBUSY when something is; the errno when the mount table cannot be read.
int checkNoneWithin(const std::string& path);

} // namespace MountPoints
