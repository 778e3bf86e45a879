#pragma once

#include <string>
#include <vector>

namespace Permissions {

// The files only a process with Full Disk Access may open, in probe order.
std::vector<std::string> probePaths();

// True when one of the existing probe files can be opened for reading
// (O_RDONLY | O_NONBLOCK | O_NOFOLLOW, closed at once). Touches nothing else.
bool hasFullDiskAccess();

// The settings link of the Full Disk Access list.
const std::string& fullDiskAccessSettingsURL();

} // namespace Permissions
