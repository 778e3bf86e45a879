#include "removal/Privileged.h"

#include "platform/Localized.h"
#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "removal/WorkList.h"

#include <climits>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#ifndef VELTRO_HELPER_FROM_BINDIR
#define VELTRO_HELPER_FROM_BINDIR "../libexec/veltro"
#endif

namespace {

constexpr const char* pkexecPath = "/usr/bin/pkexec";
constexpr const char* helperName = "veltro-helper";

struct Settings {
    std::mutex lock;
    Privileged::AuthorizationTool tool;
    std::string helperPath;
};

Settings& settings() {
    static Settings instance;
    return instance;
}

Privileged::AuthorizationTool currentTool() {
    std::lock_guard guard(settings().lock);
    return settings().tool;
}

bool isExecutableFile(const std::string& path) {
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

std::string executableFolder() {
    char buffer[PATH_MAX];
    const ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
    if (n <= 0)
        return {};
    return Paths::parentFolder(std::string_view(buffer, static_cast<size_t>(n)));
}

std::string replacingDoubleQuotes(std::string text) {
    for (char& c : text) {
        if (c == '"')
            c = '\'';
    }
    return text;
}

} // namespace

namespace Privileged {

Shell::Output runThroughPkexec(const std::string& pkexec, const Launch& launch) {
    if (::access(pkexec.c_str(), X_OK) != 0)
        return Shell::Output{
            127, std::string(),
            localized("Administrator rights cannot be requested because pkexec is not installed.")};
    std::vector<std::string> command{pkexec};
    command.insert(command.end(), launch.command.begin(), launch.command.end());
    // The C locale keeps pkexec's messages recognisable.
    Shell::Output output = runProcess(command, launch, {"LC_ALL=C"});
    // 126 is pkexec's answer to a dismissed dialog. Callers know a cancelled
    // authorisation by "-128"; the helper never exits with 126 itself.
    if (output.status == 126)
        output.standardError = "-128: " + output.standardError;
    return output;
}

Shell::Output runWithPlatformTool(const Launch& launch) {
    if (::geteuid() == 0)
        return runProcess(launch.command, launch);
    return runThroughPkexec(pkexecPath, launch);
}

void setAuthorizationTool(AuthorizationTool tool) {
    std::lock_guard guard(settings().lock);
    settings().tool = std::move(tool);
}

void setHelperPath(std::string path) {
    std::lock_guard guard(settings().lock);
    settings().helperPath = std::move(path);
}

std::string helperPath() {
    {
        std::lock_guard guard(settings().lock);
        if (!settings().helperPath.empty())
            return isExecutableFile(settings().helperPath) ? settings().helperPath : std::string();
    }
    // Beside the executable in a build tree; below the prefix's libexec folder once
    // installed (<prefix>/bin/veltro and <prefix>/libexec/veltro/veltro-helper).
    const std::string folder = executableFolder();
    if (folder.empty())
        return {};
    for (const std::string& candidate :
         {Paths::join(folder, helperName),
          Paths::standardizedPath(folder + "/" + VELTRO_HELPER_FROM_BINDIR + "/" + helperName)})
        if (isExecutableFile(candidate))
            return candidate;
    return {};
}

Shell::Output runHelper(const Request& request, const LineCallback& onLine) {
    const std::string helper = helperPath();
    if (helper.empty())
        return {-1, "", localized("The administrator helper (veltro-helper) was not found.")};
    Request asked = request;
    asked.prompt = replacingDoubleQuotes(asked.prompt);
    const Launch launch{{helper, request.mode}, asked, onLine};
    const AuthorizationTool tool = currentTool();
    return tool ? tool(launch) : runWithPlatformTool(launch);
}

Shell::Output run(const std::string& script, const std::string& prompt, double timeout) {
    return runHelper({WorkList::runMode, WorkList::encodeRun(script), prompt, timeout});
}

Shell::Output measure(const std::vector<WorkList::MeasuredEntry>& entries, const std::string& prompt,
                      double timeout, const LineCallback& onLine) {
    return runHelper({WorkList::measureMode, WorkList::encode(entries), prompt, timeout}, onLine);
}

std::string appleScript(const std::string& scriptPath, const std::string& prompt) {
    return "do shell script \"/bin/sh \" & quoted form of \"" + scriptPath + "\" with prompt \"" +
           replacingDoubleQuotes(prompt) + "\" with administrator privileges";
}

std::string osascriptCommand(const std::string& scriptPath, const std::string& prompt) {
    return "/usr/bin/osascript -e " + shellQuote(appleScript(scriptPath, prompt));
}

} // namespace Privileged
