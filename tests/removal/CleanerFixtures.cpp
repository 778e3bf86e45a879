#include "CleanerFixtures.h"

#include "platform/Environment.h"
#include "platform/Paths.h"
#include "platform/Trash.h"
#include "removal/Privileged.h"

#include <cstdlib>
#include <sstream>

FakeHome& cleanerHome() {
    static FakeHome home;
    // The trash follows the home, whatever the machine's own data folder.
    ::unsetenv("XDG_DATA_HOME");
    return home;
}

void CleanerHomeTest::SetUp() {
    if (Environment::homeFolder() != home.home() || Environment::temporaryFolder() != home.tmp())
        GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    area = home.makeDir(std::string("Library/Caches/") + info->test_suite_name() + "." + info->name());
    // Every test starts with empty Trash folders, so dated batch folders of earlier
    // tests in the same second cannot mix with its own.
    removeTreeForcefully(home.path(".Trash"));
    removeTreeForcefully(Trash::homeTrashFolder());
    home.makeDir(".local/share"); // as on any desktop: only the Trash itself is new
}

void CleanerHomeTest::TearDown() {
    Privileged::setAuthorizationTool({});
}

std::string CleanerHomeTest::areaFile(const std::string& relative, const std::string& content) const {
    return home.tree().makeFile(area + "/" + relative, content);
}

std::string CleanerHomeTest::areaDir(const std::string& relative) const {
    return home.tree().makeDir(area + "/" + relative);
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

std::vector<std::string> itemLines(const std::string& script) {
    std::vector<std::string> lines;
    std::istringstream in(script);
    for (std::string line; std::getline(in, line);)
        if (line.starts_with("mv_item ") || line.starts_with("rm_item ") || line.starts_with("run_cmd "))
            lines.push_back(line);
    return lines;
}

std::vector<std::string> reasonsOf(const CleanResult& result) {
    std::vector<std::string> reasons;
    for (const CleanFailure& failure : result.failures)
        reasons.push_back(failure.item.name + ": " + failure.reason);
    return reasons;
}
