#include "support/FakeHome.h"

#include <cstdlib>

FakeHome::FakeHome() {
    home_ = tree_.makeDir("home");
    tmp_ = tree_.makeDir("tmp");
    ::setenv("HOME", home_.c_str(), 1);
    ::setenv("TMPDIR", tmp_.c_str(), 1);
}

std::string FakeHome::makeDir(const std::string& relative) const { return tree_.makeDir("home/" + relative); }

std::string FakeHome::makeFile(const std::string& relative, const std::string& content) const {
    return tree_.makeFile("home/" + relative, content);
}

std::string FakeHome::makeFileOfSize(const std::string& relative, int64_t bytes) const {
    return tree_.makeFileOfSize("home/" + relative, bytes);
}
