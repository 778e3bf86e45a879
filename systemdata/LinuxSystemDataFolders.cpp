#include "systemdata/LinuxSystemDataFolders.h"

#include <map>

namespace LinuxSystemDataFolders {

const std::vector<std::string>& of(std::string_view entryID) {
    // The snapshot entry has no folders: its figure is the snapshot count.
    static const std::map<std::string, std::vector<std::string>, std::less<>> folders{
        {"vm", {"/swapfile", "/swap.img", "/var/swap"}},
        {"unifiedlogs", {"/var/log/journal", "/run/log/journal"}},
        {"spotlight",
         {"~/.cache/tracker3", "~/.local/share/tracker", "~/.local/share/baloo", "/var/lib/plocate",
          "/var/lib/mlocate"}},
        {"simruntimes", {"/var/lib/flatpak/runtime", "~/.local/share/flatpak/runtime"}},
        {"vmdisks",
         {"/var/lib/docker", "/var/lib/containers", "~/.local/share/containers", "/var/lib/libvirt/images",
          "~/.local/share/libvirt/images", "~/VirtualBox VMs", "~/.local/share/gnome-boxes/images",
          "/var/lib/lxd", "/var/snap/lxd/common/lxd", "/var/lib/incus"}},
        {"folders", {"/tmp", "/var/tmp"}},
        {"assets", {"/var/lib/snapd/snaps", "/usr/lib/firmware", "/usr/share/fonts"}},
        {"dbother", {"/var/lib"}},
        {"appsupport", {"~/.local/share", "~/.config", "/usr/local/share"}},
        {"containers", {"~/.var/app", "~/snap"}},
        {"mailmsg", {"~/.thunderbird", "~/.local/share/evolution", "~/.local/share/geary"}},
    };
    static const std::vector<std::string> none;
    const auto found = folders.find(entryID);
    return found == folders.end() ? none : found->second;
}

} // namespace LinuxSystemDataFolders
