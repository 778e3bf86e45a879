#include "scanning/LargeFileWalk.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <deque>
#include <dirent.h>
#include <fcntl.h>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <variant>

namespace {

constexpr size_t direntBufferSize = 32 * 1024;

// Folders a walking thread holds open at once (at most four threads walk), far below
// the usual limit of 1,024 descriptors per process. Deeper down, the shallowest
// open folders are closed and reopened on the way back up, so depth has no limit.
constexpr size_t maxOpenFolders = 64;

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

bool isPackageName(std::string_view name) {
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size())
        return false;
    const std::string_view extension = name.substr(dot + 1);
    return std::any_of(packageExtensions.begin(), packageExtensions.end(),
                       [extension](std::string_view known) {
                           return extension.size() == known.size() &&
                                  std::equal(extension.begin(), extension.end(), known.begin(),
                                             [](char a, char b) { return asciiLower(a) == b; });
                       });
}

Date dateOf(const struct timespec& time) {
    return Date(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

bool isBelow(const std::string& path, std::string_view folder) {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

} // namespace

// One folder walked by one thread, with everything found below it in order.
struct LargeFileWalk::Task {
    int fd = -1; // open until the task is walked
    dev_t device = 0;
    std::vector<ino_t> chain; // the folders from the root down to this one
    std::string path;         // canonical
    bool mayHoldSkipped = false;
    const std::vector<std::string>* skip = nullptr; // canonical skip paths of the root
    // A hit, or a subfolder handed to another thread, at the position the
    // sequential walk would have met it.
    std::vector<std::variant<LargeFile, Task*>> pieces;
};

struct LargeFileWalk::Shared {
    Shared(int64_t threshold_, const Claims& claims_, std::stop_token stop_)
        : threshold(threshold_), claims(claims_), stop(std::move(stop_)) {}

    const int64_t threshold;
    const Claims& claims;
    const std::stop_token stop;
    std::atomic<bool> stopped{false};
    std::atomic<size_t> idle{0};

    std::mutex mutex; // guards everything below
    std::condition_variable wake;
    std::deque<Task*> queue;
    size_t unfinished = 0; // queued or being walked
    std::deque<std::unique_ptr<Task>> tasks;
    std::deque<std::vector<std::string>> skipLists;

    Task& newTask() { return *tasks.emplace_back(std::make_unique<Task>()); }
};

// The per-thread walking state: a stack of folders, the innermost `maxOpenFolders`
// of them open (and the task's own folder), one getdents buffer per open folder,
// and the path of the entry at hand.
class LargeFileWalk::Walker {
public:
    explicit Walker(Shared& shared) : shared_(shared) {}
    ~Walker() { closeAll(); }
    Walker(const Walker&) = delete;
    Walker& operator=(const Walker&) = delete;

    // Takes tasks until every one is done.
    void work() {
        std::unique_lock lock(shared_.mutex);
        while (true) {
            if (!shared_.queue.empty()) {
                Task* task = shared_.queue.front();
                shared_.queue.pop_front();
                lock.unlock();
                walk(*task);
                lock.lock();
                if (--shared_.unfinished == 0)
                    shared_.wake.notify_all();
            } else if (shared_.unfinished == 0) {
                return;
            } else {
                ++shared_.idle;
                shared_.wake.wait(lock);
                --shared_.idle;
            }
        }
    }

private:
    struct Frame {
        int fd = -1; // -1 while closed for the budget
        ino_t inode = 0;
        size_t pathLength = 0;
        size_t position = 0;
        size_t end = 0;
        off_t resume = 0;            // directory offset of the first entry not yet handled
        bool mayHoldSkipped = false; // some skip path lies below this folder
        std::unique_ptr<char[]> buffer;
        bool holdsClaims = false; // some claimed path lies below this folder
    };

    void walk(Task& task) {
        const int fd = std::exchange(task.fd, -1);
        if (shared_.stopped.load(std::memory_order_relaxed)) {
            ::close(fd);
            return;
        }
        task_ = &task;
        path_ = task.path;
        push(Frame{fd, task.chain.back(), path_.size(), 0, 0, 0, task.mayHoldSkipped, nullptr});
        while (!stack_.empty()) {
            if (!step()) {
                shared_.stopped = true;
                closeAll();
                break;
            }
        }
        task.chain = {};
        task_ = nullptr;
    }

    // Handles one entry of the innermost folder, or finishes that folder. False
    // when the walk has to stop.
    bool step() {
        Frame& frame = stack_.back();
        if (frame.fd < 0) { // could not be reopened: it changed under the walk
            leave();
            return true;
        }
        if (frame.position >= frame.end) {
            const long count = ::syscall(SYS_getdents64, frame.fd, frame.buffer.get(), direntBufferSize);
            if (count <= 0) {
                leave();
                return true;
            }
            frame.position = 0;
            frame.end = static_cast<size_t>(count);
        }
        const auto* entry = reinterpret_cast<const dirent64*>(frame.buffer.get() + frame.position);
        frame.position += entry->d_reclen;
        frame.resume = entry->d_off;
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')))
            return true;

        if (++counter_ % cancellationInterval == 0 &&
            (shared_.stopped.load(std::memory_order_relaxed) || shared_.stop.stop_requested()))
            return false;

        path_.resize(frame.pathLength);
        path_.push_back('/');
        path_.append(name);
        if (frame.mayHoldSkipped &&
            std::find(task_->skip->begin(), task_->skip->end(), path_) != task_->skip->end())
            return true;

        unsigned char type = entry->d_type;
        // A claimed entry is never reported: where the folder holds claims, asking
        // the claims first spares a look at each of its files.
        if (frame.holdsClaims && type != DT_UNKNOWN && shared_.claims.contains(path_))
            return true;
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
            enter(frame.fd, frame.mayHoldSkipped, name, st, haveStat);
        }
        // Links and special files are never reported.
        return true;
    }

    // Makes `frame` the innermost folder; past the budget, the shallowest open folder
    // below the task's own is closed (its place in the listing is kept as an offset).
    void push(Frame frame) {
        frame.holdsClaims = shared_.claims.hasClaimedDescendant(path_);
        if (spare_.empty())
            frame.buffer = std::make_unique_for_overwrite<char[]>(direntBufferSize);
        else {
            frame.buffer = std::move(spare_.back());
            spare_.pop_back();
        }
        stack_.push_back(std::move(frame));
        if (stack_.size() - firstOpen_ + 1 > maxOpenFolders) {
            Frame& shallowest = stack_[firstOpen_++];
            ::close(std::exchange(shallowest.fd, -1));
            spare_.push_back(std::move(shallowest.buffer));
        }
    }

    // Finishes the innermost folder and makes sure the one around it is open.
    void leave() {
        Frame done = std::move(stack_.back());
        stack_.pop_back();
        if (stack_.size() > 1 && stack_.back().fd < 0) {
            reopen(stack_.size() - 1, done.fd);
            firstOpen_ = stack_.back().fd >= 0 ? stack_.size() - 1 : stack_.size();
        } else if (firstOpen_ > stack_.size()) {
            firstOpen_ = std::max<size_t>(stack_.size(), 1);
        }
        if (done.fd >= 0)
            ::close(done.fd);
        spare_.push_back(std::move(done.buffer));
    }

    // Reopens a folder closed for the budget: through ".." of the folder just left
    // when there is one, else by name down from the task's folder; either way only
    // if it is still the same folder (device and inode). Reading resumes where it
    // stopped. On failure the folder stays closed and its remaining entries are lost,
    // like those of a folder removed during the walk.
    void reopen(size_t index, int childFd) {
        Frame& frame = stack_[index];
        int fd = childFd >= 0 ? openVerified(childFd, "..", frame.inode) : -1;
        if (fd < 0) {
            fd = ::dup(stack_.front().fd);
            for (size_t i = 1; fd >= 0 && i <= index; ++i) {
                const size_t from = stack_[i - 1].pathLength + 1;
                const std::string name = path_.substr(from, stack_[i].pathLength - from);
                const int next = openVerified(fd, name.c_str(), stack_[i].inode, O_NOFOLLOW);
                ::close(fd);
                fd = next;
            }
        }
        if (fd >= 0 && ::lseek(fd, frame.resume, SEEK_SET) < 0) {
            ::close(fd);
            fd = -1;
        }
        if (fd < 0)
            return;
        frame.fd = fd;
        frame.position = frame.end = 0;
        if (spare_.empty())
            frame.buffer = std::make_unique_for_overwrite<char[]>(direntBufferSize);
        else {
            frame.buffer = std::move(spare_.back());
            spare_.pop_back();
        }
    }

    int openVerified(int parentFd, const char* name, ino_t inode, int flags = 0) const {
        const int fd = ::openat(parentFd, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
        struct stat st {};
        if (fd >= 0 && (::fstat(fd, &st) != 0 || st.st_dev != task_->device || st.st_ino != inode)) {
            ::close(fd);
            return -1;
        }
        return fd;
    }

    void consider(const struct stat& st) {
        if (static_cast<int64_t>(st.st_blocks) * 512 < shared_.threshold)
            return;
        // The folders above were checked on the way down; only the file itself is left.
        if (shared_.claims.contains(path_))
            return;
        task_->pieces.emplace_back(LargeFile{path_, dateOf(st.st_mtim), std::nullopt});
    }

    void enter(int parentFd, bool parentMayHoldSkipped, const char* name, struct stat st, bool haveStat) {
        if (isPackageName(name))
            return;
        if (!haveStat && ::fstatat(parentFd, name, &st, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT) != 0)
            return;
        // Another volume mounted here is not walked, nor a folder already on the way
        // down (a bind mount can make a tree contain itself). A claimed folder holds
        // nothing that could be reported.
        if (!S_ISDIR(st.st_mode) || st.st_dev != task_->device || isOnChain(st.st_ino) ||
            shared_.claims.contains(path_))
            return;
        const int fd = ::openat(parentFd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0)
            return;
        const bool mayHoldSkipped =
            parentMayHoldSkipped &&
            std::any_of(task_->skip->begin(), task_->skip->end(),
                        [this](const std::string& skipped) { return isBelow(skipped, path_); });
        // A folder without subfolders (a link count of 2) is rarely worth a thread.
        if (st.st_nlink != 2 && shared_.idle.load(std::memory_order_relaxed) > 0 &&
            handOver(fd, st, mayHoldSkipped))
            return;
        push(Frame{fd, st.st_ino, path_.size(), 0, 0, 0, mayHoldSkipped, nullptr});
    }

    // Queues the folder as a task of its own when a thread is waiting for one.
    bool handOver(int fd, const struct stat& st, bool mayHoldSkipped) {
        std::lock_guard lock(shared_.mutex);
        if (shared_.queue.size() >= shared_.idle.load())
            return false;
        Task& task = shared_.newTask();
        task.fd = fd;
        task.device = st.st_dev;
        // The chain so far ends with this task's own folder, the first frame.
        task.chain.reserve(task_->chain.size() + stack_.size());
        task.chain.assign(task_->chain.begin(), task_->chain.end());
        for (size_t i = 1; i < stack_.size(); ++i)
            task.chain.push_back(stack_[i].inode);
        task.chain.push_back(st.st_ino);
        task.path = path_;
        task.mayHoldSkipped = mayHoldSkipped;
        task.skip = task_->skip;
        task_->pieces.emplace_back(&task);
        shared_.queue.push_back(&task);
        ++shared_.unfinished;
        shared_.wake.notify_one();
        return true;
    }

    bool isOnChain(ino_t inode) const {
        return std::any_of(stack_.begin(), stack_.end(),
                           [inode](const Frame& frame) { return frame.inode == inode; }) ||
               std::find(task_->chain.begin(), task_->chain.end(), inode) != task_->chain.end();
    }

    void closeAll() {
        for (const Frame& frame : stack_)
            if (frame.fd >= 0)
                ::close(frame.fd);
        stack_.clear();
        firstOpen_ = 1;
    }

    Shared& shared_;
    Task* task_ = nullptr;
    std::string path_; // canonical path of the entry at hand
    std::vector<Frame> stack_;
    size_t firstOpen_ = 1;                       // stack_[1, firstOpen_) are closed, the others open
    std::vector<std::unique_ptr<char[]>> spare_; // buffers of folders left or closed
    uint64_t counter_ = 0;
};

LargeFileWalk::LargeFileWalk(int64_t threshold, const Claims& claims, std::stop_token stop)
    : shared_(std::make_unique<Shared>(threshold, claims, std::move(stop))) {}

LargeFileWalk::~LargeFileWalk() {
    for (const auto& task : shared_->tasks)
        if (task->fd >= 0)
            ::close(task->fd);
}

void LargeFileWalk::addRoot(const std::string& root, const std::vector<std::string>& skip) {
    const int fd = ::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    struct stat st {};
    char* resolved = ::realpath(root.c_str(), nullptr);
    if (!resolved || ::fstat(fd, &st) != 0) {
        std::free(resolved);
        ::close(fd);
        return;
    }
    // The hits carry canonical paths, like the scanner's items: nothing below the
    // root is a link, so only the root itself needs resolving.
    std::string canonical = resolved;
    std::free(resolved);
    if (shared_->claims.isCovered(canonical)) {
        ::close(fd);
        return;
    }
    if (canonical == "/")
        canonical.clear();

    // The skip paths are spelled as the walk meets them below the root as given;
    // carry them over to the canonical spelling the walk builds.
    const std::string given = root == "/" ? std::string() : root;
    std::vector<std::string>& translated = shared_->skipLists.emplace_back();
    for (const std::string& skipped : skip)
        if (isBelow(skipped, given))
            translated.push_back(canonical + skipped.substr(given.size()));

    Task& task = shared_->newTask();
    task.fd = fd;
    task.device = st.st_dev;
    task.chain = {st.st_ino};
    task.path = canonical;
    task.skip = &translated;
    task.mayHoldSkipped = !translated.empty();
    roots_.push_back(&task);
    shared_->queue.push_back(&task);
    ++shared_->unfinished;
}

std::vector<LargeFile> LargeFileWalk::run() {
    if (!roots_.empty()) {
        // Two threads per core, so that on a cold cache a thread waiting for the disk
        // leaves its core to another; never more than four (see maxOpenFolders).
        const size_t threads = std::clamp<size_t>(2 * std::thread::hardware_concurrency(), 2, 4);
        std::vector<std::jthread> workers;
        try {
            for (size_t i = 0; i < threads; ++i)
                workers.emplace_back([this] { Walker(*shared_).work(); });
        } catch (const std::system_error&) {
            if (workers.empty())
                Walker(*shared_).work();
        }
    }

    // Stitch the tasks together along their placeholders.
    std::vector<LargeFile> hits;
    for (Task* root : roots_) {
        std::vector<std::pair<Task*, size_t>> open{{root, 0}};
        while (!open.empty()) {
            auto& [task, next] = open.back();
            if (next == task->pieces.size()) {
                open.pop_back();
                continue;
            }
            auto& piece = task->pieces[next++];
            if (auto* hit = std::get_if<LargeFile>(&piece))
                hits.push_back(std::move(*hit));
            else
                open.emplace_back(std::get<Task*>(piece), 0);
        }
    }
    return hits;
}
