#include "platform/TrashDatedFolder.h"

#include "platform/Paths.h"
#include "platform/TrashFolders.h"
#include "platform/TrashInfo.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Trash {

namespace {

// Bounds the search for a free name on a trash that claims every name is taken.
constexpr unsigned kMaxNumber = 10000;

// Makes the folder `name` inside files/ and opens it as what was just made. It stays
// the process's own until handOverDatedFolder: files/ is the user's, but nobody else
// may change what lies inside the dated folder while it is being handed over.
int makeFolder(DatedFolder& dated, const std::string& name) {
    if (::mkdirat(dated.files.fd(), name.c_str(), 0700) != 0)
        return errno;
    SafeFs::Dir folder;
    if (const int error = TrashFolders::openJustMade(dated.files.fd(), name, folder))
        return error;
    if (::fchmod(folder.fd(), 0700) != 0) {
        const int error = errno;
        ::unlinkat(dated.files.fd(), name.c_str(), AT_REMOVEDIR);
        return error;
    }
    dated.folder = std::move(folder);
    return 0;
}

} // namespace

DatedFolder createDatedFolder(const std::string& homeFolder, const std::string& trashFolder, uid_t owner,
                              gid_t group, Date now) {
    DatedFolder dated;
    TrashFolders::Opened trash;
    if ((dated.error = TrashFolders::openOrCreatePath(trashFolder, owner, group, trash.root)))
        return dated;
    struct stat st {};
    if (::fstat(trash.root.fd(), &st) != 0) {
        dated.error = errno;
        return dated;
    }
    if (st.st_uid != owner) {
        dated.error = EACCES;
        return dated;
    }
    if ((dated.error = TrashFolders::openContents(trash, owner, group, TrashFolders::Check::owner)))
        return dated;
    dated.files = std::move(trash.files);
    dated.info = std::move(trash.info);

    const std::tm local = TrashInfo::localTime(now);
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%04d%02d%02d-%02d%02d%02d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    const std::string base = std::string("Veltro-") + stamp;
    for (unsigned number = 0; number <= kMaxNumber; ++number) {
        const std::string name = TrashInfo::candidateName(base, number);
        struct stat taken {};
        if (::fstatat(dated.files.fd(), name.c_str(), &taken, AT_SYMLINK_NOFOLLOW) == 0)
            continue;
        const std::string info = TrashInfo::text(Paths::join(homeFolder, name), now);
        dated.error = TrashInfo::create(dated.info.fd(), name, info, owner, group);
        if (dated.error == EEXIST)
            continue;
        if (dated.error != 0)
            return dated;
        dated.error = makeFolder(dated, name);
        if (dated.error == 0) {
            dated.name = name;
            dated.location = Paths::join(trashFolder, "files/" + name);
            return dated;
        }
        TrashInfo::remove(dated.info.fd(), name);
        if (dated.error != EEXIST)
            return dated;
    }
    dated.error = EEXIST;
    return dated;
}

int handOverDatedFolder(DatedFolder& folder, uid_t owner, gid_t group) {
    if (!folder.folder)
        return EINVAL;
    if (::geteuid() == owner || ::fchown(folder.folder.fd(), owner, group) == 0)
        return 0;
    return errno;
}

int removeDatedFolderIfEmpty(DatedFolder& folder) {
    if (!folder.files || folder.name.empty())
        return EINVAL;
    if (::unlinkat(folder.files.fd(), folder.name.c_str(), AT_REMOVEDIR) != 0)
        return errno;
    if (folder.info)
        TrashInfo::remove(folder.info.fd(), folder.name);
    folder.folder = SafeFs::Dir();
    return 0;
}

} // namespace Trash
