#include "support/TrashRestore.h"

#include "support/PathQueries.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

int hexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

std::string parentOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

std::string originalPathInInfo(const std::string& infoText, std::string& problem) {
    const std::string head = "[Trash Info]\nPath=";
    const size_t dateAt = infoText.find("\nDeletionDate=");
    if (!infoText.starts_with(head) || dateAt == std::string::npos || !infoText.ends_with("\n") ||
        infoText.find('\n', dateAt + 1) != infoText.size() - 1) {
        problem = "bad info file: " + infoText;
        return {};
    }
    const std::string encoded = infoText.substr(head.size(), dateAt - head.size());
    std::string decoded;
    for (size_t i = 0; i < encoded.size(); ++i) {
        if (encoded[i] != '%') {
            decoded += encoded[i];
            continue;
        }
        const int high = i + 2 < encoded.size() ? hexValue(encoded[i + 1]) : -1;
        const int low = high >= 0 ? hexValue(encoded[i + 2]) : -1;
        if (low < 0) {
            problem = "bad info file: stray % in " + encoded;
            return {};
        }
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return decoded;
}

Restored restoreFromTrash(const std::string& trashed) {
    Restored restored;
    const std::string name = trashed.substr(trashed.rfind('/') + 1);
    const std::string trash = parentOf(parentOf(trashed));
    const std::string info = trash + "/info/" + name + ".trashinfo";
    std::string original = originalPathInInfo(readFile(info), restored.problem);
    if (original.empty()) {
        if (restored.problem.empty())
            restored.problem = "no Path in " + info;
        return restored;
    }
    if (original.front() != '/')
        original = parentOf(trash) + "/" + original;
    if (exists(original)) {
        restored.problem = "something is in the way at " + original;
        return restored;
    }
    if (::rename(trashed.c_str(), original.c_str()) != 0 || ::unlink(info.c_str()) != 0) {
        restored.problem = std::string("cannot restore: ") + std::strerror(errno);
        return restored;
    }
    restored.original = original;
    return restored;
}
