#include "removal/Permissions.h"

#include <sys/stat.h>

namespace Permissions {

bool hasFullDiskAccess() {
    struct stat status {};
    return ::lstat(sandboxMarker, &status) != 0;
}

const std::string& fullDiskAccessSettingsURL() {
    static const std::string url = std::string("x-apple.systempreferences") + ":" +
                                   "com.apple.preference.security" + "?" + "Privacy_AllFiles";
    return url;
}

} // namespace Permissions
