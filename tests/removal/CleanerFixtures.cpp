#include "CleanerFixtures.h"

#include "platform/Environment.h"
#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "removal/Privileged.h"

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

FakeHome& cleanerHome() {
    static FakeHome home;
    return home;
}

void CleanerHomeTest::SetUp() {
    if (Environment::homeFolder() != home.home() || Environment::temporaryFolder() != home.tmp())
        GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    area = home.makeDir(std::string("Library/Caches/") + info->test_suite_name() + "." + info->name());
    // Every test starts with an empty Trash, so dated batch folders of earlier tests
    // in the same second cannot mix with its own.
    removeTreeForcefully(home.path(".Trash"));
}

void CleanerHomeTest::TearDown() {
    Privileged::setAuthorizationTool({});
}

std::string CleanerHomeTest::areaFile(const std::string& relative, const std::string& content) const {
    return home.tree().makeFile(area.substr(home.tree().root().size() + 1) + "/" + relative, content);
}

std::string CleanerHomeTest::areaDir(const std::string& relative) const {
    return home.tree().makeDir(area.substr(home.tree().root().size() + 1) + "/" + relative);
}

ScanItem pathItem(const std::string& path, RemovalMethod method, std::optional<int64_t> size) {
    ScanItem item;
    item.id = path;
    item.categoryID = "user.caches";
    item.name = Paths::lastComponent(path);
    item.url = path;
    item.size = size;
    item.method = std::move(method);
    return item;
}

ScanItem commandItem(const std::string& id, const std::string& command, bool admin) {
    ScanItem item;
    item.id = id;
    item.categoryID = "dev.packages";
    item.name = id;
    item.method = RemovalMethod::makeCommand(command, admin);
    return item;
}

ScriptRecorder::ScriptRecorder(RunScripts) {
    Privileged::setAuthorizationTool(
        [calls = calls_](const std::string& path, const std::string& prompt, double timeout) {
            calls->push_back({readFile(path), prompt, timeout});
            if (::geteuid() == 0)
                return Privileged::runWithPlatformTool(path, prompt, timeout);
            return Shell::run("/bin/sh " + shellQuote(path), timeout);
        });
}

ScriptRecorder::ScriptRecorder(Shell::Output answer) {
    Privileged::setAuthorizationTool(
        [calls = calls_, answer](const std::string& path, const std::string& prompt, double timeout) {
            calls->push_back({readFile(path), prompt, timeout});
            return answer;
        });
}

ScriptRecorder::~ScriptRecorder() {
    Privileged::setAuthorizationTool({});
}

std::vector<std::string> itemLines(const std::string& script) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < script.size()) {
        size_t end = script.find('\n', start);
        if (end == std::string::npos)
            end = script.size();
        const std::string line = script.substr(start, end - start);
        if (line.starts_with("mv_item ") || line.starts_with("rm_item ") || line.starts_with("run_cmd "))
            lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

std::string readFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return "<unreadable>";
    std::string content;
    char buffer[65536];
    ssize_t n = 0;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
        content.append(buffer, static_cast<size_t>(n));
    ::close(fd);
    return content;
}

bool exists(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0;
}

mode_t typeOf(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 ? (st.st_mode & S_IFMT) : 0;
}

std::vector<std::string> entriesOf(const std::string& folder) {
    std::vector<std::string> names;
    if (DIR* dir = ::opendir(folder.c_str())) {
        while (const dirent* entry = ::readdir(dir)) {
            const std::string name = entry->d_name;
            if (name != "." && name != "..")
                names.push_back(name);
        }
        ::closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

namespace {

struct SnapshotState {
    std::map<std::string, std::string>* entries = nullptr;
    const std::vector<std::string>* excluded = nullptr;
};
SnapshotState snapshotState;

uint64_t contentHash(const std::string& path) {
    uint64_t hash = 1469598103934665603ULL;
    for (const unsigned char c : readFile(path)) {
        hash ^= c;
        hash *= 1099511628211ULL;
    }
    return hash;
}

bool isExcluded(const std::string& path) {
    for (const std::string& excluded : *snapshotState.excluded)
        if (path == excluded ||
            (path.size() > excluded.size() && path.starts_with(excluded) && path[excluded.size()] == '/'))
            return true;
    return false;
}

int recordEntry(const char* path, const struct stat* st, int type, FTW*) {
    const std::string p = path;
    if (isExcluded(p))
        return type == FTW_D ? FTW_SKIP_SUBTREE : FTW_CONTINUE;
    char description[160];
    if (type == FTW_D || type == FTW_DNR) {
        std::snprintf(description, sizeof description, "dir mode %o uid %u", st->st_mode & 07777,
                      static_cast<unsigned>(st->st_uid));
    } else {
        const auto mtime = static_cast<long long>(st->st_mtim.tv_sec) * 1000000000LL + st->st_mtim.tv_nsec;
        std::snprintf(description, sizeof description, "type %o mode %o uid %u size %lld mtime %lld",
                      st->st_mode & S_IFMT, st->st_mode & 07777, static_cast<unsigned>(st->st_uid),
                      static_cast<long long>(st->st_size), mtime);
    }
    std::string value = description;
    if (type == FTW_F && S_ISREG(st->st_mode)) {
        value += " hash " + std::to_string(contentHash(p));
    } else if (type == FTW_SL || type == FTW_SLN) {
        char target[4096];
        const ssize_t n = ::readlink(path, target, sizeof target);
        value += " -> " + std::string(target, n > 0 ? static_cast<size_t>(n) : 0);
    }
    (*snapshotState.entries)[p] = value;
    return FTW_CONTINUE;
}

} // namespace

std::map<std::string, std::string> snapshotTree(const std::string& root,
                                                const std::vector<std::string>& excluded) {
    std::map<std::string, std::string> entries;
    snapshotState = {&entries, &excluded};
    if (::nftw(root.c_str(), recordEntry, 32, FTW_PHYS | FTW_ACTIONRETVAL) != 0)
        entries["<walk failed>"] = root;
    snapshotState = {};
    return entries;
}

std::vector<std::string> reasonsOf(const CleanResult& result) {
    std::vector<std::string> reasons;
    for (const CleanFailure& failure : result.failures)
        reasons.push_back(failure.item.name + ": " + failure.reason);
    return reasons;
}

bool everyReasonIsNonEmpty(const CleanResult& result) {
    return std::all_of(result.failures.begin(), result.failures.end(),
                       [](const CleanFailure& failure) { return !failure.reason.empty(); });
}
