// The large-file search: one walk per root over directory descriptors (getdents64
// and fstatat relative to the open folder, no recursion), keeping only the hits and
// the set of paths already reported.
//
// Folders whose canonical path is claimed are not entered: every file below one is
// covered by that claim and could never be reported, so the walk leaves those trees
// to the measurements that own them.

#include "scanning/JunkScanner.h"

#include "platform/Environment.h"
#include "platform/Localized.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <unordered_set>

namespace JunkScanner {

namespace {

constexpr size_t direntBufferSize = 32 * 1024;

// Descriptors held open along one branch of the walk; folders deeper than this are
// passed over like unreadable ones.
constexpr size_t maxDepth = 512;

constexpr uint64_t cancellationInterval = 5000;

// Directories that are one item to the user and are never entered.
constexpr std::array<std::string_view, 23> packageExtensions{
    "app",       "appex",         "bundle",       "framework",    "plugin",      "kext",
    "xpc",       "photoslibrary", "photolibrary", "musiclibrary", "tvlibrary",   "imovielibrary",
    "fcpbundle", "logicx",        "band",         "rtfd",         "pkg",         "mpkg",
    "xcarchive", "xcodeproj",     "xcworkspace",  "playground",   "sparsebundle"};

char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [](char x, char y) { return asciiLower(x) == asciiLower(y); });
}

bool isPackageName(std::string_view name) {
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size())
        return false;
    const std::string_view extension = name.substr(dot + 1);
    return std::any_of(
        packageExtensions.begin(), packageExtensions.end(),
        [extension](std::string_view known) { return equalsIgnoringAsciiCase(extension, known); });
}

std::vector<std::string> skipSet(bool hasFullDiskAccess) {
    const std::string& home = Environment::homeFolder();
    std::vector<std::string> skip{home + "/.Trash",
                                  home + "/Library/Caches",
                                  home + "/Library/Metadata",
                                  home + "/Library/Biome",
                                  home + "/Library/Trial",
                                  home + "/Library/Daemon Containers",
                                  "/System",
                                  "/private",
                                  "/dev",
                                  "/Volumes/Recovery",
                                  "/.Spotlight-V100",
                                  "/System/Volumes/Data/.Spotlight-V100"};
    if (!hasFullDiskAccess) {
        for (const char* folder : {"/Library/Containers", "/Library/Group Containers", "/Library/Mail",
                                   "/Library/Messages", "/Library/Safari"})
            skip.push_back(home + folder);
    }
    return skip;
}

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

