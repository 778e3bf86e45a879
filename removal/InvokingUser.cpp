#include "removal/InvokingUser.h"

#include "catalogue/ProtectedPaths.h"
#include "platform/Environment.h"
#include "platform/Paths.h"
#include "platform/SafeFs.h"
#include "removal/Cleaner.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

// pkexec runs us with real uid 0 and names the user in PKEXEC_UID; started directly
// we run with the user's own real uid, and a PKEXEC_UID then proves nothing.
uid_t askingUser() {
    const uid_t real = ::getuid();
    const char* named = std::getenv("PKEXEC_UID");
    if (real != 0 || !named)
        return real;
    uid_t uid = 0;
    const std::string_view text(named);
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), uid);
    return error == std::errc() && rest == text.data() + text.size() ? uid : real;
}

struct PasswordEntry {
    std::string home;
    gid_t gid = 0;
    std::string name;
};

bool passwordEntry(uid_t uid, PasswordEntry& entry) {
    const long suggested = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<size_t>(suggested) : 16384);
    passwd record{};
    passwd* found = nullptr;
    if (::getpwuid_r(uid, &record, buffer.data(), buffer.size(), &found) != 0 || !found)
        return false;
    entry.home = found->pw_dir ? Paths::standardizedPath(found->pw_dir) : std::string();
    entry.gid = found->pw_gid;
    entry.name = found->pw_name ? found->pw_name : "";
    return true;
}

bool isMember(const PasswordEntry& entry, gid_t gid) {
    if (gid == entry.gid)
        return true;
    int count = 64;
    std::vector<gid_t> groups(static_cast<size_t>(count));
    if (::getgrouplist(entry.name.c_str(), entry.gid, groups.data(), &count) < 0) {
        groups.resize(static_cast<size_t>(count));
        if (::getgrouplist(entry.name.c_str(), entry.gid, groups.data(), &count) < 0)
            return false;
    }
    groups.resize(static_cast<size_t>(count));
    return std::find(groups.begin(), groups.end(), gid) != groups.end();
}

bool isUsableFolder(const std::string& path) {
    return !path.empty() && path.front() == '/' && path.find('\0') == std::string::npos &&
           Paths::standardizedPath(path) == path;
}

// Whether the entry at `path` belongs to `uid`, looked at through its parent opened
// without links, where the action will find it.
bool isOwnedBy(const std::string& path, uid_t uid) {
    SafeFs::Dir parent;
    std::string name;
    struct stat st {};
    return SafeFs::openParent(path, parent, name) == 0 &&
           ::fstatat(parent.fd(), name.c_str(), &st, AT_SYMLINK_NOFOLLOW) == 0 && st.st_uid == uid;
}

} // namespace

bool InvokingUser::establish(const WorkList::Batch& batch, InvokingUser& user, std::string& reason) {
    PasswordEntry entry;
    if (batch.uid != askingUser() || !passwordEntry(batch.uid, entry)) {
        reason = "the work list is for another user";
        return false;
    }
    if (!isMember(entry, batch.gid)) {
        reason = "the work list names a group the user is not in";
        return false;
    }
    // The home may lie behind a link of the user's own setting; what it leads to must
    // be the user's folder.
    struct stat home {};
    if (!isUsableFolder(batch.home) || ::stat(batch.home.c_str(), &home) != 0 || !S_ISDIR(home.st_mode) ||
        home.st_uid != batch.uid) {
        reason = "the home folder is not the user's";
        return false;
    }
    struct stat temporary {};
    if (!isUsableFolder(batch.temporary) || ::lstat(batch.temporary.c_str(), &temporary) != 0 ||
        !S_ISDIR(temporary.st_mode) ||
        !(temporary.st_uid == batch.uid || (temporary.st_uid == 0 && (temporary.st_mode & S_ISVTX)))) {
        reason = "the temporary folder is not the user's";
        return false;
    }
    user.uid = batch.uid;
    user.gid = batch.gid;
    user.home = batch.home;
    user.temporary = batch.temporary;
    user.passwordHome = entry.home;
    ::setenv("HOME", user.home.c_str(), 1);
    ::setenv("TMPDIR", user.temporary.c_str(), 1);
    Environment::workFor(user.uid, user.gid);
    return true;
}

bool InvokingUser::refuses(const std::string& path) const {
    if (Cleaner::isRefusedPath(path))
        return true;
    // The temporary folders are shared: what lies directly in them is the user's to
    // clean only when it is the user's (root's /tmp/.X11-unix or
    // /var/tmp/systemd-private-* are not), however shallow the depth rule lets it be.
    const std::string standardized = Paths::standardizedPath(path);
    const auto isInTemporaryFolder = [&](const std::string& candidate) {
        const std::string parent = Paths::parentFolder(candidate);
        return parent == "/tmp" || parent == "/var/tmp" || parent == temporary;
    };
    if ((isInTemporaryFolder(standardized) || isInTemporaryFolder(Paths::canonicalPath(standardized))) &&
        !isOwnedBy(standardized, uid))
        return true;
    if (passwordHome.empty() || passwordHome == home)
        return false;
    // The same protection for the password database's home as for the given one.
    for (const std::string& candidate : {standardized, Paths::canonicalPath(standardized)}) {
        if (candidate == passwordHome)
            return true;
        if (!candidate.starts_with(passwordHome + "/"))
            continue;
        if (ProtectedPaths::contains(home + candidate.substr(passwordHome.size())))
            return true;
    }
    return false;
}
