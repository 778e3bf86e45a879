#include "systemdata/SystemDataAnalyzer.h"
#include "systemdata/SystemDataAreas.h"

#include "SystemDataTesting.h"
#include "catalogue/LinuxCommands.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace {

const std::string duTail = " 2>/dev/null | awk '{s+=$1} END {print s+0}')\"\n";
const std::string snapshotCount = "tmutil listlocalsnapshots / 2>/dev/null | grep -c com.apple";

} // namespace

// The areas as measured here: each entry's own folders and then its Linux ones, the
// snapshot count of Snapper or Timeshift, and every folder another row shows left out
// of the row whose folder holds it (the logs and indexes of /var/lib, the runtimes
// and mail of ~/.local/share, the virtual machines among the app containers).
TEST(MeasurementScript, AreasScriptIsExact) {
    ::setenv("HOME", "/home/some one", 1); // read once per process: first, and outside /tmp
    const std::string h = "/home/some one";
    const std::string expected =
        "#!/bin/sh\n"
        "PROG='/tmp/korvane-sd-1.txt'\n"
        "emit() { printf '%s|%s\\n' \"$1\" \"$2\"; printf '%s|%s\\n' \"$1\" \"$2\" >> \"$PROG\"; }\n"
        "emit tm \"$(if snapper -c root list >/dev/null 2>&1; then snapper -c root --csvout list --columns "
        "number 2>/dev/null | grep -c '^[1-9]'; else timeshift --list --scripted 2>/dev/null | grep -c -E "
        "'^[0-9]+ +>'; fi)\"\n"
        "emit 'vm' \"$(du -skx '/private/var/vm' '/swapfile' '/swap.img' '/var/swap'" +
        duTail +
        "emit 'unifiedlogs' \"$(du -skx '/private/var/db/diagnostics' '/private/var/db/uuidtext' "
        "'/var/log/journal' '/run/log/journal'" +
        duTail + "emit 'spotlight' \"$(du -skx '/System/Volumes/Data/.Spotlight-V100' '" + h +
        "/Library/Metadata/CoreSpotlight' '" + h + "/.cache/tracker3' '" + h + "/.local/share/tracker' '" +
        h + "/.local/share/baloo' '/var/lib/plocate' '/var/lib/mlocate'" + duTail +
        "emit 'simruntimes' \"$(du -skx '/Library/Developer/CoreSimulator/Volumes' "
        "'/Library/Developer/CoreSimulator/Images' '/Library/Developer/CoreSimulator/Cryptex' '" +
        h + "/Library/Developer/CoreSimulator/Devices' '/var/lib/flatpak/runtime' '" + h +
        "/.local/share/flatpak/runtime'" + duTail + "emit 'vmdisks' \"$(du -skx '" + h +
        "/Library/Containers/com.docker.docker/Data/vms' '" + h +
        "/Library/Group Containers/HUAQ24HBR6.dev.orbstack' '" + h + "/.orbstack' '" + h +
        "/Library/Containers/com.utmapp.UTM' '" + h + "/Parallels' '" + h + "/.colima' '" + h +
        "/.lima' '/var/lib/docker' '/var/lib/containers' '" + h +
        "/.local/share/containers' '/var/lib/libvirt/images' '" + h + "/.local/share/libvirt/images' '" + h +
        "/VirtualBox VMs' '" + h +
        "/.local/share/gnome-boxes/images' '/var/lib/lxd' '/var/snap/lxd/common/lxd' '/var/lib/incus'" +
        duTail + "emit 'folders' \"$(du -skx '/private/var/folders' '/tmp' '/var/tmp'" + duTail +
        "emit 'assets' \"$(du -skx '/System/Library/AssetsV2' '/private/var/MobileAsset' "
        "'/var/lib/snapd/snaps' '/usr/lib/firmware' '/usr/share/fonts'" +
        duTail +
        "emit 'dbother' \"$(du -skx --exclude='/var/lib/plocate' --exclude='/var/lib/mlocate' "
        "--exclude='/var/lib/flatpak/runtime' --exclude='/var/lib/docker' --exclude='/var/lib/containers' "
        "--exclude='/var/lib/libvirt/images' --exclude='/var/lib/lxd' --exclude='/var/lib/incus' "
        "--exclude='/var/lib/snapd/snaps' '/private/var/db' '/var/lib' '/var/log/journal' "
        "'/run/log/journal'" +
        duTail + "emit 'appsupport' \"$(du -skx --exclude='" + h + "/.local/share/tracker' --exclude='" + h +
        "/.local/share/baloo' --exclude='" + h + "/.local/share/flatpak/runtime' --exclude='" + h +
        "/.local/share/containers' --exclude='" + h + "/.local/share/libvirt/images' --exclude='" + h +
        "/.local/share/gnome-boxes/images' --exclude='" + h + "/.local/share/evolution' --exclude='" + h +
        "/.local/share/geary' '/Library/Application Support' '" + h + "/Library/Application Support' '" + h +
        "/.local/share' '" + h + "/.config' '/usr/local/share'" + duTail +
        "emit 'containers' \"$(du -skx --exclude='" + h + "/Library/Containers/com.docker.docker/Data/vms' " +
        "--exclude='" + h + "/Library/Group Containers/HUAQ24HBR6.dev.orbstack' --exclude='" + h +
        "/Library/Containers/com.utmapp.UTM' '" + h + "/Library/Containers' '" + h +
        "/Library/Group Containers' '" + h + "/.var/app' '" + h + "/snap'" + duTail +
        "emit 'mailmsg' \"$(du -skx '" + h + "/Library/Mail' '" + h + "/Library/Messages' '" + h +
        "/.thunderbird' '" + h + "/.local/share/evolution' '" + h + "/.local/share/geary'" + duTail +
        "exit 0\n";
    EXPECT_EQ(SystemDataAnalyzer::measurementScript(SystemDataAreas::entries(), "/tmp/korvane-sd-1.txt"),
              expected);
}