Date dateOf(const struct timespec& time) {
    return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

// One folder being read: its descriptor, the position in its current batch of
// entries and the length of its path in the shared path buffer.
struct Frame {
    int fd = -1;
    dev_t device = 0;
    ino_t inode = 0;
    size_t pathLength = 0;
    size_t position = 0;
    size_t end = 0;
    bool mayHoldSkipped = false; // some skip path lies below this folder
};

class RootWalk {
public:
    RootWalk(const ScanOptions& options, const Claims& claims, std::stop_token stop, uint64_t& counter,
             std::unordered_set<std::string>& reported, std::vector<LargeFile>& hits)
        : threshold_(options.largeFileThreshold), claims_(claims), stop_(std::move(stop)), counter_(counter),
          reported_(reported), hits_(hits) {}

    RootWalk(const RootWalk&) = delete;
    RootWalk& operator=(const RootWalk&) = delete;

    ~RootWalk() {
        for (const Frame& frame : stack_)
            ::close(frame.fd);
    }

    // Walks one root. Returns false when the walk stopped because a stop was requested.
    bool run(const std::string& root, const std::vector<std::string>& skip) {
        const int fd = ::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (fd < 0)
            return true;
        struct stat st {};
        char* resolved = ::realpath(root.c_str(), nullptr);
        if (!resolved || ::fstat(fd, &st) != 0) {
            std::free(resolved);
            ::close(fd);
            return true;
        }
        path_ = resolved;
        std::free(resolved);
        // Canonical paths of the hits, like the scanner's: nothing below the root is
        // a link, so only the root itself needs resolving.
        if (claims_.isCovered(path_)) {
            ::close(fd);
            return true;
        }
        if (path_ == "/")
            path_.clear();

        // The skip set names paths as the walk meets them (below the root as given);
        // carry them over to the canonical form the walk builds.
        const std::string givenPrefix = root == "/" ? std::string() : root;
        skip_.clear();
        for (const std::string& skipped : skip) {
            if (skipped.size() > givenPrefix.size() && skipped.starts_with(givenPrefix) &&
                skipped[givenPrefix.size()] == '/')
                skip_.push_back(path_ + skipped.substr(givenPrefix.size()));
        }

        stack_.push_back(Frame{fd, st.st_dev, st.st_ino, path_.size(), 0, 0, holdsSkipped()});
        while (!stack_.empty()) {
            if (!step())
                return false;
        }
        return true;
    }

private:
    // Handles one entry of the innermost folder, or finishes that folder. Returns
    // false when a stop was requested.
    bool step() {
        const size_t depth = stack_.size() - 1;
        if (buffers_.size() <= depth)
            buffers_.push_back(std::make_unique<char[]>(direntBufferSize));
        char* buffer = buffers_[depth].get();
        Frame& frame = stack_.back();
        if (frame.position >= frame.end) {
            const long count = ::syscall(SYS_getdents64, frame.fd, buffer, direntBufferSize);
            if (count <= 0) {
                ::close(frame.fd);
                stack_.pop_back();
                return true;
            }
            frame.position = 0;
            frame.end = static_cast<size_t>(count);
        }
        const auto* entry = reinterpret_cast<const dirent64*>(buffer + frame.position);
        frame.position += entry->d_reclen;
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')))
            return true;

        if (++counter_ % cancellationInterval == 0 && stop_.stop_requested())
            return false;

        path_.resize(frame.pathLength);
        path_.push_back('/');
        path_.append(name);
        if (frame.mayHoldSkipped && std::find(skip_.begin(), skip_.end(), path_) != skip_.end())
            return true;

        unsigned char type = entry->d_type;
        struct stat st {};
        bool haveStat = false;
        if (type == DT_UNKNOWN) {
            if (::fstatat(frame.fd, name, &st, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0)
                return true;
            type = IFTODT(st.st_mode);
            haveStat = true;
        }
        if (type == DT_REG) {
            if (!haveStat && ::fstatat(frame.fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0)
                return true;
            if (S_ISREG(st.st_mode))
                consider(st);
        } else if (type == DT_DIR) {
            enter(frame, name, st, haveStat);
        }
        // Links and special files are never reported.
        return true;
    }

    void consider(const struct stat& st) {
        const int64_t size = static_cast<int64_t>(st.st_blocks) * 512;
        if (size < threshold_)
            return;
        // The folders above were checked on the way down; only the file itself is left.
        if (claims_.set().contains(path_) || reported_.contains(path_))
            return;
        reported_.insert(path_);
        hits_.push_back(LargeFile{path_, dateOf(st.st_mtim), warning(path_)});
    }

    // `frame` is copied from before any push, which may move the stack.
    void enter(Frame frame, const char* name, struct stat st, bool haveStat) {
        if (isPackageName(name) || stack_.size() >= maxDepth)
            return;
        if (!haveStat && ::fstatat(frame.fd, name, &st, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0)
            return;
        // Another volume mounted here is not walked, nor a folder already on the way
        // down (a bind mount can make a tree contain itself).
        if (!S_ISDIR(st.st_mode) || st.st_dev != frame.device || isOnStack(st.st_ino))
            return;
        if (claims_.set().contains(path_))
            return;
        const int fd = ::openat(frame.fd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0)
            return;
        stack_.push_back(
            Frame{fd, st.st_dev, st.st_ino, path_.size(), 0, 0, frame.mayHoldSkipped && holdsSkipped()});
    }

    // Every folder on the stack is on the same device.
    bool isOnStack(ino_t inode) const {
        return std::any_of(stack_.begin(), stack_.end(),
                           [inode](const Frame& frame) { return frame.inode == inode; });
    }

    // True when some skip path lies below the folder at `path_`.
    bool holdsSkipped() const {
        return std::any_of(skip_.begin(), skip_.end(), [this](const std::string& skipped) {
            return skipped.size() > path_.size() && skipped.starts_with(path_) &&
                   skipped[path_.size()] == '/';
        });
    }

    const int64_t threshold_;
    const Claims& claims_;
    const std::stop_token stop_;
    uint64_t& counter_;
    std::unordered_set<std::string>& reported_;
    std::vector<LargeFile>& hits_;

    std::string path_; // canonical path of the entry at hand
    std::vector<std::string> skip_;
    std::vector<Frame> stack_;
    std::vector<std::unique_ptr<char[]>> buffers_; // one getdents buffer per depth, reused
};

} // namespace

std::vector<LargeFile> largeFiles(const ScanOptions& options, const Claims& claims, std::stop_token stop) {
    std::vector<std::string> roots;
    for (const std::string& root : options.extraRoots)
        if (!root.empty())
            roots.push_back(withoutTrailingSlashes(root));
    roots.push_back(Environment::homeFolder());
    std::sort(roots.begin(), roots.end());
    roots.erase(std::unique(roots.begin(), roots.end()), roots.end());

    const std::vector<std::string> skip = skipSet(options.hasFullDiskAccess);
    std::vector<LargeFile> hits;
    std::unordered_set<std::string> reported;
    uint64_t counter = 0;
    for (const std::string& root : roots) {
        RootWalk walk(options, claims, stop, counter, reported, hits);
        if (!walk.run(root, skip))
            break;
    }
    return hits;
}

std::optional<std::string> warning(std::string_view path) {
    std::string lower(path);
    std::transform(lower.begin(), lower.end(), lower.begin(), asciiLower);
    const auto contains = [&lower](std::string_view part) { return lower.find(part) != std::string::npos; };
    const auto endsWith = [&lower](std::string_view part) { return lower.ends_with(part); };
    if (endsWith("docker.raw") || contains("orbstack") || endsWith(".vmdk") || endsWith(".qcow2") ||
        endsWith(".vdi") || contains("utm") || contains("parallels"))
        return localized("\u26A0\uFE0F VM/Docker disk \u2014 deleting it destroys everything inside the VM");
    if (contains("/mobile documents/"))
        return localized("\u2601\uFE0F In iCloud Drive \u2014 deleting removes it from all your devices");
    if (contains(".photoslibrary"))
        return localized("\u26A0\uFE0F Inside a Photos library");
    return std::nullopt;
}

} // namespace JunkScanner
