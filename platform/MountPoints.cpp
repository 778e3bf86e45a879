#include "platform/MountPoints.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

namespace MountPoints {

namespace {

int readMountTable(std::string& table) {
    const int fd = ::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return errno;
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            const int error = n < 0 ? errno : 0;
            ::close(fd);
            return error;
        }
        table.append(buffer, static_cast<size_t>(n));
    }
}

bool isOctalDigit(char c) {
    return c >= '0' && c <= '7';
}

// The kernel writes a space, tab, line feed and backslash of a mount point as "\ooo".
std::string unescaped(std::string_view field) {
    std::string path;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && isOctalDigit(field[i + 1]) &&
            isOctalDigit(field[i + 2]) && isOctalDigit(field[i + 3])) {
            path.push_back(static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                             (field[i + 3] - '0')));
            i += 3;
        } else {
            path.push_back(field[i]);
        }
    }
    return path;
}

// The fifth field of a mountinfo line: the mount point, relative to our root.
std::string_view mountPointField(std::string_view line) {
    for (int skipped = 0; skipped < 4; ++skipped) {
        const size_t space = line.find(' ');
        if (space == std::string_view::npos)
            return {};
        line.remove_prefix(space + 1);
    }
    return line.substr(0, line.find(' '));
}

} // namespace

int checkNoneWithin(const std::string& path) {
    std::string table;
    if (const int error = readMountTable(table))
        return error;
    const std::string below = path == "/" ? "/" : path + "/";
    std::string_view rest = table;
    while (!rest.empty()) {
        const size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        const std::string point = unescaped(mountPointField(line));
        if (point == path || point.starts_with(below))
            return EBUSY;
    }
    return 0;
}

} // namespace MountPoints
