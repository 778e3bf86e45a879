#include "removal/OwnerHandover.h"

#include "platform/MountIdentity.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace OwnerHandover {

namespace {

constexpr int kWalkFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
// Deeper folders close the shallowest streams and come back to them through "..",
// checked by device and inode, resuming where their listing stopped.
constexpr size_t kMaxOpenStreams = 16;

struct Frame {
    dev_t device = 0;
    ino_t inode = 0;
    DIR* stream = nullptr; // null while closed to stay under the bound
    long resumeAt = 0;
};

class Walk {
public:
    Walk(uid_t uid, gid_t gid, const SafeFs::StopRequested& stop) : uid_(uid), gid_(gid), stop_(stop) {}
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() {
        for (Frame& frame : stack_)
            if (frame.stream)
                ::closedir(frame.stream);
    }

    Outcome run(int parentFd, const std::string& name);

private:
    void note(int error) {
        if (error_ == 0)
            error_ = error;
    }
    void giveEntry(int dirFd, const char* name);
    void enter(int dirFd, const char* name);
    bool push(int fd, const MountIdentity& identity);
    bool reopen(size_t index);
    void finishTop();

    uid_t uid_;
    gid_t gid_;
    const SafeFs::StopRequested& stop_;
    MountIdentity root_;
    std::vector<Frame> stack_;
    size_t openStreams_ = 0;
    bool aborted_ = false;
    bool leftToRoot_ = false;
    int error_ = 0;
};

// Changes exactly the entry that was opened (O_PATH, never through a link): a name
// swapped meanwhile cannot redirect the change.
void Walk::giveEntry(int dirFd, const char* name) {
    const int fd = ::openat(dirFd, name, O_PATH | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0) {
        if (errno != ENOENT)
            note(errno);
        return;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0)
        note(errno);
    else if (S_ISBLK(st.st_mode) || S_ISCHR(st.st_mode) ||
             ((S_ISFIFO(st.st_mode) || S_ISSOCK(st.st_mode)) && st.st_uid == 0))
        leftToRoot_ = true;
    else if (!S_ISDIR(st.st_mode) && st.st_nlink > 1)
        note(EMLINK);
    else if (::fchownat(fd, "", uid_, gid_, AT_EMPTY_PATH) != 0)
        note(errno);
    ::close(fd);
}

void Walk::enter(int dirFd, const char* name) {
    MountIdentity identity;
    if (const int error = mountIdentityAt(dirFd, name, identity)) {
        if (error != ENOENT)
            note(error);
        return;
    }
    if (!identity.isDirectory) {
        giveEntry(dirFd, name);
        return;
    }
    if (identity.isMountRoot || !identity.sameMount(root_)) {
        note(EXDEV);
        return;
    }
    const int fd = ::openat(dirFd, name, kWalkFlags);
    if (fd < 0) {
        note(errno);
        return;
    }
    MountIdentity opened;
    if (mountIdentityAt(fd, "", opened) != 0 || !opened.sameObject(identity) || opened.isMountRoot ||
        !opened.sameMount(root_)) {
        ::close(fd);
        note(EBUSY);
        return;
    }
    if (!push(fd, opened))
        note(errno);
}

bool Walk::push(int fd, const MountIdentity& identity) {
    DIR* stream = ::fdopendir(fd);
    if (!stream) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return false;
    }
    while (openStreams_ >= kMaxOpenStreams) {
        Frame& oldest = stack_[stack_.size() - openStreams_];
        oldest.resumeAt = ::telldir(oldest.stream);
        ::closedir(oldest.stream);
        oldest.stream = nullptr;
        --openStreams_;
    }
    stack_.push_back({identity.device, identity.inode, stream, 0});
    ++openStreams_;
    return true;
}

bool Walk::reopen(size_t index) {
    const int fd = ::openat(::dirfd(stack_[index + 1].stream), "..", kWalkFlags);
    if (fd < 0) {
        note(errno);
        return false;
    }
    MountIdentity identity;
    if (mountIdentityAt(fd, "", identity) != 0 || identity.device != stack_[index].device ||
        identity.inode != stack_[index].inode) {
        // Moved away while we were inside: where ".." leads now is not ours.
        ::close(fd);
        note(EBUSY);
        return false;
    }
    DIR* stream = ::fdopendir(fd);
    if (!stream) {
        note(errno);
        ::close(fd);
        return false;
    }
    ::seekdir(stream, stack_[index].resumeAt);
    stack_[index].stream = stream;
    ++openStreams_;
    return true;
}

void Walk::finishTop() {
    const size_t top = stack_.size() - 1;
    if (top > 0 && !stack_[top - 1].stream && !reopen(top - 1))
        aborted_ = true;
    if (::fchown(::dirfd(stack_[top].stream), uid_, gid_) != 0)
        note(errno);
    ::closedir(stack_[top].stream);
    --openStreams_;
    stack_.pop_back();
}

Outcome Walk::run(int parentFd, const std::string& name) {
    MountIdentity parent;
    if (const int error = mountIdentityAt(parentFd, "", parent))
        return {error, false};
    root_ = parent;
    enter(parentFd, name.c_str());
    while (!stack_.empty() && !aborted_) {
        if (stop_ && stop_())
            return {ECANCELED, leftToRoot_};
        Frame& top = stack_.back();
        errno = 0;
        const dirent* entry = ::readdir(top.stream);
        if (!entry) {
            if (errno != 0)
                note(errno);
            finishTop();
            continue;
        }
        const std::string_view entryName = entry->d_name;
        if (entryName == "." || entryName == "..")
            continue;
        if (entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN)
            enter(::dirfd(top.stream), entry->d_name);
        else
            giveEntry(::dirfd(top.stream), entry->d_name);
    }
    return {error_, leftToRoot_};
}

} // namespace

Outcome handOver(int parentFd, const std::string& name, uid_t uid, gid_t gid,
                 const SafeFs::StopRequested& stop) {
    Walk walk(uid, gid, stop);
    return walk.run(parentFd, name);
}

} // namespace OwnerHandover
