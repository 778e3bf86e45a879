#include "systemdata/SystemDataAnalyzer.h"

#include "catalogue/LinuxCommands.h"
#include "platform/Localized.h"
#include "platform/ShellQuote.h"
#include "platform/Text.h"
#include "removal/Privileged.h"
#include "removal/Shell.h"
#include "systemdata/SystemDataAreas.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>
#include <sys/statvfs.h>

namespace {

constexpr double measurementTimeout = 900;
constexpr double adminActionTimeout = 1800;
constexpr double userActionTimeout = 600;
constexpr size_t analysisMessageLength = 200;
constexpr size_t actionMessageLength = 300;
constexpr int64_t kibibyte = 1024;

std::string_view trimmingSpacesAndTabs(std::string_view text) {
    const size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string_view::npos)
        return {};
    const size_t end = text.find_last_not_of(" \t");
    return text.substr(begin, end - begin + 1);
}

// A whole decimal number: an optional sign, then digits only, within int64.
std::optional<int64_t> wholeNumber(std::string_view text) {
    std::string_view digits = text;
    if (!digits.empty() && (digits.front() == '+' || digits.front() == '-'))
        digits.remove_prefix(1);
    if (digits.empty() ||
        !std::all_of(digits.begin(), digits.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    // from_chars takes a leading minus but not a plus; keeping the minus lets the
    // most negative value parse.
    const std::string_view parsed = text.front() == '+' ? digits : text;
    int64_t value = 0;
    const auto [end, error] = std::from_chars(parsed.data(), parsed.data() + parsed.size(), value);
    if (error != std::errc() || end != parsed.data() + parsed.size())
        return std::nullopt;
    return value;
}

// Sizes come from the script in KiB; a value too large to scale stays at the limit.
int64_t bytesFromKibibytes(int64_t kib) {
    int64_t bytes = 0;
    if (__builtin_mul_overflow(kib, kibibyte, &bytes))
        return kib < 0 ? std::numeric_limits<int64_t>::min() : std::numeric_limits<int64_t>::max();
    return bytes;
}

int64_t deliveredValue(const std::string& id, int64_t number) {
    return id == "tm" ? number : bytesFromKibibytes(number);
}

// The snapshot count as the catalogue writes it; the Linux table gives its meaning here.
constexpr std::string_view snapshotCountCommand =
    "tmutil listlocalsnapshots / 2>/dev/null | grep -c com.apple";

std::string linuxForm(std::string_view catalogueText) {
    const LinuxCommand* command = LinuxCommands::find(catalogueText);
    return command && !command->steps.empty() ? command->steps.front().shell : std::string(catalogueText);
}

bool liesInside(const std::string& folder, const std::vector<std::string>& containers) {
    return std::any_of(containers.begin(), containers.end(), [&](const std::string& container) {
        return folder.size() > container.size() && folder.starts_with(container) &&
               (container.ends_with('/') || folder[container.size()] == '/');
    });
}

// The report takes the logs away from the system databases after measuring, as the
// logs' row shows them; every other row whose folder lies inside another's is left out
// of that row's figure by du itself, so no byte counts twice.
bool subtractedInReport(const SystemDataEntry& container, const SystemDataEntry& inner) {
    return container.id == "dbother" && inner.id == "unifiedlogs";
}

// The folders of other entries that lie inside one of `entry`'s folders (the indexes
// and images of /var/lib, the runtimes and mail of ~/.local/share, the virtual machines
// among the app containers).
std::vector<std::string> foldersOfOthersInside(const std::vector<SystemDataEntry>& entries,
                                               const SystemDataEntry& entry) {
    const std::vector<std::string> own = entry.expandedPaths();
    std::vector<std::string> inside;
    for (const SystemDataEntry& other : entries) {
        if (other.id == entry.id || subtractedInReport(entry, other))
            continue;
        for (const std::string& folder : other.expandedPaths())
            if (liesInside(folder, own) && std::find(inside.begin(), inside.end(), folder) == inside.end())
                inside.push_back(folder);
    }
    return inside;
}

// The folders that `entry` measures besides its own: the logs' folders that lie
// outside the system databases (the journal, outside /var/lib) are counted with them
// too, so that taking the whole logs figure away in the report leaves exactly the
// databases.
std::vector<std::string> foldersAddedForTheReport(const std::vector<SystemDataEntry>& entries,
                                                  const SystemDataEntry& entry) {
    std::vector<std::string> added;
    const std::vector<std::string> own = entry.expandedPaths();
    for (const SystemDataEntry& other : entries)
        if (subtractedInReport(entry, other))
            for (const std::string& folder : other.expandedPaths())
                if (!liesInside(folder, own))
                    added.push_back(folder);
    return added;
}

// du matches an --exclude pattern against each path it walks; the folder's own wildcard
// characters must match only themselves.
std::string asExcludePattern(const std::string& folder) {
    std::string pattern;
    for (const char c : folder) {
        if (c == '*' || c == '?' || c == '[' || c == ']' || c == '\\')
            pattern += '\\';
        pattern += c;
    }
    return pattern;
}

// The shell form of one entry's measurement: the KiB of its folders, leaving out `excluded`.
std::string duCommand(const std::vector<std::string>& excluded, const std::vector<std::string>& folders) {
    std::string command = "du -skx";
    for (const std::string& inner : excluded)
        command += " --exclude=" + shellQuote(asExcludePattern(inner));
    for (const std::string& folder : folders)
        command += " " + shellQuote(folder);
    return command + " 2>/dev/null | awk '{s+=$1} END {print s+0}'";
}

struct Capacities {
    std::optional<int64_t> available;
    std::optional<int64_t> availableForImportantUsage;
};

// Linux reports one free-space figure: nothing is set aside that the system would
// free on its own, so the important-usage figure is the available one.
Capacities rootVolumeCapacities() {
    struct statvfs info {};
    if (::statvfs("/", &info) != 0)
        return {};
    const auto available = static_cast<int64_t>(info.f_bavail) * static_cast<int64_t>(info.f_frsize);
    return {available, available};
}

int64_t purgeableSpace() {
    const Capacities capacities = rootVolumeCapacities();
    if (!capacities.available || !capacities.availableForImportantUsage)
        return 0;
    return std::max<int64_t>(0, *capacities.availableForImportantUsage - *capacities.available);
}

SystemDataReport reportFrom(const std::string& output) {
    SystemDataReport report;
    report.date = Dates::now();
    for (const auto& [id, number] : SystemDataAnalyzer::parse(output)) {
        if (id == "tm")
            report.snapshotCount = static_cast<int>(std::clamp<int64_t>(
                number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
        else
            report.sizes[id] = bytesFromKibibytes(number);
    }
    // The logs live inside the system databases' folder but have their own row.
    if (const auto dbother = report.sizes.find("dbother"); dbother != report.sizes.end()) {
        const auto logs = report.sizes.find("unifiedlogs");
        const int64_t logBytes = logs == report.sizes.end() ? 0 : logs->second;
        dbother->second = std::max<int64_t>(0, dbother->second - logBytes);
    }
    report.purgeable = purgeableSpace();
    return report;
}

bool wasCancelled(const Shell::Output& output) {
    return output.standardError.find("-128") != std::string::npos;
}

Shell::Output runAsAdministrator(const std::string& lines, const std::string& title) {
    std::string script = "#!/bin/sh\n" + lines;
    if (!script.ends_with('\n'))
        script += '\n';
    return Privileged::run(script, localizedFormat("Veltro needs administrator privileges to: %1", {title}),
                           adminActionTimeout);
}

// No message for a run that succeeded; otherwise the reason as the user should read it.
std::optional<std::string> failureMessage(const Shell::Output& output) {
    if (output.status == 0)
        return std::nullopt;
    if (wasCancelled(output))
        return localized("Authentication was cancelled");
    if (const std::string reason = Text::trimmed(output.standardError); !reason.empty())
        return Text::prefix(reason, actionMessageLength);
    return localizedFormat("Failed (exit %1)", {std::to_string(output.status)});
}

} // namespace

namespace SystemDataAnalyzer {

std::vector<std::pair<std::string, int64_t>> parse(std::string_view text) {
    std::vector<std::pair<std::string, int64_t>> pairs;
    for (std::string_view line : Text::lines(text))
        if (const auto pieces = Text::splitAtFirstBar(line))
            if (const std::optional<int64_t> number = wholeNumber(trimmingSpacesAndTabs(pieces->second)))
                pairs.emplace_back(std::string(pieces->first), *number);
    return pairs;
}

std::vector<WorkList::MeasuredEntry> measuredEntries(const std::vector<SystemDataEntry>& entries) {
    std::vector<WorkList::MeasuredEntry> measured;
    for (const SystemDataEntry& entry : entries) {
        if (entry.id == "tm") {
            measured.push_back({entry.id, {}, linuxForm(snapshotCountCommand)});
            continue;
        }
        std::vector<std::string> folders = entry.expandedPaths();
        if (folders.empty())
            continue;
        const std::vector<std::string> added = foldersAddedForTheReport(entries, entry);
        folders.insert(folders.end(), added.begin(), added.end());
        // du leaves out what another row shows only when asked in the shell's form.
        if (const std::vector<std::string> inside = foldersOfOthersInside(entries, entry); !inside.empty())
            measured.push_back({entry.id, {}, duCommand(inside, folders)});
        else
            measured.push_back({entry.id, std::move(folders), {}});
    }
    return measured;
}

std::string measurementScript(const std::vector<SystemDataEntry>& entries, const std::string& progressPath) {
    std::string script;
    script += "#!/bin/sh\n";
    script += "PROG=" + shellQuote(progressPath) + "\n";
    script += "emit() { printf '%s|%s\\n' \"$1\" \"$2\"; printf '%s|%s\\n' \"$1\" \"$2\" >> \"$PROG\"; }\n";
    for (const WorkList::MeasuredEntry& entry : measuredEntries(entries))
        script += "emit " + (entry.id == "tm" ? entry.id : shellQuote(entry.id)) + " \"$(" +
                  (entry.countCommand.empty() ? duCommand({}, entry.folders) : entry.countCommand) + ")\"\n";
    script += "exit 0\n";
    return script;
}

Analysis analyze(const EntryCallback& onEntry) {
    return analyze(SystemDataAreas::entries(), onEntry);
}

Analysis analyze(const std::vector<SystemDataEntry>& entries, const EntryCallback& onEntry) {
    // The helper answers each entry with a line as soon as it is measured; each id is
    // handed on once.
    std::set<std::string> delivered;
    const Shell::Output output = Privileged::measure(
        measuredEntries(entries), localized("Veltro needs administrator privileges to measure System Data."),
        measurementTimeout, [&](std::string_view line) {
            for (const auto& [id, number] : parse(Shell::decodeUtf8Lossy(line)))
                if (delivered.insert(id).second && onEntry)
                    onEntry(id, deliveredValue(id, number));
        });
    if (output.status != 0) {
        if (wasCancelled(output))
            return {std::nullopt, localized("Authentication was cancelled")};
        return {std::nullopt, localizedFormat("Analysis failed: %1",
                                              {Text::prefix(output.standardError, analysisMessageLength)})};
    }
    return {reportFrom(output.standardOutput), std::nullopt};
}

std::optional<std::string> perform(const SystemDataEntry::Action& action) {
    const LinuxCommand* command = LinuxCommands::find(action.shell);
    if (!command) {
        const Shell::Output output = action.admin ? runAsAdministrator(action.shell, action.title)
                                                  : Shell::run(action.shell, userActionTimeout);
        return failureMessage(output);
    }
    // Never report success for what could not run: a missing tool is the failure.
    const std::vector<LinuxCommandStep> steps = LinuxCommands::installedSteps(*command, Shell::path());
    if (steps.empty())
        return LinuxCommands::unavailableReason(*command, Shell::path());
    // The administrator's steps first, under one password prompt; then the user's own.
    std::string adminScript;
    for (const LinuxCommandStep& step : steps)
        if (step.admin)
            adminScript += step.shell + "\n";
    std::optional<std::string> failure;
    if (!adminScript.empty()) {
        const Shell::Output output = runAsAdministrator(adminScript, action.title);
        if (wasCancelled(output))
            return localized("Authentication was cancelled");
        failure = failureMessage(output);
    }
    for (const LinuxCommandStep& step : steps)
        if (!step.admin)
            if (std::optional<std::string> message =
                    failureMessage(Shell::run(step.shell, userActionTimeout));
                message && !failure)
                failure = std::move(message);
    return failure;
}

} // namespace SystemDataAnalyzer
