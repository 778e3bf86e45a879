#include "removal/AdminBatchScript.h"

#include "CleanerFixtures.h"
#include "platform/Paths.h"
#include "platform/ShellQuote.h"
#include "removal/Cleaner.h"
#include "removal/Privileged.h"
#include "support/DeepTree.h"
#include "support/ForkedChild.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const std::string sipReason = "Protected by macOS (SIP) or currently in use";
const std::string cancelReason = "Administrator authentication was cancelled";

std::vector<std::string> veltroFolders(const std::string& trash) {
    std::vector<std::string> found;
    for (const std::string& name : entriesOf(trash))
        if (name.starts_with("Veltro-"))
            found.push_back(name);
    return found;
}

class AdminBatchTest : public CleanerHomeTest {};

} // namespace

TEST_F(AdminBatchTest, ScriptTextLineByLine) {
    ScanItem noPath = pathItem("/Users/someone/Library/Caches/gone", RemovalMethod::adminTrash());
    noPath.url.reset();
    const std::vector<Cleaner::PrivilegedWork> work = {
        {pathItem("/Users/someone/Library/Caches/it's", RemovalMethod::trash()), false},
        {pathItem("/Users/someone/.Trash/old file", RemovalMethod::permanent()), true},
        {commandItem("cmd.tmutil", "echo 'hi' > /dev/null", true), false},
        {noPath, false},
        {pathItem("/usr", RemovalMethod::adminTrash()), false},
        {pathItem("/Users/someone", RemovalMethod::adminTrash()), false},
        {pathItem("/Users/someone/Library/Caches/x/../y", RemovalMethod::adminTrash()), false},
        {pathItem(home.home() + "/Documents", RemovalMethod::permanent()), true},
    };
    const std::string expected = R"script(#!/bin/sh
DEST='/Users/someone/.Trash/Veltro-20250114-093015'
mkdir -p "$DEST"
mv_item() {
  n=$(basename "$1"); t="$DEST/$n"; i=1
  while [ -e "$t" ] || [ -L "$t" ]; do t="$DEST/$n $i"; i=$((i+1)); done
  if mv "$1" "$t" 2>/dev/null; then echo "OK|$2"; else echo "FAIL|$2"; fi
}
rm_item() { if rm -rf "$1" 2>/dev/null; then echo "OK|$2"; else echo "FAIL|$2"; fi; }
run_cmd() { if /bin/sh -c "$1" >/dev/null 2>&1; then echo "OK|$2"; else echo "FAIL|$2"; fi; }
mv_item '/Users/someone/Library/Caches/it'\''s' i0
rm_item '/Users/someone/.Trash/old file' i1
run_cmd 'echo '\''hi'\'' > /dev/null' i2
mv_item '/Users/someone/Library/Caches/x/../y' i6
chown -R 501:20 "$DEST" 2>/dev/null
rmdir "$DEST" 2>/dev/null
exit 0
)script";
    // The dated folder is named by the local time: 09:30:15 UTC, 18:30:15 in Tokyo.
    const Date moment{std::chrono::seconds(1736847015)};
    ::setenv("TZ", "UTC0", 1);
    ::tzset();
    EXPECT_EQ(AdminBatchScript::build(AdminBatchScript::destination("/Users/someone", moment), work, 501, 20),
              expected);
    ::setenv("TZ", "JST-9", 1);
    ::tzset();
    EXPECT_EQ(AdminBatchScript::destination("/Users/someone", moment),
              "/Users/someone/.Trash/Veltro-20250114-183015");
    ::unsetenv("TZ");
    ::tzset();

    // A destination with a quote is quoted like every other value.
    const std::string quoted = AdminBatchScript::build("/h/it's/.Trash/Veltro-1", {}, 0, 0);
    EXPECT_NE(quoted.find("DEST='/h/it'\\''s/.Trash/Veltro-1'\n"), std::string::npos) << quoted;
}

TEST(AdminBatchScriptText, AnswersSplitAtEveryKindOfLineBreak) {
    const std::string output = "OK|i0\nFAIL|i1\r\nOK|i2\rOK|i3\xE2\x80\xA8OK|i4\xE2\x80\xA9\n\n\r\n"
                               "OK|\n|i5\nOK|i6|extra\nok|i7\nOK i8\nOK|i1\nFAIL|i0";
    const std::map<std::string, bool> expected = {{"i0", false}, {"i1", true}, {"i2", true},
                                                  {"i3", true},  {"i4", true}, {"i6|extra", true},
                                                  {"i7", false}};
    EXPECT_EQ(AdminBatchScript::parseAnswers(output), expected);
    EXPECT_TRUE(AdminBatchScript::parseAnswers("").empty());
}

