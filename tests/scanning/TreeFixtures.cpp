#include "TreeFixtures.h"

#include "support/DeepTree.h"
#include "support/ForkedChild.h"
#include "support/PathQueries.h"

#include <dirent.h>
#include <ftw.h>
#include <sys/mount.h>
#include <sys/stat.h>

namespace {

int64_t nftwSum = 0;

int addRegularFile(const char*, const struct stat* st, int type, FTW*) {
    if (type == FTW_F && S_ISREG(st->st_mode))
        nftwSum += static_cast<int64_t>(st->st_blocks) * 512;
    return 0;
}

} // namespace

int64_t allocatedBytesOfRegularFiles(const std::string& root) {
    nftwSum = 0;
    ::nftw(root.c_str(), addRegularFile, 32, FTW_PHYS);
    return nftwSum;
}

std::vector<std::string> namesInListingOrder(const std::string& folder) {
    std::vector<std::string> names;
    DIR* dir = ::opendir(folder.c_str());
    while (const dirent* entry = dir ? ::readdir(dir) : nullptr)
        if (const std::string name = entry->d_name; name != "." && name != "..")
            names.push_back(name);
    if (dir)
        ::closedir(dir);
    return names;
}

PrivateScratch::PrivateScratch(std::string folder) : folder_(std::move(folder)) {
    mounted_ = enterPrivateMountNamespace() &&
               ::mount("veltro-scratch", folder_.c_str(), "tmpfs", 0, "size=512m,mode=0755") == 0;
}

PrivateScratch::~PrivateScratch() {
    if (mounted_) {
        ::umount2(folder_.c_str(), MNT_DETACH);
        return;
    }
    // Empty the folder but keep it, as the tmpfs case does.
    for (const std::string& name : entriesOf(folder_))
        removeTreeForcefully(folder_ + "/" + name);
}
