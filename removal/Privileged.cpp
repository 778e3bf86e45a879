#include "removal/Privileged.h"

#include "platform/Environment.h"
#include "platform/Localized.h"
#include "platform/ShellQuote.h"
#include "platform/Uuid.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char* pkexecPath = "/usr/bin/pkexec";

std::mutex toolMutex;
Privileged::AuthorizationTool& installedTool() {
    static Privileged::AuthorizationTool tool;
    return tool;
}

Privileged::AuthorizationTool currentTool() {
    std::lock_guard lock(toolMutex);
    return installedTool();
}

std::string errorDescription(int error) {
    char buffer[256];
    return localized(::strerror_r(error, buffer, sizeof buffer));
}

int writeAll(int fd, const std::string& bytes) {
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n < 0 ? errno : EIO;
        written += static_cast<size_t>(n);
    }
    return 0;
}

// Writes the file under a temporary name in the same folder and renames it into
// place, so the tool never sees a partly written script. Returns 0 or an errno.
int writeScript(const std::string& path, const std::string& script) {
    const size_t slash = path.rfind('/');
    std::string pattern = path.substr(0, slash + 1) + "." + path.substr(slash + 1) + "-XXXXXX";
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int fd = ::mkostemp(name.data(), O_CLOEXEC);
    if (fd < 0)
        return errno;
    int error = writeAll(fd, script);
    if (error == 0 && ::fchmod(fd, 0700) != 0)
        error = errno;
    if (error == 0 && ::fsync(fd) != 0)
        error = errno;
    if (::close(fd) != 0 && error == 0)
        error = errno;
    if (error == 0 && ::rename(name.data(), path.c_str()) != 0)
        error = errno;
    if (error != 0)
        ::unlink(name.data());
    return error;
}

// Removes the script file when the run ends, however it ends.
class RemoveOnExit {
public:
    explicit RemoveOnExit(std::string path) : path_(std::move(path)) {}
    ~RemoveOnExit() { ::unlink(path_.c_str()); }
    RemoveOnExit(const RemoveOnExit&) = delete;
    RemoveOnExit& operator=(const RemoveOnExit&) = delete;

private:
    std::string path_;
};

std::string replacingDoubleQuotes(std::string text) {
    for (char& c : text) {
        if (c == '"')
            c = '\'';
    }
    return text;
}

} // namespace

namespace Privileged {

Shell::Output runThroughPkexec(const std::string& pkexec, const std::string& scriptPath, double timeout) {
    if (::access(pkexec.c_str(), X_OK) != 0)
        return Shell::Output{
            127, std::string(),
            localized("Administrator rights cannot be requested because pkexec is not installed.")};
    // pkexec clears PATH and HOME for the program it starts, hence absolute paths;
    // the C locale keeps its messages recognisable.
    Shell::Output output =
        Shell::run("LC_ALL=C " + shellQuote(pkexec) + " /bin/sh " + shellQuote(scriptPath), timeout);
    // 126 is pkexec's answer to a dismissed dialog. Callers know a cancelled
    // authorisation by "-128"; a script that itself exits with 126 looks the same.
    if (output.status == 126)
        output.standardError = "-128: " + output.standardError;
    return output;
}

Shell::Output runWithPlatformTool(const std::string& scriptPath, const std::string& prompt, double timeout) {
    // pkexec shows its own policy message; it has no way to take ours.
    (void)prompt;
    if (::geteuid() == 0)
        return Shell::run("/bin/sh " + shellQuote(scriptPath), timeout);
    return runThroughPkexec(pkexecPath, scriptPath, timeout);
}

void setAuthorizationTool(AuthorizationTool tool) {
    std::lock_guard lock(toolMutex);
    installedTool() = std::move(tool);
}

Shell::Output run(const std::string& script, const std::string& prompt, double timeout) {
    const std::string path = Environment::temporaryFolder() + "/korvane-" + makeUuid() + ".sh";
    if (const int error = writeScript(path, script))
        return Shell::Output{-1, std::string(),
                             localizedFormat("Could not write helper script: %1", {errorDescription(error)})};
    const RemoveOnExit removal(path);
    const std::string dialogPrompt = replacingDoubleQuotes(prompt);
    const AuthorizationTool tool = currentTool();
    return tool ? tool(path, dialogPrompt, timeout) : runWithPlatformTool(path, dialogPrompt, timeout);
}

std::string appleScript(const std::string& scriptPath, const std::string& prompt) {
    return "do shell script \"/bin/sh \" & quoted form of \"" + scriptPath + "\" with prompt \"" +
           replacingDoubleQuotes(prompt) + "\" with administrator privileges";
}

std::string osascriptCommand(const std::string& scriptPath, const std::string& prompt) {
    return "/usr/bin/osascript -e " + shellQuote(appleScript(scriptPath, prompt));
}

} // namespace Privileged
