#pragma once

#include <string>

namespace Permissions {

// The file a Flatpak sandbox puts at the root of the applications it runs.
inline constexpr const char* sandboxMarker = "/.flatpak-info";

// Linux has no Full Disk Access permission: everything the user may read, the
// application may read, unless it runs in a sandbox that hides the home folder. True
// unless the sandbox marker exists. Touches nothing.
bool hasFullDiskAccess();

// The settings link of the Full Disk Access list.
const std::string& fullDiskAccessSettingsURL();

} // namespace Permissions
