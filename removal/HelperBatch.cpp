#include "removal/HelperBatch.h"

#include "platform/MountPoints.h"
#include "platform/Paths.h"
#include "platform/SafeFs.h"
#include "platform/Text.h"
#include "platform/Trash.h"
#include "platform/TrashDatedFolder.h"
#include "removal/HelperStop.h"
#include "removal/HelperTool.h"
#include "removal/OwnerHandover.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace HelperBatch {

namespace {

// Reasons of our own, beside the errno texts.
constexpr const char* refusedReason = "protected or too shallow a path; refused";

void writeAll(int fd, const std::string& text) {
    size_t written = 0;
    while (written < text.size()) {
        const ssize_t n = ::write(fd, text.data() + written, text.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return;
        written += static_cast<size_t>(n);
    }
}

class Batch {
public:
    Batch(const WorkList::Batch& list, const InvokingUser& user, int answerFd, int logFd)
        : list_(list), user_(user), answerFd_(answerFd), logFd_(logFd) {}

    void run();

private:
    // 0, or the errno (or -1 with `reason_` set) that stopped the step.
    int move(const std::string& path);
    int remove(const std::string& path);
    int command(const std::string& text);
    int openDestination();
    void answer(const WorkList::Step& step, int error);

    const WorkList::Batch& list_;
    const InvokingUser& user_;
    int answerFd_;
    int logFd_;
    std::optional<Trash::DatedFolder> destination_;
    std::string reason_;
    bool moved_ = false;
};

int Batch::openDestination() {
    if (destination_)
        return destination_->error;
    // The user's wall-clock time, formatted as UTC (the helper runs with TZ=UTC0).
    const Date now{std::chrono::seconds(list_.localTime)};
    destination_ = Trash::createDatedFolder(user_.home, list_.trash, user_.uid, user_.gid, now);
    if (destination_->error == 0)
        writeAll(answerFd_, "DEST|" + destination_->name + "\n");
    return destination_->error;
}

int Batch::move(const std::string& path) {
    SafeFs::Dir parent;
    std::string name;
    if (const int error = SafeFs::openParent(path, parent, name))
        return error;
    struct stat st {};
    if (::fstatat(parent.fd(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    if (S_ISDIR(st.st_mode)) {
        const int error = MountPoints::checkNoneWithin(path);
        if (error == EBUSY)
            reason_ = "something is mounted inside it; not moved";
        if (error != 0)
            return error == EBUSY ? -1 : error;
    }
    if (const int error = openDestination())
        return error;
    const int folder = destination_->folder.fd();
    // The rename never replaces: a name that is taken (a dangling link too) moves on to
    // "name 1", "name 2", ..., shortened where needed to stay a valid name.
    for (unsigned number = 0; number < 10000; ++number) {
        const std::string suffix = number == 0 ? std::string() : " " + std::to_string(number);
        const std::string target = Text::prefixWithinBytes(name, NAME_MAX - suffix.size()) + suffix;
        if (::renameat2(parent.fd(), name.c_str(), folder, target.c_str(), RENAME_NOREPLACE) == 0) {
            moved_ = true;
            const OwnerHandover::Outcome given =
                OwnerHandover::handOver(folder, target, user_.uid, user_.gid, HelperStop::requested);
            const std::string shown = Text::escapedForTerminal(path);
            if (given.leftToRoot)
                writeAll(logFd_, "moved; its device files, and root's pipes and sockets, keep their owner: " +
                                     shown + "\n");
            if (given.error != 0)
                writeAll(logFd_, "moved, but not all of it could be given to the user: " +
                                     std::string(std::strerror(given.error)) + ": " + shown + "\n");
            return 0;
        }
        if (errno != EEXIST)
            return errno;
    }
    return EEXIST;
}

// A trashed item deleted for good takes its info file along. A stop leaves the rest of
// a large folder for another time rather than holding the user's quit.
int Batch::remove(const std::string& path) {
    return Trash::deleteForGood(path, HelperStop::requested);
}

int Batch::command(const std::string& text) {
    const HelperTool::Result result = HelperTool::runShell(text, HelperTool::Output::discard);
    if (result.status == 0)
        return 0;
    reason_ = result.stopped ? "stopped" : "exit " + std::to_string(result.status);
    return -1;
}

void Batch::answer(const WorkList::Step& step, int error) {
    writeAll(answerFd_, (error == 0 ? "OK|" : "FAIL|") + step.key + "\n");
    if (error == 0)
        return;
    const std::string reason = error > 0 ? std::strerror(error) : reason_;
    writeAll(logFd_, step.key + ": " + reason + ": " + Text::escapedForTerminal(step.payload) + "\n");
}

void Batch::run() {
    for (const WorkList::Step& step : list_.steps) {
        if (HelperStop::requested())
            break;
        reason_.clear();
        if (step.kind == WorkList::Step::Kind::command) {
            answer(step, command(step.payload));
            continue;
        }
        if (user_.refuses(step.payload)) {
            reason_ = refusedReason;
            answer(step, -1);
            continue;
        }
        // Acted on where the safety check looked: the standardized form of the path.
        const std::string path = Paths::standardizedPath(step.payload);
        answer(step, step.kind == WorkList::Step::Kind::move ? move(path) : remove(path));
    }
    if (!destination_ || destination_->error != 0)
        return;
    // Given last, after every hand-over (also after a stop): until then nobody but
    // root can swap what was moved for something else to be handed over.
    if (moved_ || Trash::removeDatedFolderIfEmpty(*destination_) != 0) {
        if (const int error = Trash::handOverDatedFolder(*destination_, user_.uid, user_.gid))
            writeAll(logFd_, "the dated folder could not be given to the user: " +
                                 std::string(std::strerror(error)) + "\n");
    }
}

} // namespace

void run(const WorkList::Batch& batch, const InvokingUser& user, int answerFd, int logFd) {
    Batch(batch, user, answerFd, logFd).run();
}

} // namespace HelperBatch
