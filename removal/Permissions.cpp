#include "removal/Permissions.h"

#include "platform/Environment.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Permissions {

std::vector<std::string> probePaths() {
    const std::string& home = Environment::homeFolder();
    return {
        "/Library/Application Support/com.apple.TCC/TCC.db",
        home + "/Library/Safari/CloudTabs.db",
        home + "/Library/Safari/Bookmarks.plist",
    };
}

bool hasFullDiskAccess() {
    for (const std::string& path : probePaths()) {
        struct stat status {};
        if (::lstat(path.c_str(), &status) != 0)
            continue;
        // Only the open counts. O_NONBLOCK keeps a FIFO or device from stalling the
        // probe; O_NOFOLLOW keeps a planted link from granting what the file would not.
        const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0)
            continue;
        ::close(fd);
        return true;
    }
    return false;
}

const std::string& fullDiskAccessSettingsURL() {
    static const std::string url = std::string("x-apple.systempreferences") + ":" +
                                   "com.apple.preference.security" + "?" + "Privacy_AllFiles";
    return url;
}

} // namespace Permissions
