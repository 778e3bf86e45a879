#pragma once
// What is on disk at a path, asked without following a last link and without
// blocking on a FIFO: the checks every suite makes after acting on a tree.

#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <vector>

bool exists(const std::string& path);                          // a dangling link exists
std::vector<std::string> entriesOf(const std::string& folder); // names, sorted; none when unreadable
std::string readFile(const std::string& path);                 // "<unreadable>" when it cannot be opened
struct stat statOf(const std::string& path);                   // lstat; zero but for owner -1 when absent

// What `du -skx` gives for the paths together, in KiB: the measure of a System Data row.
int64_t duKibibytes(const std::vector<std::string>& paths);