// The real helper: a deletion and commands leave no dated folder behind and a failing
// command fails alone; two moved items of one name share the dated folder, and sizes
// not known count nothing. Quoted and hostile names are the hostile suite's.
TEST_F(AdminBatchTest, RealBatchDeletesRunsCommandsAndNumbersSameNames) {
    const std::string doomed = Paths::parentFolder(areaFile("doomed/inner", "x"));
    const std::string marker = area + "/command ran";
    const std::string first = areaFile("a/dup", "A");
    const std::string second = areaFile("b/dup", "B");
    const std::string trash = home.makeDir(".local/share/Trash/files");
    const std::vector<std::string> before = veltroFolders(trash);
    AuthorizationToolRecorder recorder{realScriptRunner()};

    CleanResult deleted;
    Cleaner::runPrivileged({{pathItem(doomed, RemovalMethod::permanent(), 4096), true},
                            {commandItem("cmd.touch", "touch " + shellQuote(marker), true), false},
                            {commandItem("cmd.fail", "exit 3", true), false}},
                           deleted);
    EXPECT_FALSE(exists(doomed));
    EXPECT_TRUE(exists(marker));
    EXPECT_EQ(deleted.succeeded.size(), 2u);
    ASSERT_EQ(deleted.failures.size(), 1u);
    EXPECT_EQ(deleted.failures[0].item.id, "cmd.fail");
    EXPECT_EQ(deleted.failures[0].reason, sipReason);
    EXPECT_EQ(deleted.deletedBytes, 4096);
    EXPECT_EQ(deleted.movedToTrashBytes, 0);
    EXPECT_TRUE(deleted.trashedURLs.empty());
    EXPECT_EQ(veltroFolders(trash), before);

    CleanResult moved;
    moved.movedToTrashBytes = 1;
    Cleaner::runPrivileged({{pathItem(first, RemovalMethod::adminTrash(), 20), false},
                            {pathItem(second, RemovalMethod::adminTrash()), false}},
                           moved);
    ASSERT_EQ(recorder.calls().size(), 2u);
    EXPECT_EQ(recorder.calls()[1].prompt, "Veltro needs administrator privileges to clean system files.");
    EXPECT_TRUE(moved.failures.empty()) << ::testing::PrintToString(reasonsOf(moved));
    ASSERT_EQ(moved.succeeded.size(), 2u);
    EXPECT_EQ(moved.movedToTrashBytes, 21);
    ASSERT_EQ(moved.trashedURLs.size(), 1u);
    const std::string dest = moved.trashedURLs[0];
    EXPECT_TRUE(dest.starts_with(trash + "/Veltro-")) << dest;
    EXPECT_EQ(readFile(dest + "/dup"), "A");
    EXPECT_EQ(readFile(dest + "/dup 1"), "B");
    EXPECT_FALSE(exists(first) || exists(second));
}

