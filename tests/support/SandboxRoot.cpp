#include "support/SandboxRoot.h"

#include "support/QuietSystemFolders.h"

#include <climits>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <fstream>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

// Every folder and link at the top of the machine's root, recreated below `top`: the
// folders bound with everything mounted inside them, the links copied.
bool mirrorTopLevel(const std::string& top) {
    DIR* root = ::opendir("/");
    if (!root)
        return false;
    bool mirrored = true;
    while (const dirent* entry = ::readdir(root)) {
        const std::string name = entry->d_name;
        const std::string from = "/" + name, to = top + "/" + name;
        struct stat st {};
        if (name == "." || name == ".." || ::lstat(from.c_str(), &st) != 0)
            continue;
        if (S_ISLNK(st.st_mode)) {
            char target[PATH_MAX];
            const ssize_t length = ::readlink(from.c_str(), target, sizeof target);
            mirrored =
                mirrored && length > 0 && ::symlink(std::string(target, length).c_str(), to.c_str()) == 0;
        } else if (S_ISDIR(st.st_mode)) {
            mirrored = mirrored && ::mkdir(to.c_str(), 0755) == 0 &&
                       ::mount(from.c_str(), to.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0;
        }
    }
    ::closedir(root);
    return mirrored;
}

} // namespace

SandboxRoot::SandboxRoot() {
    char pattern[] = "/tmp/veltro-sandbox-XXXXXX";
    if (!quietSystemFolders() || !::mkdtemp(pattern))
        return;
    top_ = pattern;
    if (::mount("veltro-sandbox", top_.c_str(), "tmpfs", 0, "mode=0755") != 0 || !mirrorTopLevel(top_))
        return;
    std::ofstream(top_ + "/.flatpak-info") << "[Application]\nname=app.veltro.Veltro\n";
    machineRoot_ = ::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
    workingFolder_ = ::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    // The working folder is entered again by its path, which the sandbox shows too: a
    // folder reached only through the old root has no name inside the new one.
    char* working = ::getcwd(nullptr, 0);
    entered_ = working && machineRoot_ >= 0 && workingFolder_ >= 0 && ::chroot(top_.c_str()) == 0 &&
               (::chdir(working) == 0 || ::chdir("/") == 0);
    std::free(working);
}

void SandboxRoot::leave() {
    // Root may leave a chroot through a descriptor of the old root.
    if (entered_ && ::fchdir(machineRoot_) == 0 && ::chroot(".") == 0)
        entered_ = ::fchdir(workingFolder_) != 0;
    for (int* fd : {&machineRoot_, &workingFolder_})
        if (*fd >= 0)
            ::close(std::exchange(*fd, -1));
    if (!top_.empty()) {
        ::umount2(top_.c_str(), MNT_DETACH);
        ::rmdir(top_.c_str());
        top_.clear();
    }
}
