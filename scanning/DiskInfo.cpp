#include "scanning/DiskInfo.h"

#include "platform/Environment.h"

#include <sys/statvfs.h>

// Linux has one free-space figure for unprivileged users (f_bavail); it serves both
// as the "important usage" capacity and as the plain available capacity.
DiskInfo DiskInfo::current() {
    struct statvfs volume {};
    if (::statvfs(Environment::homeFolder().c_str(), &volume) != 0)
        return {};
    DiskInfo info;
    info.total = static_cast<int64_t>(volume.f_blocks) * static_cast<int64_t>(volume.f_frsize);
    info.available = static_cast<int64_t>(volume.f_bavail) * static_cast<int64_t>(volume.f_frsize);
    return info;
}
