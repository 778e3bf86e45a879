#include "support/DeepTree.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

int buildDeepTree(const std::string& top, int levels, const std::function<void(int, int)>& atLevel) {
    int fd = ::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; fd >= 0 && level < levels; ++level) {
        if (level % 10 == 0) {
            const int file = ::openat(fd, "f", O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            if (file < 0 || ::write(file, "x", 1) != 1)
                return errno;
            ::close(file);
        }
        if (level % 100 == 0) {
            if (::mkdirat(fd, "side", 0755) != 0 || ::mkdirat(fd, "side/s1", 0755) != 0 ||
                ::mkdirat(fd, "side/s1/s2", 0755) != 0 ||
                ::mknodat(fd, "side/s1/s2/g", S_IFREG | 0644, 0) != 0)
                return errno;
        }
        if (atLevel)
            atLevel(fd, level);
        if (::mkdirat(fd, "d", 0755) != 0)
            return errno;
        const int next = ::openat(fd, "d", O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        ::close(fd);
        fd = next;
    }
    if (fd < 0)
        return errno;
    ::close(fd);
    return 0;
}
