#include "removal/Cleaner.h"

#include "catalogue/CleanupRules.h"
#include "catalogue/ProtectedPaths.h"
#include "platform/Date.h"
#include "platform/Environment.h"
#include "platform/Localized.h"
#include "platform/Paths.h"
#include "platform/SafeFs.h"
#include "platform/Text.h"
#include "platform/Trash.h"
#include "removal/AdminBatchScript.h"
#include "removal/Privileged.h"
#include "removal/Shell.h"
#include "scanning/DiskInfo.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace Cleaner {

namespace {

constexpr double commandTimeout = 600;
constexpr double batchTimeout = 1800;
constexpr size_t commandReasonLength = 300;
constexpr size_t toolMessageLength = 200;

bool isPermissionError(int error) {
    return error == EACCES || error == EPERM;
}

// The English description of an errno, which doubles as its localisation key
// (strerror would already be translated by the process locale).
std::string errorDescription(int error) {
    if (const char* text = ::strerrordesc_np(error))
        return localized(text);
    return localizedFormat("Unknown error %1", {std::to_string(error)});
}

void report(const Progress& progress, double fraction, const std::string& text) {
    if (progress)
        progress(fraction, text);
}

// True when some component of the parent chain is a symbolic link (or the chain no
// longer resolves): the root shell of the batch would follow such a link, so the
// item is not handed to it.
bool hasUnsafeParentChain(const std::string& standardized) {
    const std::string parent = Paths::parentFolder(standardized);
    char* resolved = ::realpath(parent.c_str(), nullptr);
    if (!resolved)
        return true;
    const bool same = parent == resolved;
    std::free(resolved);
    return !same;
}

std::string commandFailureReason(const Shell::Output& output) {
    std::string reason = Text::prefix(Text::trimmed(output.standardError), commandReasonLength);
    if (reason.empty())
        reason = "exit " + std::to_string(output.status);
    return reason;
}

} // namespace

bool isRefusedPath(const std::string& path) {
    // A NUL byte would make the system calls act on a shorter path than the one
    // judged here; a relative path would depend on the working folder.
    if (path.find('\0') != std::string::npos)
        return true;
    const std::string standardized = Paths::standardizedPath(path);
    if (standardized.empty() || standardized.front() != '/')
        return true;
    // Temporary files lie directly in the shared temporary folders or the user's own
    // one, shallower than anything else worth removing: there the depth rule would
    // refuse every item, so only the protected paths apply.
    const auto isTooShallow = [](const std::string& candidate) {
        if (Paths::componentCount(candidate) >= 4)
            return false;
        const std::string parent = Paths::parentFolder(candidate);
        const bool inTemporaryFolder = parent == "/tmp" || parent == "/var/tmp" ||
                                       (parent == Environment::temporaryFolder() && parent != "/");
        return !inTemporaryFolder;
    };
    if (ProtectedPaths::contains(standardized) || isTooShallow(standardized))
        return true;
    // The same folder reached through a link in the parent chain is still protected.
    const std::string canonical = Paths::canonicalPath(standardized);
    return canonical != standardized && (ProtectedPaths::contains(canonical) || isTooShallow(canonical));
}

// Items are removed at their standardized path, the one the safety check judged:
// for the canonical paths a scan records it is the same string, and otherwise it is
// the only form SafeFs accepts (no ".", "..", "~" or doubled separators).
CleanResult clean(const std::vector<ScanItem>& items, const Progress& progress) {
    CleanResult result;
    result.freeBefore = DiskInfo::current().available;
    const double total = static_cast<double>(std::max<size_t>(items.size(), 1));
    std::vector<PrivilegedWork> work;

    for (size_t i = 0; i < items.size(); ++i) {
        const ScanItem& item = items[i];
        report(progress, static_cast<double>(i) / total, item.name);

        std::optional<std::string> path;
        if (item.url) {
            if (isRefusedPath(*item.url)) {
                result.recordFailure(item, localized("Protected system folder — skipped for safety"));
                continue;
            }
            path = Paths::standardizedPath(*item.url);
        }

        switch (item.method.kind) {
        case RemovalMethod::Kind::trash: {
            if (!path)
                break;
            const Trash::MoveResult moved = Trash::moveToTrash(*path);
            if (moved.error == 0) {
                result.succeeded.push_back(item);
                result.movedToTrashBytes += item.size.value_or(0);
                if (!moved.location.empty())
                    result.trashedURLs.push_back(moved.location);
            } else if (isPermissionError(moved.error)) {
                work.push_back({item, false});
            } else {
                result.recordFailure(item, errorDescription(moved.error));
            }
            break;
        }
        case RemovalMethod::Kind::permanent: {
            if (!path)
                break;
            const int error = SafeFs::removeItem(*path);
            if (error == 0) {
                result.succeeded.push_back(item);
                result.deletedBytes += item.size.value_or(0);
            } else if (isPermissionError(error)) {
                work.push_back({item, true});
            } else {
                result.recordFailure(item, errorDescription(error));
            }
            break;
        }
        case RemovalMethod::Kind::adminTrash:
            work.push_back({item, false});
            break;
        case RemovalMethod::Kind::command: {
            if (item.method.admin) {
                work.push_back({item, false});
                break;
            }
            const Shell::Output output = Shell::run(item.method.command, commandTimeout);
            if (output.status == 0)
                result.succeeded.push_back(item);
            else
                result.recordFailure(item, commandFailureReason(output));
            break;
        }
        }
    }

    if (!work.empty()) {
        report(progress, 0.95, localized("Waiting for administrator password…"));
        runPrivileged(work, result);
    }
    report(progress, 1.0, localized("Done"));
    result.freeAfter = DiskInfo::current().available;
    return result;
}

