// The real helper's other duties: measuring with progress that arrives as it is
// measured, refusing a list that is not the asking user's, and stopping, with what it
// started, when the user process quits, dies or runs out of time.

#include "CleanerFixtures.h"
#include "platform/Environment.h"
#include "platform/ShellQuote.h"
#include "removal/Shell.h"
#include "removal/WorkList.h"
#include "support/ForkedChild.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

using Kind = WorkList::Step::Kind;

// A command that writes `what` into `marker` at once (so it is never seen half
// written), then becomes a long-running tool itself.
std::string announcingThenSleeping(const std::string& marker, const std::string& what) {
    return "echo " + what + " > " + shellQuote(marker + ".part") + " && mv " + shellQuote(marker + ".part") +
           " " + shellQuote(marker) + " && exec sleep 600";
}

// Waits for a state, never for a time: gives up only when something is clearly stuck.
bool eventually(const std::function<bool()>& done) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!done()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

class HelperRunTest : public CleanerHomeTest {
protected:
    WorkList::Batch batchFor(std::vector<WorkList::Step> steps) const {
        return {Environment::realUserID(),
                Environment::realGroupID(),
                home.home(),
                home.tmp(),
                home.path(".local/share/Trash"),
                0,
                std::move(steps)};
    }
};

} // namespace

