#include "support/ProcessCounts.h"

#include <cstdlib>
#include <dirent.h>
#include <fstream>
#include <string>

int openDescriptorCount() {
    DIR* dir = ::opendir("/proc/self/fd");
    if (!dir)
        return -1;
    int count = 0;
    while (const dirent* entry = ::readdir(dir))
        count += entry->d_name[0] != '.';
    ::closedir(dir);
    return count - 1; // the listing's own descriptor
}

int threadCount() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("Threads:", 0) == 0)
            return std::atoi(line.c_str() + 8);
    return -1;
}
