#include "BenchTiming.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

double toSeconds(const timeval& t) {
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

} // namespace

BenchArguments parseBenchArguments(int argc, char** argv) {
    BenchArguments arguments{VELTRO_BENCH_DATA_DIR};
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--runs" && i + 1 < argc) {
            arguments.runs = std::max(1, std::atoi(argv[++i]));
        } else if (argument == "-h" || argument == "--help") {
            std::printf("usage: %s [data-folder] [--runs N]\n", argv[0]);
            std::exit(0);
        } else {
            arguments.dataFolder = argument;
        }
    }
    std::error_code error;
    std::filesystem::create_directories(arguments.dataFolder, error);
    return arguments;
}

void ensureTree(const std::string& path, const std::string& version, const std::function<int64_t()>& build) {
    const std::string marker = path + ".complete";
    std::string recorded;
    if (std::ifstream in(marker); in)
        std::getline(in, recorded);
    if (recorded == version)
        return;
    std::printf("building %s ...\n", path.c_str());
    std::fflush(stdout);
    std::error_code error;
    std::filesystem::remove(marker, error);
    std::filesystem::remove_all(path, error);
    const auto start = std::chrono::steady_clock::now();
    const int64_t entries = build();
    ::sync();
    std::ofstream(marker) << version << "\n";
    std::printf("built %s entries in %.1f s\n", withSeparators(entries).c_str(),
                seconds(std::chrono::steady_clock::now() - start));
}

ChildRun runChild(std::vector<std::string> arguments, const std::vector<std::string>& extraEnvironment) {
    ChildRun run;
    int channel[2];
    if (::pipe(channel) != 0)
        return run;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, channel[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, channel[0]);
    std::vector<char*> argv;
    for (std::string& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::vector<std::string> environment = extraEnvironment;
    for (char** variable = environ; *variable; ++variable) {
        const std::string entry = *variable;
        const std::string name = entry.substr(0, entry.find('='));
        if (std::none_of(extraEnvironment.begin(), extraEnvironment.end(),
                         [&](const std::string& extra) { return extra.starts_with(name + "="); }))
            environment.push_back(entry);
    }
    std::vector<char*> envp;
    for (std::string& entry : environment)
        envp.push_back(entry.data());
    envp.push_back(nullptr);

    const auto start = std::chrono::steady_clock::now();
    pid_t child = -1;
    const int spawned = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(channel[1]);
    char buffer[4096];
    ssize_t n = 0;
    while (spawned == 0 && (n = ::read(channel[0], buffer, sizeof buffer)) > 0)
        run.output.append(buffer, static_cast<size_t>(n));
    ::close(channel[0]);
    int status = 0;
    struct rusage usage {};
    if (spawned != 0 || ::wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0)
        return run;
    run.seconds = seconds(std::chrono::steady_clock::now() - start);
    run.maxRssKiB = usage.ru_maxrss;
    run.cpuSeconds = toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
    return run;
}

double processCpuSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
}

double seconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string withSeparators(int64_t value) {
    const std::string digits = std::to_string(value);
    std::string text;
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && digits[i - 1] != '-' && (digits.size() - i) % 3 == 0)
            text += ',';
        text += digits[i];
    }
    return text;
}
