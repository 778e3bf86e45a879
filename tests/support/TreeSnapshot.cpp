#include "support/TreeSnapshot.h"

#include "support/PathQueries.h"

#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

thread_local TreeSnapshot* current = nullptr;
thread_local const std::set<std::string>* skipped = nullptr;

std::string hashOfFile(const char* path) {
    unsigned long long hash = 1469598103934665603ULL;
    for (const char byte : readFile(path))
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211ULL;
    return std::to_string(hash);
}

int record(const char* path, const struct stat* st, int flag, FTW*) {
    if (skipped->count(path))
        return FTW_SKIP_SUBTREE;
    TreeEntry entry;
    entry.mode = st->st_mode & 07777;
    entry.owner = st->st_uid;
    if (flag == FTW_D || flag == FTW_DNR) {
        entry.type = 'd';
        entry.content = flag == FTW_DNR ? "unreadable" : "";
    } else {
        entry.size = st->st_size;
        entry.modified = static_cast<long long>(st->st_mtim.tv_sec) * 1000000000LL + st->st_mtim.tv_nsec;
        if (S_ISREG(st->st_mode)) {
            entry.type = 'f';
            entry.content = hashOfFile(path);
        } else if (S_ISLNK(st->st_mode)) {
            entry.type = 'l';
            char target[4096];
            const ssize_t n = ::readlink(path, target, sizeof target);
            entry.content.assign(target, n > 0 ? static_cast<size_t>(n) : 0);
        } else if (S_ISFIFO(st->st_mode)) {
            entry.type = 'p';
        } else if (S_ISSOCK(st->st_mode)) {
            entry.type = 's';
        }
    }
    (*current)[path] = entry;
    return FTW_CONTINUE;
}

} // namespace

TreeSnapshot snapshotTree(const std::string& root, const std::set<std::string>& excluded) {
    TreeSnapshot snapshot;
    current = &snapshot;
    skipped = &excluded;
    if (::nftw(root.c_str(), record, 32, FTW_PHYS | FTW_ACTIONRETVAL) != 0)
        snapshot["<walk failed>"] = TreeEntry{};
    current = nullptr;
    skipped = nullptr;
    return snapshot;
}

std::string describeDifferences(const TreeSnapshot& before, const TreeSnapshot& after) {
    std::string text;
    for (const auto& [path, entry] : before) {
        const auto found = after.find(path);
        if (found == after.end())
            text += "gone: " + path + "\n";
        else if (!(found->second == entry))
            text += "changed: " + path + "\n";
    }
    for (const auto& [path, entry] : after)
        if (!before.count(path))
            text += "new: " + path + "\n";
    return text;
}
