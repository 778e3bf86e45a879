#include "removal/Shell.h"

#include "platform/Environment.h"

#include "support/FakeHome.h"
#include "support/ProcessCounts.h"
#include "support/Unprivileged.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// True while `pid` is a live process (neither gone nor a zombie waiting for its
// adoptive parent).
bool isRunning(pid_t pid) {
    std::ifstream stat("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    if (!std::getline(stat, line))
        return false;
    const size_t close = line.rfind(')');
    return close != std::string::npos && close + 2 < line.size() && line[close + 2] != 'Z';
}

pid_t parsePid(const std::string& text) {
    return static_cast<pid_t>(std::strtol(text.c_str(), nullptr, 10));
}

} // namespace

TEST(Shell, ReportsExitStatusAndBothStreamsAsUtf8) {
    EXPECT_EQ(Shell::run("exit 3", 10), (Shell::Output{3, "", ""}));
    // Standard input is the null device: `cat` ends at once.
    const auto start = Clock::now();
    EXPECT_EQ(Shell::run("cat", 30), (Shell::Output{0, "", ""}));
    EXPECT_LT(secondsSince(start), 5);
    EXPECT_EQ(Shell::run("printf 'out\\n'; printf 'err' >&2; exit 7", 10),
              (Shell::Output{7, "out\n", "err"}));
    // Death by a signal reports the signal's number.
    EXPECT_EQ(Shell::run("kill -KILL $$", 10).status, SIGKILL);
    // Bytes that are not UTF-8 become the replacement character, in either stream.
    EXPECT_EQ(Shell::run("printf 'a\\377b'; printf '\\303(' >&2; printf '\\342\\202\\254'", 10),
              (Shell::Output{0,
                             "a\xEF\xBF\xBD"
                             "b\xE2\x82\xAC",
                             "\xEF\xBF\xBD("}));
}

TEST(Shell, DrainsBothStreamsCompletely) {
    // Standard error is filled first: a runner that read its streams one after the
    // other would leave the child blocked on a full pipe.
    constexpr size_t size = 5'000'000;
    const auto result = Shell::run("head -c 5000000 /dev/zero | tr '\\0' e >&2; "
                                   "head -c 5000000 /dev/zero | tr '\\0' o",
                                   60);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.standardOutput, std::string(size, 'o'));
    EXPECT_EQ(result.standardError, std::string(size, 'e'));
}

// The limit ends the command's whole group: a plain command, a pipeline that keeps the
// output pipe open through `cat`, and a background job that holds both pipes after
// the shell itself finished in time.
TEST(Shell, TimeLimitEndsTheWholeGroup) {
    const auto limited = [](const std::string& command) {
        const auto start = Clock::now();
        const Shell::Output result = Shell::run(command, 1);
        const double elapsed = secondsSince(start);
        EXPECT_GE(elapsed, 0.9) << command;
        EXPECT_LT(elapsed, 10) << command;
        return result;
    };
    EXPECT_EQ(limited("sleep 100").status, SIGTERM);
    const Shell::Output pipeline = limited("echo before; sleep 100 | cat");
    EXPECT_EQ(pipeline.status, SIGTERM);
    EXPECT_EQ(pipeline.standardOutput, "before\n");

    const Shell::Output background = limited("sleep 30 & echo $!");
    EXPECT_EQ(background.status, 0);
    const pid_t job = parsePid(background.standardOutput);
    ASSERT_GT(job, 0);
    bool ended = false;
    for (int i = 0; i < 100 && !ended; ++i) {
        ended = !isRunning(job);
        if (!ended)
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_TRUE(ended);
}

TEST(Shell, FinishedCommandIsNeverSignalled) {
    // The background job stays in the command's process group with its output
    // elsewhere, so the call returns at once; a limit firing later would end it.
    const auto start = Clock::now();
    const auto result = Shell::run("sleep 4 >/dev/null 2>&1 & echo $!", 1);
    ASSERT_LT(secondsSince(start), 0.9);
    EXPECT_EQ(result.status, 0);
    const pid_t background = parsePid(result.standardOutput);
    ASSERT_GT(background, 0);
    ASSERT_TRUE(isRunning(background));
    std::this_thread::sleep_until(start + std::chrono::milliseconds(1600));
    EXPECT_TRUE(isRunning(background));
    ::kill(background, SIGKILL);
}

TEST(Shell, ChildSearchesItsOwnPathAndInheritsTheRest) {
    FakeHome home;
    if (Environment::homeFolder() != home.home())
        GTEST_SKIP() << "the home folder was read earlier in this process; run this test on its own";
    home.installTool("veltro-probe-tool", "echo found it");
    ::setenv("VELTRO_TEST_MARKER", "kept 'as' is", 1);
    ::setenv("PATH", "/nonexistent", 1);

    const auto found = Shell::run("veltro-probe-tool", 10);
    EXPECT_EQ(found, (Shell::Output{0, "found it\n", ""}));
    const auto variables = Shell::run("printf '%s|%s' \"$PATH\" \"$VELTRO_TEST_MARKER\"", 10);
    EXPECT_EQ(variables.standardOutput, Shell::path() + "|kept 'as' is");

    ::unsetenv("PATH");
    EXPECT_EQ(Shell::run("printf %s \"$PATH\"", 10).standardOutput, Shell::path());
}

TEST(Shell, StartFailureIsReportedNotThrown) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root to drop to a user whose process limit can be set to zero";
    // With no process allowed for the user, the spawn itself fails.
    const int code = runUnprivileged([] {
        const int before = openDescriptorCount();
        const rlimit none{0, 0};
        if (::setrlimit(RLIMIT_NPROC, &none) != 0)
            return 10;
        const auto result = Shell::run("echo never", 10);
        if (result.status != -1 || !result.standardOutput.empty())
            return 11;
        if (result.standardError != std::strerror(EAGAIN))
            return 12;
        return openDescriptorCount() == before ? 0 : 13;
    });
    EXPECT_EQ(code, 0);
}

TEST(Shell, RunsInParallelWithoutLeaks) {
    const int before = openDescriptorCount();
    constexpr int threadCount = 8;
    constexpr int runsPerThread = 12;
    std::atomic<int> mismatches{0};
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < threadCount; ++t) {
            threads.emplace_back([t, &mismatches] {
                for (int i = 0; i < runsPerThread; ++i) {
                    const std::string id = std::to_string(t) + "-" + std::to_string(i);
                    // Some runs end by their limit while others finish normally.
                    const bool limited = i % 4 == 0;
                    const auto result =
                        Shell::run("echo " + id + "; echo e" + id + " >&2" + (limited ? "; sleep 10" : ""),
                                   limited ? 1 : 30);
                    const bool expected = result.standardOutput == id + "\n" &&
                                          result.standardError == "e" + id + "\n" &&
                                          (limited ? result.status != 0 : result.status == 0);
                    mismatches += expected ? 0 : 1;
                }
            });
        }
    }
    EXPECT_EQ(mismatches, 0);
    EXPECT_EQ(openDescriptorCount(), before);
}
