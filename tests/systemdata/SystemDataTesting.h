#pragma once
// Shared by the System Data suites: one fake home per process (the home folder is
// read once), and a scoped stand-in for the authorisation tool.

#include "platform/ShellQuote.h"
#include "removal/Privileged.h"
#include "support/FakeHome.h"

#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

inline const FakeHome& sharedHome() {
    static const FakeHome home;
    return home;
}

// Installs `tool` for the lifetime of the object, then restores the platform's.
class ScopedAuthorizationTool {
public:
    explicit ScopedAuthorizationTool(Privileged::AuthorizationTool tool) {
        Privileged::setAuthorizationTool(std::move(tool));
    }
    ~ScopedAuthorizationTool() { Privileged::setAuthorizationTool({}); }
    ScopedAuthorizationTool(const ScopedAuthorizationTool&) = delete;
    ScopedAuthorizationTool& operator=(const ScopedAuthorizationTool&) = delete;
};

// What the platform tool does when it may: run the script with /bin/sh as we are.
inline Shell::Output runScriptAsCurrentUser(const std::string& scriptPath, const std::string&,
                                            double timeout) {
    return Shell::run("/bin/sh " + shellQuote(scriptPath), timeout);
}

// Root runs the platform tool itself (it runs /bin/sh directly); anyone else gets
// the stand-in so that no dialog is needed.
inline Privileged::AuthorizationTool realScriptRunner() {
    if (::geteuid() == 0)
        return {};
    return runScriptAsCurrentUser;
}

inline std::string readWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}
