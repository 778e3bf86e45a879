#include "support/TrashRestore.h"

#include "platform/Paths.h"
#include "support/PathQueries.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

// The decoded Path= of an info file that is exactly its three lines; empty otherwise.
std::string originalPath(const std::string& info) {
    const std::string head = "[Trash Info]\nPath=";
    const size_t dateAt = info.find("\nDeletionDate=");
    if (!info.starts_with(head) || dateAt == std::string::npos ||
        info.find('\n', dateAt + 1) != info.size() - 1)
        return {};
    std::string decoded;
    for (size_t i = head.size(); i < dateAt; ++i) {
        if (info[i] != '%') {
            decoded += info[i];
            continue;
        }
        if (i + 2 >= dateAt || !std::isxdigit(static_cast<unsigned char>(info[i + 1])) ||
            !std::isxdigit(static_cast<unsigned char>(info[i + 2])))
            return {};
        decoded += static_cast<char>(std::stoi(info.substr(i + 1, 2), nullptr, 16));
        i += 2;
    }
    return decoded;
}

} // namespace

Restored restoreFromTrash(const std::string& trashed) {
    const std::string trash = Paths::parentFolder(Paths::parentFolder(trashed));
    const std::string info = trash + "/info/" + trashed.substr(trashed.rfind('/') + 1) + ".trashinfo";
    std::string original = originalPath(readFile(info));
    if (original.empty())
        return {{}, "no valid info file at " + info + ": " + readFile(info)};
    if (original.front() != '/')
        original = Paths::parentFolder(trash) + "/" + original;
    if (exists(original))
        return {{}, "something is in the way at " + original};
    if (::rename(trashed.c_str(), original.c_str()) != 0 || ::unlink(info.c_str()) != 0)
        return {{}, std::string("cannot restore: ") + std::strerror(errno)};
    return {original, {}};
}
