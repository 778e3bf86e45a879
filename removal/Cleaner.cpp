#include "removal/Cleaner.h"

#include "catalogue/CleanupRules.h"
#include "catalogue/ProtectedPaths.h"
#include "platform/Environment.h"
#include "platform/Localized.h"
#include "platform/Paths.h"
#include "platform/Text.h"
#include "platform/Trash.h"
#include "removal/AdminBatchScript.h"
#include "removal/Privileged.h"
#include "removal/Shell.h"
#include "removal/WorkList.h"
#include "scanning/DiskInfo.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
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

// Now as the user's clock shows it, in seconds: the helper formats it as UTC, so the
// dated folder carries the user's local time whatever zone root is in.
int64_t localWallClockSeconds() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return static_cast<int64_t>(now) + local.tm_gmtoff;
}

// The dated folder's name from the helper's "DEST|<name>" line; empty when none came.
std::string datedFolderName(std::string_view output) {
    for (std::string_view line : Text::lines(output)) {
        const auto pieces = Text::splitAtFirstBar(line);
        if (pieces && pieces->first == "DEST" && pieces->second.starts_with("Veltro-") &&
            pieces->second.find('/') == std::string_view::npos)
            return std::string(pieces->second);
    }
    return {};
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
            const int error = Trash::deleteForGood(*path);
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
    // The helper judges every path again as root and acts only through descriptors;
    // here the list is made and the answers are read.
    WorkList::Batch batch;
    batch.uid = Environment::realUserID();
    batch.gid = Environment::realGroupID();
    batch.home = Environment::homeFolder();
    batch.temporary = Environment::temporaryFolder();
    batch.trash = Trash::homeTrashFolder();
    batch.localTime = localWallClockSeconds();
    batch.steps = AdminBatchScript::steps(work);
    const Shell::Output output = Privileged::runHelper(
        {WorkList::cleanMode, WorkList::encode(batch),
         localized("Veltro needs administrator privileges to clean system files."), batchTimeout});

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
    std::set<std::string> given;
    for (const WorkList::Step& step : batch.steps)
        given.insert(step.key);
    bool moved = false;
    for (size_t k = 0; k < work.size(); ++k) {
        const PrivilegedWork& pair = work[k];
        const std::string key = AdminBatchScript::entryKey(k);
        const auto answer = answers.find(key);
        // Only a step the helper was given can speak for an item.
        if (!given.contains(key) || answer == answers.end() || !answer->second) {
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
    if (const std::string dest = datedFolderName(output.standardOutput); moved && !dest.empty())
        result.trashedURLs.push_back(Paths::join(batch.trash, "files/" + dest));
}

PurgeResult purge(const std::vector<std::string>& paths) {
    PurgeResult result;
    const int64_t before = DiskInfo::current().available;
    for (const std::string& given : paths) {
        // Judged and acted on in standardized form, so neither "/.Trash/.." nor a
        // trailing "/files/" can pass the test while naming something else.
        const std::string path = Paths::standardizedPath(given);
        if (path.empty() || path.front() != '/' || path.find('\0') != std::string::npos ||
            !Trash::isInsideTrash(path)) {
            ++result.failed;
            continue;
        }
        if (Trash::deleteForGood(path) != 0)
            ++result.failed;
    }
    const int64_t after = DiskInfo::current().available;
    result.freed = std::max<int64_t>(after - before, 0);
    return result;
}

} // namespace Cleaner
