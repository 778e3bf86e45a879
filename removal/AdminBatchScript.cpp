#include "removal/AdminBatchScript.h"

#include "platform/ShellQuote.h"
#include "platform/Text.h"

#include <cstdio>
#include <ctime>

namespace AdminBatchScript {

namespace {

// Fixed head of the script: DEST is made by the script itself (as the administrator),
// and every helper reports "OK|key" or "FAIL|key" so one failing item never stops
// the others.
constexpr const char* helpers =
    "mkdir -p \"$DEST\"\n"
    "mv_item() {\n"
    "  n=$(basename \"$1\"); t=\"$DEST/$n\"; i=1\n"
    "  while [ -e \"$t\" ] || [ -L \"$t\" ]; do t=\"$DEST/$n $i\"; i=$((i+1)); done\n"
    "  if mv \"$1\" \"$t\" 2>/dev/null; then echo \"OK|$2\"; else echo \"FAIL|$2\"; fi\n"
    "}\n"
    "rm_item() { if rm -rf \"$1\" 2>/dev/null; then echo \"OK|$2\"; else echo "
    "\"FAIL|$2\"; fi; }\n"
    "run_cmd() { if /bin/sh -c \"$1\" >/dev/null 2>&1; then echo \"OK|$2\"; else echo "
    "\"FAIL|$2\"; fi; }\n";

} // namespace

std::string destination(const std::string& home, Date localNow) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(localNow).time_since_epoch().count();
    const std::time_t t = static_cast<std::time_t>(seconds);
    std::tm local{};
    ::localtime_r(&t, &local);
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%04d%02d%02d-%02d%02d%02d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return home + "/.Trash/Veltro-" + stamp;
}

std::string entryKey(size_t index) {
    return "i" + std::to_string(index);
}

bool writesLine(const Cleaner::PrivilegedWork& pair) {
    if (pair.item.method.isCommand())
        return true;
    return pair.item.url && !Cleaner::isRefusedPath(*pair.item.url);
}

std::vector<WorkList::Step> steps(const std::vector<Cleaner::PrivilegedWork>& work) {
    std::vector<WorkList::Step> steps;
    for (size_t k = 0; k < work.size(); ++k) {
        const Cleaner::PrivilegedWork& pair = work[k];
        if (!writesLine(pair))
            continue;
        if (pair.item.method.isCommand())
            steps.push_back({WorkList::Step::Kind::command, entryKey(k), pair.item.method.command});
        else
            steps.push_back({pair.permanent ? WorkList::Step::Kind::remove : WorkList::Step::Kind::move,
                             entryKey(k), *pair.item.url});
    }
    return steps;
}

std::string itemLine(const WorkList::Step& step) {
    const char* function = step.kind == WorkList::Step::Kind::command  ? "run_cmd "
                           : step.kind == WorkList::Step::Kind::remove ? "rm_item "
                                                                       : "mv_item ";
    return function + shellQuote(step.payload) + " " + step.key;
}

std::string build(const std::string& dest, const std::vector<Cleaner::PrivilegedWork>& work, unsigned uid,
                  unsigned gid) {
    std::string script = "#!/bin/sh\n";
    script += "DEST=" + shellQuote(dest) + "\n";
    script += helpers;
    for (const WorkList::Step& step : steps(work))
        script += itemLine(step) + "\n";
    script += "chown -R " + std::to_string(uid) + ":" + std::to_string(gid) + " \"$DEST\" 2>/dev/null\n";
    script += "rmdir \"$DEST\" 2>/dev/null\n";
    script += "exit 0\n";
    return script;
}

std::map<std::string, bool> parseAnswers(std::string_view output) {
    std::map<std::string, bool> answers;
    for (std::string_view line : Text::lines(output))
        if (const auto pieces = Text::splitAtFirstBar(line))
            answers[std::string(pieces->second)] = pieces->first == "OK";
    return answers;
}

} // namespace AdminBatchScript