// Whatever the answers say, an item counts only by the answer to its own line: items
// without a path and refused paths get no line, so answers for those keys do not
// count. A dismissed dialog, or a tool that could not run (its message cut at 200
// characters, never inside one), fails every item with that reason. Nothing is counted.
TEST_F(AdminBatchTest, ItemsNotDoneFailWithTheRunsReasonAndCountNothing) {
    const std::string kept = area + "/kept";
    ScanItem noPath = pathItem(area + "/gone", RemovalMethod::adminTrash());
    noPath.url.reset();
    const std::vector<Cleaner::PrivilegedWork> work = {
        {noPath, false},
        {pathItem(home.home(), RemovalMethod::adminTrash()), false},
        {pathItem(home.home() + "/Documents", RemovalMethod::permanent()), true},
        {pathItem("/veltro-absent-folder/item", RemovalMethod::adminTrash()), false},
        {pathItem(kept, RemovalMethod::adminTrash(), 100), false},
        {pathItem(area + "/other", RemovalMethod::permanent(), 200), true},
        {commandItem("cmd.tmutil", "true", true), false},
    };
    const std::vector<std::string> lines = {"mv_item " + shellQuote(kept) + " i4",
                                            "rm_item " + shellQuote(area + "/other") + " i5",
                                            "run_cmd 'true' i6"};
    std::string message;
    for (int i = 0; i < 150; ++i)
        message += "\xC3\xA9"; // é, two bytes each
    const std::string cut = message + std::string(50, 'x');
    message += std::string(100, 'x');
    const std::vector<std::pair<Shell::Output, std::string>> cases = {
        {{0, "OK|i0\nOK|i1\nOK|i2\nOK|i3\n", ""}, sipReason},
        {{126, "", "-128: Error executing command as another user: Not authorized"}, cancelReason},
        {{1, "OK|i4\n", message}, "Could not run with administrator privileges: " + cut}};
    for (const auto& [answer, reason] : cases) {
        AuthorizationToolRecorder recorder{answering(answer)};
        CleanResult result;
        result.movedToTrashBytes = 7;
        result.deletedBytes = 11;
        result.trashedURLs = {"/earlier"};
        Cleaner::runPrivileged(work, result);
        ASSERT_EQ(recorder.calls().size(), 1u);
        EXPECT_EQ(itemLines(recorder.calls()[0].script), lines);
        ASSERT_EQ(result.failures.size(), work.size());
        for (size_t i = 0; i < work.size(); ++i) {
            EXPECT_EQ(result.failures[i].item, work[i].item);
            EXPECT_EQ(result.failures[i].reason, reason) << work[i].item.id;
        }
        EXPECT_NE(result.failures[0].id, result.failures[1].id);
        EXPECT_TRUE(result.succeeded.empty());
        EXPECT_EQ(result.movedToTrashBytes, 7);
        EXPECT_EQ(result.deletedBytes, 11);
        EXPECT_EQ(result.trashedURLs, std::vector<std::string>{"/earlier"});
    }
}

// The batch runs as root, so what it moved must be handed back to the user who
// started the clean, as pkexec names them, with the trash folders it had to make.
TEST_F(AdminBatchTest, MovedItemsAndNewTrashFoldersBelongToTheUser) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to act as the administrator for another user";
    const std::string file = areaFile("owned/deeper/file", "o");
    const std::string item = Paths::parentFolder(Paths::parentFolder(file));
    // Deeper than the descriptors the hand-over keeps open, with side trees to come
    // back to: every level must still change owner.
    ASSERT_EQ(buildDeepTree(item + "/deeper", 600), 0);
    const uid_t user = unprivilegedUid();
    const gid_t group = unprivilegedGid();
    removeTreeForcefully(home.path(".local"));
    ASSERT_EQ(::lchown(home.home().c_str(), user, group), 0);
    ASSERT_EQ(::lchown(home.tmp().c_str(), user, group), 0);

    const int code = runInChild([&] {
        // The user's process (real ids the user's) asks; the helper runs as root with
        // PKEXEC_UID, as pkexec starts it.
        if (::setresgid(group, 0, 0) != 0 || ::setresuid(user, 0, 0) != 0)
            return 10;
        ScopedAuthorizationTool tool([user](const Privileged::Launch& launch) {
            if (::setresuid(0, 0, 0) != 0 || ::setresgid(0, 0, 0) != 0)
                return Shell::Output{-1, "", "could not become root"};
            return Privileged::runProcess(launch.command, launch, {"PKEXEC_UID=" + std::to_string(user)});
        });
        CleanResult result;
        Cleaner::runPrivileged({{pathItem(item, RemovalMethod::adminTrash()), false}}, result);
        if (result.succeeded.size() != 1 || result.trashedURLs.size() != 1)
            return 11;
        const std::string dest = result.trashedURLs[0];
        for (const std::string& path :
             {home.path(".local/share/Trash"), home.path(".local/share/Trash/files")})
            if (statOf(path).st_uid != user || statOf(path).st_gid != group)
                return 12;
        // Every level of what was moved, the dated folder itself included.
        static std::pair<uid_t, gid_t> expected;
        expected = {user, group};
        const auto notTheUsers = [](const char*, const struct stat* st, int, FTW*) {
            return std::pair(st->st_uid, st->st_gid) == expected ? 0 : 1;
        };
        return ::nftw(dest.c_str(), notTheUsers, 64, FTW_PHYS) == 0 ? 0 : 13;
    });
    EXPECT_EQ(code, 0);
}
