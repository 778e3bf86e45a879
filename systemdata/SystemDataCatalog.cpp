#include "systemdata/SystemDataCatalog.h"

#include "platform/Localized.h"

namespace {

using Action = SystemDataEntry::Action;

// Only what the user reads goes through the translation table; ids, symbols,
// folders and commands stay as written.
SystemDataEntry withAction(std::string id, std::string_view title, std::string_view detail,
                           std::string symbol, std::vector<std::string> paths, std::string_view actionTitle,
                           std::string shell, bool admin, std::string_view confirm) {
    return SystemDataEntry{
        .id = std::move(id),
        .title = localized(title),
        .detail = localized(detail),
        .symbol = std::move(symbol),
        .paths = std::move(paths),
        .action = Action{.title = localized(actionTitle),
                         .shell = std::move(shell),
                         .admin = admin,
                         .risk = Risk::caution,
                         .confirm = localized(confirm)},
        .protectedNote = std::nullopt,
    };
}

SystemDataEntry withNote(std::string id, std::string_view title, std::string_view detail, std::string symbol,
                         std::vector<std::string> paths, std::string_view note) {
    return SystemDataEntry{
        .id = std::move(id),
        .title = localized(title),
        .detail = localized(detail),
        .symbol = std::move(symbol),
        .paths = std::move(paths),
        .action = std::nullopt,
        .protectedNote = localized(note),
    };
}

std::vector<SystemDataEntry> buildEntries() {
    std::vector<SystemDataEntry> entries;
    entries.reserve(12);

    entries.push_back(withAction(
        "tm", "Time Machine local snapshots",
        "Local snapshots Time Machine keeps between backups — usually the largest part of System Data, and "
        "counted as purgeable space.",
        "clock.badge.checkmark", {}, "Delete All Snapshots",
        "for d in $(tmutil listlocalsnapshotdates / | grep -E '^[0-9]'); do tmutil deletelocalsnapshots "
        "\"$d\"; "
        "done",
        true,
        "Backups on your Time Machine drive stay intact, but you can no longer restore from local "
        "snapshots."));

    entries.push_back(withAction(
        "vm", "Swap & Sleep image",
        "/private/var/vm — virtual memory (swap) and the sleep image. Shrinks on restart.", "memorychip",
        {"/private/var/vm"}, "Delete sleepimage", "rm -f /private/var/vm/sleepimage", true,
        "macOS recreates the sleep image the next time the Mac sleeps. Swap space is released after a "
        "restart."));

    entries.push_back(withAction(
        "unifiedlogs", "Unified Logs",
        "/private/var/db/diagnostics and uuidtext — the system logs shown in Console.app.",
        "list.bullet.rectangle.portrait", {"/private/var/db/diagnostics", "/private/var/db/uuidtext"},
        "Erase All Logs (log erase)", "log erase --all", true,
        "All past logs will be gone and can no longer be used to troubleshoot earlier problems."));

    entries.push_back(withAction(
        "spotlight", "Spotlight Index",
        "Spotlight's search index (system + ~/Library/Metadata/CoreSpotlight). If it's unusually large, "
        "rebuilding shrinks it.",
        "magnifyingglass.circle",
        {"/System/Volumes/Data/.Spotlight-V100", "~/Library/Metadata/CoreSpotlight"},
        "Rebuild Index (mdutil -E /)", "mdutil -E /", true,
        "Spotlight will re-index the whole Mac. This can take hours and search results will be incomplete "
        "meanwhile."));

    entries.push_back(withAction(
        "simruntimes", "iOS Simulator Runtimes & Devices",
        "Simulator runtimes (iOS/watchOS/visionOS) and Simulator device data.",
        "iphone.gen3.radiowaves.left.and.right",
        {"/Library/Developer/CoreSimulator/Volumes", "/Library/Developer/CoreSimulator/Images",
         "/Library/Developer/CoreSimulator/Cryptex", "~/Library/Developer/CoreSimulator/Devices"},
        "Delete Runtimes Unused for 30 Days", "xcrun simctl runtime delete --notUsedSinceDays 30", false,
        "Deleted runtimes must be re-downloaded from Xcode → Settings → Platforms if needed."));

    entries.push_back(withNote(
        "vmdisks", "Docker / OrbStack / Virtual Machines",
        "VM and container disks — shrink them from inside the app (e.g. docker system prune).", "shippingbox",
        {"~/Library/Containers/com.docker.docker/Data/vms",
         "~/Library/Group Containers/HUAQ24HBR6.dev.orbstack", "~/.orbstack",
         "~/Library/Containers/com.utmapp.UTM", "~/Parallels", "~/.colima", "~/.lima"},
        "Manage from within Docker/OrbStack/your VM app to avoid data loss"));

    entries.push_back(withNote(
        "folders", "System Temp & Caches (/private/var/folders)",
        "Temporary files and caches of all users and daemons. Your own files older than 3 "
        "days are cleaned under \"Temporary Files\"; macOS clears the rest on restart.",
        "folder.badge.gearshape", {"/private/var/folders"}, "Restart your Mac to let macOS clear these"));

    entries.push_back(withNote(
        "assets", "Apple Assets (Apple Intelligence, voices, fonts)",
        "Models and files macOS downloads on its own (/System/Library/AssetsV2, /private/var/MobileAsset).",
        "apple.logo", {"/System/Library/AssetsV2", "/private/var/MobileAsset"},
        "Protected by SIP — turn off Apple Intelligence or remove voices in System Settings to shrink this"));

    entries.push_back(withNote("dbother", "Other System Databases (/private/var/db)",
                               "Databases used by system daemons, excluding the logs and Spotlight above.",
                               "cylinder.split.1x2", {"/private/var/db"},
                               "In use by macOS — don't delete manually"));

    entries.push_back(withNote("appsupport", "Application Support",
                               "App data (/Library and ~/Library/Application Support). Removable caches are "
                               "already covered by the app cache categories.",
                               "folder", {"/Library/Application Support", "~/Library/Application Support"},
                               "App data — uninstall apps you don't use instead"));

    entries.push_back(withNote("containers", "Containers & Group Containers",
                               "Data of sandboxed / App Store apps and Apple apps.", "square.stack.3d.up",
                               {"~/Library/Containers", "~/Library/Group Containers"},
                               "App data — removable caches are under \"Sandboxed App Caches\""));

    entries.push_back(withNote("mailmsg", "Mail & Messages", "Email and attachments, Messages attachments.",
                               "envelope.badge", {"~/Library/Mail", "~/Library/Messages"},
                               "Manage in System Settings → General → Storage, or in Mail/Messages"));

    return entries;
}

} // namespace

namespace SystemDataCatalog {

const std::vector<SystemDataEntry>& entries() {
    // A function-local static is initialised exactly once, even with concurrent first callers.
    static const std::vector<SystemDataEntry> catalogue = buildEntries();
    return catalogue;
}

} // namespace SystemDataCatalog
