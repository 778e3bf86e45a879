#include "support/PathQueries.h"

#include "platform/ShellQuote.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

std::vector<std::string> entriesOf(const std::string& folder) {
    std::vector<std::string> names;
    if (DIR* dir = ::opendir(folder.c_str())) {
        while (const dirent* entry = ::readdir(dir)) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..")
                names.push_back(name);
        }
        ::closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string readFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return "<unreadable>";
    std::string content;
    char buffer[65536];
    ssize_t n = 0;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
        content.append(buffer, static_cast<size_t>(n));
    ::close(fd);
    return content;
}

struct stat statOf(const std::string& path) {
    struct stat st {};
    if (::lstat(path.c_str(), &st) != 0) {
        // An absent path must not pass for root's.
        st = {};
        st.st_uid = static_cast<uid_t>(-1);
        st.st_gid = static_cast<gid_t>(-1);
    }
    return st;
}

int64_t duKibibytes(const std::vector<std::string>& paths) {
    std::string command = "du -skx";
    for (const std::string& path : paths)
        command += " " + shellQuote(path);
    FILE* pipe = ::popen((command + " 2>/dev/null").c_str(), "r");
    int64_t sum = 0;
    char line[4096];
    while (pipe && std::fgets(line, sizeof line, pipe))
        sum += std::strtoll(line, nullptr, 10);
    if (pipe)
        ::pclose(pipe);
    return sum;
}
