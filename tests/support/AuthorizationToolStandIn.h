#pragma once
// Stand-ins for the authorisation tool, so that no password dialog is ever needed:
// a scope that installs one (and points the product at the helper this build made),
// a tool that runs the real helper as the current user, one that only answers, and a
// recorder of every request. Header-only: it needs the removal layer, which not
// every suite links.

#include "platform/ShellQuote.h"
#include "removal/AdminBatchScript.h"
#include "removal/Privileged.h"
#include "removal/WorkList.h"
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
        Privileged::setHelperPath(VELTRO_TEST_HELPER);
        Privileged::setAuthorizationTool(std::move(tool));
    }
    ~ScopedAuthorizationTool() { Privileged::setAuthorizationTool({}); }
    ScopedAuthorizationTool(const ScopedAuthorizationTool&) = delete;
    ScopedAuthorizationTool& operator=(const ScopedAuthorizationTool&) = delete;
};

// What the platform's tool does once the user allowed it: the helper runs, here as
// the current user, finding tools where the shell runner's children do (a helper
// started directly keeps the search path it is given).
inline Shell::Output runScriptAsCurrentUser(const Privileged::Launch& launch) {
    return Privileged::runProcess(launch.command, launch, {"PATH=" + Shell::path()});
}

// Root keeps the platform's own tool (it starts the helper directly, no dialog);
// anyone else gets runScriptAsCurrentUser.
inline Privileged::AuthorizationTool realScriptRunner() {
    if (::geteuid() == 0)
        return {};
    return runScriptAsCurrentUser;
}

// A tool that runs nothing and gives `output`, as a dismissed dialog or a scripted
// answer would.
inline Privileged::AuthorizationTool answering(Shell::Output output) {
    return [output = std::move(output)](const Privileged::Launch&) { return output; };
}

// The documented form of a request: the batch script's item lines for its steps, or
// the text a run request gives the shell.
inline std::string scriptOf(const Privileged::Request& request) {
    if (request.mode == WorkList::runMode)
        return WorkList::decodeRun(request.workList).value_or("");
    std::string lines;
    if (const auto batch = WorkList::decodeBatch(request.workList))
        for (const WorkList::Step& step : batch->steps)
            lines += AdminBatchScript::itemLine(step) + "\n";
    return lines;
}

struct ToolCall {
    std::string script; // scriptOf the request
    std::string prompt;
    double timeout = 0;
};

// Installs a tool that records every request and hands it on to `tool` (the
// platform's own when empty); restores the platform's tool when it goes.
class AuthorizationToolRecorder {
public:
    explicit AuthorizationToolRecorder(Privileged::AuthorizationTool tool)
        : scope_([calls = calls_, tool = std::move(tool)](const Privileged::Launch& launch) {
              const Privileged::Request& request = launch.request;
              calls->push_back({scriptOf(request), request.prompt, request.timeout});
              return tool ? tool(launch) : Privileged::runWithPlatformTool(launch);
          }) {}

    const std::vector<ToolCall>& calls() const { return *calls_; }

private:
    std::shared_ptr<std::vector<ToolCall>> calls_ = std::make_shared<std::vector<ToolCall>>();
    ScopedAuthorizationTool scope_;
};
