// The scan itself: the collection phase (rules in table order, the claim rule, the
// command probes) and the measurement phase (categories in display order).

#include "scanning/JunkScanner.h"

#include "catalogue/CleanupRules.h"
#include "catalogue/LinuxCommands.h"
#include "catalogue/LinuxLocations.h"
#include "catalogue/ProtectedPaths.h"
#include "platform/ByteCount.h"
#include "platform/Environment.h"
#include "platform/Localized.h"
#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "platform/Text.h"
#include "removal/Shell.h"
#include "scanning/Measurement.h"
#include "scanning/PathGlob.h"

#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unordered_map>

namespace JunkScanner {

namespace {

// Deeper than this below the path first given, a folder with claimed contents is
// not split any further.
constexpr int maxSplitDepth = 4;

// The receiver of one scan's events; it may take a finished category's items.
using TakingSink = std::function<void(ScanEvent&)>;

template <typename Event> void report(const TakingSink& events, Event event) {
    ScanEvent reported{std::move(event)};
    events(reported);
}

bool isDirectoryNoFollow(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Entry names in listing order, hidden ones included, without "." and "..".
// False when the folder cannot be listed. `folderFd` stays open and unchanged.
bool listFolder(int folderFd, std::vector<std::string>& names) {
    const int listing = ::openat(folderFd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* dir = listing < 0 ? nullptr : ::fdopendir(listing);
    if (!dir) {
        if (listing >= 0)
            ::close(listing);
        return false;
    }
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
    }
    ::closedir(dir);
    return true;
}

bool listFolder(const std::string& path, std::vector<std::string>& names) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool listed = listFolder(fd, names);
    ::close(fd);
    return listed;
}

std::string replacingAll(std::string text, std::string_view placeholder, std::string_view value) {
    for (size_t at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder, at + value.size()))
        text.replace(at, placeholder.size(), value);
    return text;
}

// The collection phase's working state: the claims and, per category id, the
// candidates and the command items in the order they were found.
class Collection {
public:
    explicit Collection(const ScanOptions& options) : options_(options) {}

    // Walks every rule in table order. False when a stop was requested.
    bool run(const std::stop_token& stop) {
        for (const Rule& rule : CleanupRules::rules()) {
            if (stop.stop_requested())
                return false;
            if (rule.needsFullDiskAccess && !options_.hasFullDiskAccess)
                continue;
            for (const Source& source : LinuxLocations::sourcesOf(rule)) {
                if (const auto* children = std::get_if<Source::Children>(&source.value))
                    collectChildren(rule, *children);
                else if (const auto* items = std::get_if<Source::Items>(&source.value))
                    collectItems(rule, *items);
                else if (const auto* command = std::get_if<Source::Command>(&source.value))
                    collectCommand(rule, *command);
                // The large-file search runs in the measurement phase.
            }
        }
        return true;
    }