TEST(MeasurementScript, QuotesIdsPathsAndExclusionsAndSkipsEntriesWithoutFolders) {
    std::vector<SystemDataEntry> entries(4);
    entries[0].id = "it's";
    entries[0].paths = {"/data/it's here", "/data/plain"};
    entries[1].id = "empty";
    entries[2].id = "tm";
    entries[2].paths = {"/ignored"};
    // Inside another entry's folder: left out of that entry, its wildcards taken literally.
    entries[3].id = "inner";
    entries[3].paths = {"/data/plain/in[1]*"};
    EXPECT_EQ(SystemDataAnalyzer::measurementScript(entries, "/t/o'k.txt"),
              "#!/bin/sh\n"
              "PROG='/t/o'\\''k.txt'\n"
              "emit() { printf '%s|%s\\n' \"$1\" \"$2\"; printf '%s|%s\\n' \"$1\" \"$2\" >> \"$PROG\"; }\n"
              "emit 'it'\\''s' \"$(du -skx --exclude='/data/plain/in\\[1\\]\\*' '/data/it'\\''s here' "
              "'/data/plain'" +
                  duTail + "emit tm \"$(" + LinuxCommands::find(snapshotCount)->steps.front().shell +
                  ")\"\n" + "emit 'inner' \"$(du -skx '/data/plain/in[1]*'" + duTail + "exit 0\n");
}

TEST(SystemDataParse, AcceptsOnlyWholeNumbersAfterTheFirstBar) {
    using Pairs = std::vector<std::pair<std::string, int64_t>>;
    EXPECT_EQ(SystemDataAnalyzer::parse("x| 12 \ny|+5\nz|12kb\n|5\nw\nv|\nu| \t-7\t\nk|1|2\na b|3\nn|- 4\n"),
              (Pairs{{"x", 12}, {"y", 5}, {"u", -7}, {"a b", 3}}));
    EXPECT_EQ(SystemDataAnalyzer::parse("a|1\rb|2\r\nc|3\u2028d|4\u2029e|5\n\n\r\nf|6"),
              (Pairs{{"a", 1}, {"b", 2}, {"c", 3}, {"d", 4}, {"e", 5}, {"f", 6}}));
    EXPECT_EQ(
        SystemDataAnalyzer::parse("max|9223372036854775807\nmin|-9223372036854775808\n"
                                  "over|9223372036854775808\nunder|-9223372036854775809\nsign|+-1\nbare|+\n"),
        (Pairs{{"max", INT64_MAX}, {"min", INT64_MIN}}));
    EXPECT_TRUE(SystemDataAnalyzer::parse("").empty());
}