void runPrivileged(const std::vector<PrivilegedWork>& work, CleanResult& result) {
    const std::string& home = Environment::homeFolder();
    const std::string dest = AdminBatchScript::destination(home, Dates::now());

    // Pairs whose parent chain now holds a link lose their path, so the script gives
    // them no line (their index, and so every other key, stays the same).
    std::vector<PrivilegedWork> scripted = work;
    bool movesSomething = false;
    for (PrivilegedWork& pair : scripted) {
        if (!AdminBatchScript::writesLine(pair) || pair.item.method.isCommand())
            continue;
        if (hasUnsafeParentChain(Paths::standardizedPath(*pair.item.url))) {
            pair.item.url.reset();
            continue;
        }
        movesSomething = movesSomething || !pair.permanent;
    }
    // The script's `mkdir -p` runs as the administrator; a Trash folder it had to
    // create would belong to the administrator and refuse every later move.
    if (movesSomething)
        ::mkdir(Paths::join(home, ".Trash").c_str(), 0700);

    const std::string script =
        AdminBatchScript::build(dest, scripted, Environment::realUserID(), Environment::realGroupID());
    const Shell::Output output = Privileged::run(
        script, localized("Veltro needs administrator privileges to clean system files."), batchTimeout);

    if (output.status != 0) {
        const std::string reason =
            output.standardError.find("-128") != std::string::npos
                ? localized("Administrator authentication was cancelled")
                : localizedFormat("Could not run with administrator privileges: %1",
                                  {Text::prefix(output.standardError, toolMessageLength)});
        for (const PrivilegedWork& pair : work)
            result.recordFailure(pair.item, reason);
        return;
    }

    const std::map<std::string, bool> answers = AdminBatchScript::parseAnswers(output.standardOutput);
    bool moved = false;
    for (size_t k = 0; k < work.size(); ++k) {
        const PrivilegedWork& pair = work[k];
        const auto answer = answers.find(AdminBatchScript::entryKey(k));
        // Only a line the script was given can speak for an item.
        const bool ok =
            AdminBatchScript::writesLine(scripted[k]) && answer != answers.end() && answer->second;
        if (!ok) {
            result.recordFailure(pair.item, localized("Protected by macOS (SIP) or currently in use"));
            continue;
        }
        result.succeeded.push_back(pair.item);
        if (pair.item.method.isCommand())
            continue;
        if (pair.permanent) {
            result.deletedBytes += pair.item.size.value_or(0);
        } else {
            result.movedToTrashBytes += pair.item.size.value_or(0);
            moved = true;
        }
    }
    if (moved)
        result.trashedURLs.push_back(dest);
}

PurgeResult purge(const std::vector<std::string>& paths) {
    PurgeResult result;
    const int64_t before = DiskInfo::current().available;
    for (const std::string& given : paths) {
        // Judged and acted on in standardized form, so neither "/.Trash/.." nor a
        // trailing "/.Trash/" can pass the test while naming something else.
        const std::string path = Paths::standardizedPath(given);
        const bool inTrash =
            path.find("/.Trash/") != std::string::npos || path.find("/.Trashes/") != std::string::npos;
        if (!inTrash || path.find('\0') != std::string::npos || path.front() != '/') {
            ++result.failed;
            continue;
        }
        if (SafeFs::removeItem(path) != 0)
            ++result.failed;
    }
    const int64_t after = DiskInfo::current().available;
    result.freed = std::max<int64_t>(after - before, 0);
    return result;
}

} // namespace Cleaner
