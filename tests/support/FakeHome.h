#pragma once
// A fresh home and temporary folder for the current test process, with the desktop
// folders in it and the machine's system junk folders out of reach (see
// QuietSystemFolders.h). Construct it before anything reads the home folder: the
// process keeps the first value it sees, and ctest runs every test in its own process.

#include "support/TempTree.h"

#include <optional>
#include <string>

class FakeHome {
public:
    FakeHome();
    ~FakeHome();
    FakeHome(const FakeHome&) = delete;
    FakeHome& operator=(const FakeHome&) = delete;

    const std::string& home() const { return home_; }
    const std::string& tmp() const { return tmp_; }
    TempTree& tree() { return tree_; }

    // Absolute path of `relative` inside the home folder.
    std::string path(const std::string& relative) const { return home_ + "/" + relative; }
    std::string makeDir(const std::string& relative) const;
    std::string makeFile(const std::string& relative, const std::string& content = {}) const;
    std::string makeFileOfSize(const std::string& relative, int64_t bytes) const;
    // A stand-in command-line tool: an executable shell script running `body` in
    // ~/.docker/bin, a folder on the search path the shell runner gives its children.
    std::string installTool(const std::string& name, const std::string& body) const;

private:
    TempTree tree_;
    std::string home_;
    std::string tmp_;
    std::optional<std::string> previousHome_;
    std::optional<std::string> previousTmp_;
};
