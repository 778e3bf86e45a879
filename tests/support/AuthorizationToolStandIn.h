#pragma once
// Stand-ins for the authorisation tool, so that no password dialog is ever needed:
// a scope that installs one and brings the platform's back, tools that run the
// script as the current user or only answer, and a recorder of every request.
// Header-only: it needs the removal layer, which not every suite links.

#include "platform/ShellQuote.h"
#include "removal/Privileged.h"
#include "support/PathQueries.h"

#include <memory>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

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

// What the platform's tool does once the user allowed it: /bin/sh runs the script,
// here as the current user.
inline Shell::Output runScriptAsCurrentUser(const std::string& scriptPath, const std::string&,
                                            double timeout) {
    return Shell::run("/bin/sh " + shellQuote(scriptPath), timeout);
}

// Root keeps the platform's own tool (it runs /bin/sh directly, no dialog); anyone
// else gets runScriptAsCurrentUser.
inline Privileged::AuthorizationTool realScriptRunner() {
    if (::geteuid() == 0)
        return {};
    return runScriptAsCurrentUser;
}

// A tool that runs nothing and gives `output`, as a dismissed dialog or a scripted
// answer would.
inline Privileged::AuthorizationTool answering(Shell::Output output) {
    return [output = std::move(output)](const std::string&, const std::string&, double) { return output; };
}

struct ToolCall {
    std::string script; // the script file's content when the tool was called
    std::string prompt;
    double timeout = 0;
};

// Installs a tool that records every request and hands it on to `tool` (the
// platform's own when empty); restores the platform's tool when it goes.
class AuthorizationToolRecorder {
public:
    explicit AuthorizationToolRecorder(Privileged::AuthorizationTool tool)
        : scope_([calls = calls_, tool = std::move(tool)](const std::string& path, const std::string& prompt,
                                                          double timeout) {
              calls->push_back({readFile(path), prompt, timeout});
              return tool ? tool(path, prompt, timeout)
                          : Privileged::runWithPlatformTool(path, prompt, timeout);
          }) {}

    const std::vector<ToolCall>& calls() const { return *calls_; }

private:
    std::shared_ptr<std::vector<ToolCall>> calls_ = std::make_shared<std::vector<ToolCall>>();
    ScopedAuthorizationTool scope_;
};