    Claims claims;
    std::unordered_map<std::string, std::vector<Candidate>> candidates;
    std::unordered_map<std::string, std::vector<ScanItem>> commandItems;

private:
    void collectChildren(const Rule& rule, const Source::Children& source) {
        std::optional<Date> cutoff;
        if (source.olderThanDays)
            cutoff =
                Dates::now() - std::chrono::seconds(static_cast<int64_t>(*source.olderThanDays) * 86'400);
        const bool onlyOwnEntries = LinuxLocations::offersOnlyOwnEntries(rule);
        for (const std::string& folder : PathGlob::expand(source.pattern)) {
            // Opened without following a final link: a link to a folder is not the folder.
            const int folderFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (folderFd < 0)
                continue;
            std::vector<std::string> names;
            const bool listed = listFolder(folderFd, names);
            for (const std::string& name : names) {
                if (!listed)
                    break;
                if (source.exclude.contains(name) || name == ".DS_Store" || name == ".localized")
                    continue;
                // One look at the entry, relative to its folder, gives both its owner and
                // its date (Linux keeps no added-to-folder date: both keys read the
                // modification date).
                struct stat st {};
                const bool examined = ::fstatat(folderFd, name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0;
                if (onlyOwnEntries && (!examined || st.st_uid != Environment::realUserID()))
                    continue;
                std::optional<Date> date;
                std::optional<int64_t> size;
                if (examined) {
                    date = Date(std::chrono::seconds(st.st_mtim.tv_sec) +
                                std::chrono::nanoseconds(st.st_mtim.tv_nsec));
                    if (!S_ISDIR(st.st_mode) && !S_ISLNK(st.st_mode))
                        size = static_cast<int64_t>(st.st_blocks) * 512;
                }
                if (cutoff && date && *date > *cutoff)
                    continue;
                add(rule, Paths::join(folder, name), date, std::nullopt, 0, size);
            }
            ::close(folderFd);
        }
    }

    void collectItems(const Rule& rule, const Source::Items& source) {
        for (const std::string& path : PathGlob::expand(source.pattern))
            add(rule, path, std::nullopt, std::nullopt, 0);
    }

    // A command Linux has its own form of takes that form: its installed steps stand
    // for the text, their tools for `requires`. Other commands run as written.
    void collectCommand(const Rule& rule, const Source::Command& source) {
        std::string shell = source.shell;
        bool admin = source.admin;
        if (const LinuxCommand* command = LinuxCommands::find(source.shell)) {
            const std::vector<LinuxCommandStep> steps =
                LinuxCommands::installedSteps(*command, Shell::path());
            if (steps.empty())
                return;
            shell.clear();
            admin = false;
            for (const LinuxCommandStep& step : steps) {
                shell += (shell.empty() ? "" : "\n") + step.shell;
                admin = admin || step.admin;
            }
        } else if (source.requires_ &&
                   Shell::run("command -v " + shellQuote(*source.requires_), 10).status != 0) {
            return;
        }
        std::optional<std::string> note;
        if (source.note)
            note = localized(*source.note);
        if (source.probe) {
            std::string probe = *source.probe;
            if (const LinuxCommand* command = LinuxCommands::find(probe)) {
                const std::vector<LinuxCommandStep> steps =
                    LinuxCommands::installedSteps(*command, Shell::path());
                if (steps.empty())
                    return;
                probe = steps.front().shell;
            }
            const std::string value = Text::trimmed(Shell::run(probe, 30).standardOutput);
            if (value.empty() || value == "0")
                return;
            note = note ? replacingAll(std::move(*note), "{value}", value) : value;
        }
        commandItems[rule.category.id].push_back(
            ScanItem{source.id, rule.category.id, localized(source.title), std::nullopt, std::nullopt,
                     std::nullopt, RemovalMethod::makeCommand(std::move(shell), admin), std::move(note)});
    }

    // Gives `path` to the rule's category unless a category already owns it or
    // something inside it; in the latter case the folder's other entries are offered
    // instead, down to `maxSplitDepth` levels.
    void add(const Rule& rule, const std::string& path, std::optional<Date> modified,
             std::optional<std::string> note, int depth, std::optional<int64_t> knownSize = std::nullopt) {
        const std::string canonical = canonicalOf(path);
        if (ProtectedPaths::contains(canonical) || claims.contains(canonical) || parentIsCovered(canonical))
            return;
        if (claims.hasClaimedDescendant(canonical)) {
            std::vector<std::string> names;
            if (depth < maxSplitDepth && isDirectoryNoFollow(canonical) && listFolder(canonical, names)) {
                for (const std::string& name : names)
                    add(rule, Paths::join(canonical, name), std::nullopt, std::nullopt, depth + 1);
            }
            return;
        }
        claim(canonical);
        RemovalMethod method = rule.permanent                ? RemovalMethod::permanent()
                               : parentIsWritable(canonical) ? RemovalMethod::trash()
                                                             : RemovalMethod::adminTrash();
        if (!modified)
            modified = modDate(canonical);
        candidates[rule.category.id].push_back(
            Candidate{rule.category.id, canonical, std::move(method), modified, std::move(note), knownSize});
    }

    // A folder's entries come one after another and share what is known of the folder:
    // its resolved path, whether it or a folder above it is claimed, and whether the
    // user may write it. Worked out once for the folder rather than for each entry,
    // which keeps a folder of a hundred thousand entries from costing a path
    // resolution, an ancestor walk and an access test each.
    struct Folder {
        std::string given;    // the parent as the entry's path names it
        std::string resolved; // its canonical form; empty when it cannot be resolved
        std::optional<bool> covered;
        std::optional<bool> writable;
    };

    // Paths::canonicalPath, with the parent resolved once per folder.
    std::string canonicalOf(const std::string& path) {
        const std::string standardized = Paths::standardizedPath(path);
        const std::string parent = Paths::parentFolder(standardized);
        if (standardized == "/" || parent.empty())
            return standardized;
        if (parent != folder_.given) {
            folder_ = Folder{parent, {}, {}, {}};
            if (char* real = ::realpath(parent.c_str(), nullptr)) {
                folder_.resolved = real;
                std::free(real);
            }
        }
        return folder_.resolved.empty() ? standardized
                                        : Paths::join(folder_.resolved, Paths::lastComponent(standardized));
    }

    // Whether a folder above `canonical` is claimed; the answer for the folder last
    // resolved holds until something outside it is claimed.
    bool parentIsCovered(const std::string& canonical) {
        const std::string parent = Paths::parentFolder(canonical);
        if (parent != folder_.resolved || !folder_.covered) {
            const bool covered = parent != canonical && !parent.empty() && claims.isCovered(parent);
            if (parent != folder_.resolved)
                return covered;
            folder_.covered = covered;
        }
        return *folder_.covered;
    }

    bool parentIsWritable(const std::string& canonical) {
        const std::string parent = Paths::parentFolder(canonical);
        if (parent != folder_.resolved)
            return Paths::isWritable(parent);
        if (!folder_.writable)
            folder_.writable = Paths::isWritable(parent);
        return *folder_.writable;
    }

    void claim(const std::string& canonical) {
        if (Paths::parentFolder(canonical) != folder_.resolved)
            folder_.covered.reset();
        claims.insert(canonical);
    }

    Folder folder_;
    const ScanOptions& options_;
};

// The large category's candidates: one per hit, trashed by the user where the
// parent folder is writable, by the administrator batch otherwise.
void appendLargeFiles(const std::string& categoryID, const ScanOptions& options, const Claims& claims,
                      const std::stop_token& stop, std::vector<Candidate>& candidates) {
    for (LargeFile& hit : largeFiles(options, claims, stop)) {
        RemovalMethod method = Paths::isWritable(Paths::parentFolder(hit.path)) ? RemovalMethod::trash()
                                                                                : RemovalMethod::adminTrash();
        candidates.push_back(
            Candidate{categoryID, std::move(hit.path), std::move(method), hit.modified, std::move(hit.note), std::nullopt});
    }
}

} // namespace

namespace {

// Both entries' scan. With `result`, every item also comes back in it (what the
// receiver left in its events); without, the events are the only copy.
void run(const ScanOptions& options, const TakingSink& events, std::stop_token stop,
         std::vector<ScanItem>* result) {
    report(events, ScanEvent::Status{localized("Preparing scan\u2026")});
    Collection collection(options);
    if (!collection.run(stop))
        return;

    const std::vector<CleanCategory>& categories = CleanupRules::categories();
    const size_t count = categories.size();
    // Room for every item found so far, made once: growing the list while the receiver
    // holds its own copy of the items would hold them a third time.
    if (result) {
        size_t expected = 0;
        for (const auto& [id, list] : collection.candidates)
            expected += list.size();
        for (const auto& [id, list] : collection.commandItems)
            expected += list.size();
        result->reserve(expected);
    }
    for (size_t i = 0; i < count; ++i) {
        if (stop.stop_requested())
            return;
        const CleanCategory& category = categories[i];
        const double n = static_cast<double>(count);
        const double position = static_cast<double>(i);
        report(events,
               ScanEvent::CategoryStarted{category.id, static_cast<int>(i + 1), static_cast<int>(count)});
        report(events, ScanEvent::Status{localizedFormat("Scanning %1\u2026", {category.title})});
        report(events, ScanEvent::Progress{position / n});

        std::vector<Candidate> candidates = std::move(collection.candidates[category.id]);
        if (category.group == CategoryGroup::large) {
            report(events, ScanEvent::Status{localizedFormat("Searching for large files (\u2265 %1)\u2026",
                                                             {formatByteCount(options.largeFileThreshold)})});
            appendLargeFiles(category.id, options, collection.claims, stop, candidates);
            // Made now, while the receiver is not making room of its own.
            if (result)
                result->reserve(result->size() + candidates.size() +
                                collection.commandItems[category.id].size());
        }

        std::vector<ScanItem> list = std::move(collection.commandItems[category.id]);
        // (i + done/total) / N rather than i/N + done/(total·N): the same value, but
        // rounded so that a category's last step meets the next one's start exactly
        // and progress never steps back.
        std::vector<ScanItem> measured = Measurement::measure(
            candidates,
            [&](size_t done, size_t total) {
                report(events, ScanEvent::Progress{
                                   (position + static_cast<double>(done) / static_cast<double>(total)) / n});
            },
            stop);
        candidates = {};
        // A stop during the measurement still reports the category with what its
        // running measurements found; the next category is not started.
        if (list.empty())
            list = std::move(measured);
        else
            list.insert(list.end(), std::make_move_iterator(measured.begin()),
                        std::make_move_iterator(measured.end()));
        measured = {};
        // The items go out in the event and then come back from it into the result:
        // one copy of a category (the receiver's) rather than two.
        ScanEvent finished{ScanEvent::CategoryFinished{category.id, std::move(list)}};
        events(finished);
        if (!result)
            continue;
        std::vector<ScanItem>& reported = std::get<ScanEvent::CategoryFinished>(finished.value).items;
        result->reserve(result->size() + reported.size()); // only the large files were not foreseen
        result->insert(result->end(), std::make_move_iterator(reported.begin()),
                       std::make_move_iterator(reported.end()));
    }
    report(events, ScanEvent::Progress{1.0});
}

} // namespace

std::vector<ScanItem> scan(const ScanOptions& options, const ScanEventSink& events, std::stop_token stop) {
    std::vector<ScanItem> result;
    run(
        options,
        [&events](ScanEvent& event) {
            if (events)
                events(event);
        },
        std::move(stop), &result);
    return result;
}

void scanHandingOver(const ScanOptions& options, const std::function<void(ScanEvent&&)>& events,
                     std::stop_token stop) {
    run(
        options, [&events](ScanEvent& event) { events(std::move(event)); }, std::move(stop), nullptr);
}

std::optional<Date> modDate(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0)
        return std::nullopt;
    return Date(std::chrono::seconds(st.st_mtim.tv_sec) + std::chrono::nanoseconds(st.st_mtim.tv_nsec));
}

std::optional<Date> addedDate(const std::string& path) {
    // Linux keeps no added-to-folder date; the modification date stands in for it.
    return modDate(path);
}

} // namespace JunkScanner
