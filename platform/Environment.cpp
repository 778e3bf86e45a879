#include "platform/Environment.h"

#include <cstdlib>
#include <optional>
#include <pwd.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

std::string withoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::string readHomeFolder() {
    if (const char* home = std::getenv("HOME"); home && home[0] == '/')
        return withoutTrailingSlashes(home);
    long bufferSize = sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(bufferSize > 0 ? static_cast<size_t>(bufferSize) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_dir &&
        found->pw_dir[0] == '/')
        return withoutTrailingSlashes(found->pw_dir);
    return "/";
}

// $TMPDIR when set and absolute; read once.
const std::optional<std::string>& temporaryFolderSetting() {
    static const std::optional<std::string> setting = []() -> std::optional<std::string> {
        if (const char* tmp = std::getenv("TMPDIR"); tmp && tmp[0] == '/')
            return withoutTrailingSlashes(tmp);
        return std::nullopt;
    }();
    return setting;
}

} // namespace

namespace Environment {

const std::string& homeFolder() {
    static const std::string home = readHomeFolder();
    return home;
}

const std::string& temporaryFolder() {
    static const std::string tmp = temporaryFolderSetting().value_or("/tmp");
    return tmp;
}

bool temporaryFolderIsSet() {
    return temporaryFolderSetting().has_value();
}

namespace {
std::optional<std::pair<uid_t, gid_t>>& workingUser() {
    static std::optional<std::pair<uid_t, gid_t>> user;
    return user;
}
} // namespace

uid_t realUserID() {
    return workingUser() ? workingUser()->first : getuid();
}
gid_t realGroupID() {
    return workingUser() ? workingUser()->second : getgid();
}

void workFor(uid_t uid, gid_t gid) {
    workingUser() = std::make_pair(uid, gid);
}

} // namespace Environment
