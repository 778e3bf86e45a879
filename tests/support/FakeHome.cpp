#include "support/FakeHome.h"

#include "support/QuietSystemFolders.h"

#include <cstdlib>

namespace {

std::optional<std::string> variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

void restore(const char* name, const std::optional<std::string>& value) {
    if (value)
        ::setenv(name, value->c_str(), 1);
    else
        ::unsetenv(name);
}

} // namespace

FakeHome::FakeHome() : previousHome_(variable("HOME")), previousTmp_(variable("TMPDIR")) {
    home_ = tree_.makeDir("home");
    tmp_ = tree_.makeDir("tmp");
    ::setenv("HOME", home_.c_str(), 1);
    ::setenv("TMPDIR", tmp_.c_str(), 1);
    // The desktop folders then lie in the fake home too, never in the real user's.
    for (const char* name : {"XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        ::unsetenv(name);
    quietSystemFolders();
}

FakeHome::~FakeHome() {
    // The process keeps the first home it saw; restoring only keeps later trees of
    // this process out of a folder that is about to disappear.
    restore("HOME", previousHome_);
    restore("TMPDIR", previousTmp_);
}

std::string FakeHome::makeDir(const std::string& relative) const {
    return tree_.makeDir("home/" + relative);
}

std::string FakeHome::makeFile(const std::string& relative, const std::string& content) const {
    return tree_.makeFile("home/" + relative, content);
}

std::string FakeHome::makeFileOfSize(const std::string& relative, int64_t bytes) const {
    return tree_.makeFileOfSize("home/" + relative, bytes);
}

std::string FakeHome::installTool(const std::string& name, const std::string& body) const {
    return tree_.makeScript("home/.docker/bin/" + name, body);
}