TEST_F(HelperRunTest, MeasurementLinesArriveAsEachEntryIsMeasured) {
    const std::string plain = areaDir("plain");
    home.tree().makeFileOfSize(plain + "/a.bin", 200'000);
    const std::string quoted = areaDir("it's here");
    home.tree().makeFileOfSize(quoted + "/b.bin", 70'000);
    const std::string marker = area + "/first line seen";
    // The count waits until the first line has reached us: it can only finish if lines
    // are handed over while the helper still works.
    const std::vector<WorkList::MeasuredEntry> entries = {
        {"plain", {plain}, ""},
        {"tm", {}, "while [ ! -e " + shellQuote(marker) + " ]; do sleep 0.01; done; printf ' 7 \\nvm|9\\n'"},
        {"quoted", {quoted, area + "/missing"}, ""},
        {"gone", {area + "/missing", "-x"}, ""}};

    const ScopedAuthorizationTool tool(runScriptAsCurrentUser);
    std::vector<std::string> lines;
    const Shell::Output output = Privileged::measure(entries, "Prompt", 120, [&](std::string_view line) {
        lines.emplace_back(line);
        home.tree().makeFile(marker);
    });

    const std::vector<std::string> expected = {"plain|" + std::to_string(duKibibytes({plain})), "tm|7",
                                               "quoted|" + std::to_string(duKibibytes({quoted})), "gone|0"};
    EXPECT_EQ(output.status, 0) << output.standardError;
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(output.standardOutput,
              expected[0] + "\n" + expected[1] + "\n" + expected[2] + "\n" + expected[3] + "\n");
}

// The helper believes the list's home and ids only for the user who asked; otherwise it
// does nothing at all.
TEST_F(HelperRunTest, ListsNotOfTheAskingUserAreRefused) {
    const std::string item = areaFile("item", "i");
    const std::string strangers = home.tree().makeDir("strangers");
    const WorkList::Batch good = batchFor({{Kind::remove, "i0", item}});
    const std::vector<std::pair<const char*, std::function<void(WorkList::Batch&)>>> changes = {
        {"another uid", [](WorkList::Batch& b) { b.uid = 12345; }},
        {"a group the user is not in", [](WorkList::Batch& b) { b.gid = 12345; }},
        {"a home of someone else", [&](WorkList::Batch& b) { b.home = strangers; }},
        {"a temporary folder of someone else", [&](WorkList::Batch& b) { b.temporary = strangers; }},
        {"a home that is not standardized", [&](WorkList::Batch& b) { b.home = home.home() + "/."; }},
    };
    // Run unprivileged: a user who is not root may not claim anyone else either.
    chownTree(home.tree().root(), unprivilegedUid(), unprivilegedGid());
    ASSERT_EQ(::chown(strangers.c_str(), 12345, 12345), 0);
    const ScopedAuthorizationTool tool(runScriptAsCurrentUser);
    for (const auto& [why, change] : changes) {
        const int code = runUnprivileged([&] {
            // The asking user's own ids, unless the change claims another's.
            WorkList::Batch asked = good;
            asked.uid = ::getuid();
            asked.gid = ::getgid();
            change(asked);
            const Shell::Output output =
                Privileged::runHelper({WorkList::cleanMode, WorkList::encode(asked), "Prompt", 60});
            return output.status == 2 && output.standardOutput.empty() && !output.standardError.empty() ? 0
                                                                                                        : 1;
        });
        EXPECT_EQ(code, 0) << why;
        EXPECT_TRUE(exists(item)) << why;
    }
    const Shell::Output garbled =
        Privileged::runHelper({WorkList::cleanMode, WorkList::encode(good).substr(5), "Prompt", 60});
    EXPECT_EQ(garbled.status, 2);
    EXPECT_TRUE(exists(item));
}

// The helper runs as root and this process may not signal it: whether the user process
// quits, dies or gives up, the helper ends what it started and stops before the next
// item, and no file of the run stays behind.
TEST_F(HelperRunTest, StopsWithWhatItStartedWhenTheUserProcessQuitsDiesOrGivesUp) {
    ASSERT_EQ(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0); // orphaned helpers come back to us
    const ScopedAuthorizationTool tool(realScriptRunner());
    for (const std::string way : {"dies", "gives up", "quits"}) {
        SCOPED_TRACE(way);
        const std::string marker = area + "/started";
        const std::string next = areaFile("next item", "n");
        // The command says who runs it (the helper, itself).
        const std::string command = announcingThenSleeping(marker, "$PPID $$");
        const WorkList::Batch batch = batchFor({{Kind::command, "i0", command}, {Kind::remove, "i1", next}});
        const Privileged::Request request{WorkList::cleanMode, WorkList::encode(batch), "Prompt",
                                          way == "gives up" ? 1.0 : 600.0};

        Shell::Output output;
        pid_t user = -1;
        std::thread run;
        if (way == "dies") {
            user = ::fork();
            ASSERT_GE(user, 0);
            if (user == 0) {
                Privileged::runHelper(request);
                ::_exit(0);
            }
        } else {
            run = std::thread([&] { output = Privileged::runHelper(request); });
        }
        ASSERT_TRUE(eventually([&] { return exists(marker); }));
        pid_t helper = 0, sleeper = 0;
        std::istringstream(readFile(marker)) >> helper >> sleeper;
        ASSERT_GT(helper, 0);
        ASSERT_GT(sleeper, 0);

        if (way == "dies") {
            ASSERT_EQ(::kill(user, SIGKILL), 0);
            ASSERT_EQ(::waitpid(user, nullptr, 0), user);
            // The orphaned helper is ours now: it must end by itself.
            ASSERT_TRUE(eventually([&] { return ::waitpid(helper, nullptr, WNOHANG) == helper; }));
        } else {
            if (way == "quits")
                Privileged::endAll();
            run.join();
            EXPECT_EQ(output.standardOutput, "FAIL|i0\n");
        }
        EXPECT_TRUE(::kill(sleeper, 0) != 0 && errno == ESRCH) << "the tool still runs";
        EXPECT_TRUE(::kill(helper, 0) != 0 && errno == ESRCH) << "the helper still runs";
        EXPECT_EQ(readFile(next), "n") << "an item after the stop was removed";
        EXPECT_TRUE(entriesOf(home.tmp()).empty());
        ::unlink(marker.c_str());
    }
    // After quitting, nothing more is started.
    EXPECT_EQ(Privileged::runHelper({WorkList::runMode, WorkList::encodeRun("true"), "Prompt", 10}).status,
              -1);
}

// A run that ignores the stop (as a root helper we may not signal could) holds quitting
// only as long as its patience.
TEST_F(HelperRunTest, QuittingGivesUpOnARunThatDoesNotEnd) {
    const std::string marker = area + "/pid";
    const std::string stubborn = "trap '' TERM; " + announcingThenSleeping(marker, "$$");
    const ScopedAuthorizationTool tool([&](const Privileged::Launch& launch) {
        return Privileged::runProcess({"/bin/sh", "-c", stubborn}, launch);
    });
    Shell::Output output;
    std::thread run([&] { output = Privileged::run("true", "Prompt", 600); });
    ASSERT_TRUE(eventually([&] { return exists(marker); }));
    EXPECT_FALSE(Privileged::endAll(std::chrono::milliseconds(50)));
    ::kill(-std::stoi(readFile(marker)), SIGKILL);
    run.join();
    EXPECT_EQ(output.status, 128 + SIGKILL);
}
