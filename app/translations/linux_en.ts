<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<!-- Linux English: the Linux sentence for every text of the code that names what only the other
     platform has, and the singular forms of counted texts. Looked up by sentence in any context. -->
<TS version="2.1" language="en">
<context>
    <name>Veltro</name>
    <message>
        <source>Macintosh HD</source>
        <translation>System Disk</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Grant Full Disk Access for a Complete Scan</source>
        <translation>Give Veltro Your Whole Home Folder for a Complete Scan</translation>
    </message>
    <message>
        <source>System Settings → Privacy &amp; Security → Full Disk Access → turn on Veltro, then relaunch. Without it, App Store app caches, Mail downloads and iOS backups are skipped.</source>
        <translation>Veltro runs in a sandbox that hides parts of your home folder. Allow it your whole home folder (for the Flatpak: flatpak override --user --filesystem=home app.veltro.Veltro), then relaunch. Without it, sandboxed app caches, Mail downloads and iOS backups are skipped.</translation>
    </message>
    <message>
        <source>Open System Settings</source>
        <translation>Open Help Page</translation>
    </message>
    <message>
        <source>Protected by macOS (SIP) or currently in use</source>
        <translation>Protected by the system or currently in use</translation>
    </message>
    <message>
        <source>☁️ In iCloud Drive — deleting removes it from all your devices</source>
        <translation>☁️ In a synced cloud folder — deleting removes it from all your devices</translation>
    </message>
    <message>
        <source>Sandboxed App Caches (App Store)</source>
        <translation>Sandboxed App Caches (Flatpak, Snap)</translation>
    </message>
    <message>
        <source>~/Library/Containers/*/Data/Library/Caches — caches of App Store and Apple apps (requires Full Disk Access).</source>
        <translation>~/.var/app/*/cache and ~/snap/*/common/.cache — caches of Flatpak and Snap apps.</translation>
    </message>
    <message>
        <source>~/Library/Caches — caches of every app, rebuilt on next launch (iCloud/CloudKit caches in use are excluded).</source>
        <translation>~/Library/Caches — caches of every app, rebuilt on next launch (caches of sync services in use are excluded).</translation>
    </message>
    <message>
        <source>/Library/Caches — system-wide caches for all users. Requires an administrator password (SIP-protected items are skipped). Restarting afterwards is recommended.</source>
        <translation>/var/cache — system-wide caches of the package manager, manual pages and fonts. Requires an administrator password (protected items are skipped). Restarting afterwards is recommended.</translation>
    </message>
    <message>
        <source>/Library/Logs, system crash/diagnostic reports and old compressed logs in /private/var/log.</source>
        <translation>Rotated and compressed logs in /var/log, crash reports in /var/crash and core dumps.</translation>
    </message>
    <message>
        <source>/Library/Updates — leftover downloaded updates.</source>
        <translation>/var/cache/apt/archives and other package caches — leftover downloaded updates.</translation>
    </message>
    <message>
        <source>~/Library/Logs including DiagnosticReports — log files not needed for anything to work.</source>
        <translation>Old session and display-server logs (~/.xsession-errors.old, ~/.local/share/xorg) and ~/Library/Logs — log files not needed for anything to work.</translation>
    </message>
    <message>
        <source>Files in $TMPDIR not modified for more than 3 days.</source>
        <translation>Your own files in /tmp and /var/tmp (or $TMPDIR) not modified for more than 3 days.</translation>
    </message>
    <message>
        <source>Time Machine Local Snapshots</source>
        <translation>System Snapshots</translation>
    </message>
    <message>
        <source>Local snapshots kept by Time Machine (counted as &quot;System Data&quot;) — backups on your Time Machine drive are not affected.</source>
        <translation>Snapshots of the system kept by Snapper or Timeshift (counted as &quot;System Data&quot;) — backups on other drives are not affected.</translation>
    </message>
    <message>
        <source>Delete all Time Machine local snapshots</source>
        <translation>Delete all system snapshots (Snapper or Timeshift)</translation>
    </message>
    <message>
        <source>What macOS files under “System Data” in Settings → Storage.</source>
        <translation>Where the system&apos;s own space goes: snapshots, swap, logs, search indexes, runtimes, virtual machines and app data.</translation>
    </message>
    <message>
        <source> purgeable — macOS frees it automatically when needed</source>
        <translation> purgeable — the system frees it automatically when needed</translation>
    </message>
    <message>
        <source>Managed by macOS</source>
        <translation>Managed by the System</translation>
    </message>
    <message>
        <source>Time Machine local snapshots</source>
        <translation>System Snapshots</translation>
    </message>
    <message>
        <source>Local snapshots Time Machine keeps between backups — usually the largest part of System Data, and counted as purgeable space.</source>
        <translation>Snapshots of the system that Snapper (configuration “root”) or Timeshift keeps — often a large part of System Data.</translation>
    </message>
    <message>
        <source>Backups on your Time Machine drive stay intact, but you can no longer restore from local snapshots.</source>
        <translation>Backups on other drives stay intact, but you can no longer roll the system back to these snapshots.</translation>
    </message>
    <message>
        <source>Swap &amp; Sleep image</source>
        <translation>Swap File</translation>
    </message>
    <message>
        <source>/private/var/vm — virtual memory (swap) and the sleep image. Shrinks on restart.</source>
        <translation>/swapfile, /swap.img or /var/swap — virtual memory (swap) kept on the disk.</translation>
    </message>
    <message>
        <source>Unified Logs</source>
        <translation>System Journal</translation>
    </message>
    <message>
        <source>/private/var/db/diagnostics and uuidtext — the system logs shown in Console.app.</source>
        <translation>/var/log/journal — the system logs that journalctl shows.</translation>
    </message>
    <message>
        <source>Erase All Logs (log erase)</source>
        <translation>Erase All Logs (journalctl)</translation>
    </message>
    <message>
        <source>Spotlight Index</source>
        <translation>Search Indexes</translation>
    </message>
    <message>
        <source>Spotlight&apos;s search index (system + ~/Library/Metadata/CoreSpotlight). If it&apos;s unusually large, rebuilding shrinks it.</source>
        <translation>The file-name index of locate (/var/lib/plocate) and your desktop search index (Tracker or Baloo). If they are unusually large, rebuilding shrinks them.</translation>
    </message>
    <message>
        <source>Rebuild Index (mdutil -E /)</source>
        <translation>Rebuild Indexes</translation>
    </message>
    <message>
        <source>Spotlight will re-index the whole Mac. This can take hours and search results will be incomplete meanwhile.</source>
        <translation>The file-name index is built again and your desktop search starts over. This can take hours and search results will be incomplete meanwhile.</translation>
    </message>
    <message>
        <source>iOS Simulator Runtimes &amp; Devices</source>
        <translation>Flatpak Runtimes</translation>
    </message>
    <message>
        <source>Simulator runtimes (iOS/watchOS/visionOS) and Simulator device data.</source>
        <translation>Runtimes that Flatpak apps share (/var/lib/flatpak/runtime and ~/.local/share/flatpak/runtime).</translation>
    </message>
    <message>
        <source>Delete Runtimes Unused for 30 Days</source>
        <translation>Remove Unused Runtimes</translation>
    </message>
    <message>
        <source>Deleted runtimes must be re-downloaded from Xcode → Settings → Platforms if needed.</source>
        <translation>Runtimes that no installed app uses are removed, yours and the system&apos;s. Flatpak downloads them again when an app needs them.</translation>
    </message>
    <message>
        <source>Docker / OrbStack / Virtual Machines</source>
        <translation>Docker / Podman / Virtual Machines</translation>
    </message>
    <message>
        <source>Manage from within Docker/OrbStack/your VM app to avoid data loss</source>
        <translation>Manage from within Docker/Podman/your VM app to avoid data loss</translation>
    </message>
    <message>
        <source>System Temp &amp; Caches (/private/var/folders)</source>
        <translation>System Temporary Files (/tmp, /var/tmp)</translation>
    </message>
    <message>
        <source>Temporary files and caches of all users and daemons. Your own files older than 3 days are cleaned under &quot;Temporary Files&quot;; macOS clears the rest on restart.</source>
        <translation>Temporary files of all users and services. Your own files older than 3 days are cleaned under &quot;Temporary Files&quot;; the system clears the rest on restart or after some days.</translation>
    </message>
    <message>
        <source>Restart your Mac to let macOS clear these</source>
        <translation>Restart your computer to let the system clear these</translation>
    </message>
    <message>
        <source>Apple Assets (Apple Intelligence, voices, fonts)</source>
        <translation>System Assets (snaps, firmware, fonts)</translation>
    </message>
    <message>
        <source>Models and files macOS downloads on its own (/System/Library/AssetsV2, /private/var/MobileAsset).</source>
        <translation>Snap packages, device firmware and fonts the system keeps (/var/lib/snapd/snaps, /usr/lib/firmware, /usr/share/fonts).</translation>
    </message>
    <message>
        <source>Protected by SIP — turn off Apple Intelligence or remove voices in System Settings to shrink this</source>
        <translation>Installed by the package manager — remove packages you don&apos;t use to shrink this</translation>
    </message>
    <message>
        <source>Other System Databases (/private/var/db)</source>
        <translation>Other System Data (/var/lib)</translation>
    </message>
    <message>
        <source>Databases used by system daemons, excluding the logs and Spotlight above.</source>
        <translation>State and databases of system services, excluding the areas above.</translation>
    </message>
    <message>
        <source>In use by macOS — don&apos;t delete manually</source>
        <translation>In use by the system — don&apos;t delete manually</translation>
    </message>
    <message>
        <source>Application Support</source>
        <translation>Application Data</translation>
    </message>
    <message>
        <source>App data (/Library and ~/Library/Application Support). Removable caches are already covered by the app cache categories.</source>
        <translation>App data (~/.local/share, ~/.config and /usr/local/share). Removable caches are already covered by the app cache categories.</translation>
    </message>
    <message>
        <source>Containers &amp; Group Containers</source>
        <translation>Flatpak &amp; Snap App Data</translation>
    </message>
    <message>
        <source>Data of sandboxed / App Store apps and Apple apps.</source>
        <translation>Data of sandboxed Flatpak and Snap apps (~/.var/app, ~/snap).</translation>
    </message>
    <message>
        <source>Mail &amp; Messages</source>
        <translation>Mail</translation>
    </message>
    <message>
        <source>Email and attachments, Messages attachments.</source>
        <translation>Email and attachments of Thunderbird, Evolution and Geary.</translation>
    </message>
    <message>
        <source>Manage in System Settings → General → Storage, or in Mail/Messages</source>
        <translation>Manage in your mail app</translation>
    </message>
    <message numerus="yes">
        <source>Clean %Ln items? [y/N] </source>
        <translation>
            <numerusform>Clean %Ln item? [y/N] </numerusform>
            <numerusform>Clean %Ln items? [y/N] </numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln items</source>
        <translation>
            <numerusform>%Ln item</numerusform>
            <numerusform>%Ln items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln items selected</source>
        <translation>
            <numerusform>%Ln item selected</numerusform>
            <numerusform>%Ln items selected</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln snapshots</source>
        <translation>
            <numerusform>%Ln snapshot</numerusform>
            <numerusform>%Ln snapshots</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Cleaned %Ln Items</source>
        <translation>
            <numerusform>Cleaned %Ln Item</numerusform>
            <numerusform>Cleaned %Ln Items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln Items Could Not Be Cleaned</source>
        <translation>
            <numerusform>%Ln Item Could Not Be Cleaned</numerusform>
            <numerusform>%Ln Items Could Not Be Cleaned</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Last Cleanup: %Ln Items</source>
        <translation>
            <numerusform>Last Cleanup: %Ln Item</numerusform>
            <numerusform>Last Cleanup: %Ln Items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln items · %1</source>
        <translation>
            <numerusform>%Ln item · %1</numerusform>
            <numerusform>%Ln items · %1</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Clean %Ln Items</source>
        <translation>
            <numerusform>Clean %Ln Item</numerusform>
            <numerusform>Clean %Ln Items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln system items — macOS will ask for an administrator password once</source>
        <translation>
            <numerusform>%Ln system item — the system will ask for an administrator password once</numerusform>
            <numerusform>%Ln system items — the system will ask for an administrator password once</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln large files selected — make sure you don&apos;t need them</source>
        <translation>
            <numerusform>%Ln large file selected — make sure you don&apos;t need it</numerusform>
            <numerusform>%Ln large files selected — make sure you don&apos;t need them</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln items from review categories (Downloads/Backups/Archives)</source>
        <translation>
            <numerusform>%Ln item from review categories (Downloads/Backups/Archives)</numerusform>
            <numerusform>%Ln items from review categories (Downloads/Backups/Archives)</numerusform>
        </translation>
    </message>
</context>
</TS>
