// Measures one large synthetic tree with FileSizer::allocatedSize and with
// `du -sk`, alternating the two, and prints the median times and their ratio.
//
//   veltro_bench_filesizer [data-folder] [--runs N]
//
// The tree is built once under the data folder (bench/data/ by default) and reused
// while its completion marker is there.

#include "scanning/FileSizer.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <ftw.h>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

constexpr const char* kTreeVersion = "filesizer-tree v1: flat 20000, deep 200x25, packages 1600";

// A small deterministic generator, so every build of the tree is the same.
class Random {
public:
    uint32_t next() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<uint32_t>(state_ >> 33);
    }
    uint32_t below(uint32_t n) { return next() % n; }

private:
    uint64_t state_ = 0x5eed;
};

class TreeBuilder {
public:
    explicit TreeBuilder(std::string root) : root_(std::move(root)), data_(70000, 'b') {}

    void build() {
        folder("");
        folder("flat");
        for (int i = 0; i < 20000; ++i)
            file("flat/item-" + std::to_string(i) + ".dat");

        folder("deep");
        for (int chain = 0; chain < 200; ++chain) {
            std::string path = "deep/chain-" + std::to_string(chain);
            for (int level = 0; level < 25; ++level) {
                folder(path);
                for (int f = 0; f < 3; ++f)
                    file(path + "/f" + std::to_string(f) + ".log");
                path += "/level-" + std::to_string(level);
            }
        }

        folder("projects");
        for (int project = 0; project < 40; ++project) {
            const std::string base = "projects/p" + std::to_string(project);
            folder(base);
            folder(base + "/node_modules");
        }
        for (int package = 0; package < 1600; ++package) {
            // Some packages sit in nested module folders, for a spread of depths.
            std::string base = "projects/p" + std::to_string(package % 40) + "/node_modules";
            if (package % 5 == 0) {
                base += "/host-" + std::to_string(package) + "/node_modules";
                folder("projects/p" + std::to_string(package % 40) + "/node_modules/host-" +
                       std::to_string(package));
                folder(base);
            }
            const std::string pkg = base + "/pkg-" + std::to_string(package);
            folder(pkg);
            for (const char* name : {"package.json", "index.js", "README.md", "LICENSE"})
                file(pkg + "/" + name);
            symlink(pkg + "/main.js", "index.js");
            folder(pkg + "/lib");
            for (int f = 0; f < 60; ++f)
                file(pkg + "/lib/m" + std::to_string(f) + ".js");
            for (int sub = 0; sub < 5; ++sub) {
                const std::string subFolder = pkg + "/lib/part" + std::to_string(sub);
                folder(subFolder);
                for (int f = 0; f < 20; ++f)
                    file(subFolder + "/c" + std::to_string(f) + ".js");
            }
            folder(pkg + "/empty");
        }
    }

    int64_t entries() const { return entries_; }

private:
    std::string full(const std::string& relative) const {
        return relative.empty() ? root_ : root_ + "/" + relative;
    }

    void folder(const std::string& relative) {
        if (::mkdir(full(relative).c_str(), 0755) != 0 && errno != EEXIST)
            fail("mkdir", relative);
        if (!relative.empty())
            ++entries_;
    }

    void file(const std::string& relative) {
        const int fd = ::open(full(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0)
            fail("open", relative);
        const uint32_t pick = random_.below(100);
        const size_t bytes = pick < 10 ? 0 : pick < 99 ? random_.below(2000) + 1 : data_.size();
        if (bytes > 0 && ::write(fd, data_.data(), bytes) != static_cast<ssize_t>(bytes))
            fail("write", relative);
        ::close(fd);
        ++entries_;
    }

    void symlink(const std::string& relative, const std::string& target) {
        if (::symlink(target.c_str(), full(relative).c_str()) != 0)
            fail("symlink", relative);
        ++entries_;
    }

    [[noreturn]] void fail(const char* what, const std::string& relative) const {
        std::fprintf(stderr, "%s %s: %s\n", what, full(relative).c_str(), std::strerror(errno));
        std::exit(1);
    }

    std::string root_;
    std::string data_;
    Random random_;
    int64_t entries_ = 0;
};

int64_t referenceEntries = 0;
int64_t referenceBytes = 0;

int tally(const char*, const struct stat* st, int type, FTW* where) {
    if (where->level > 0)
        ++referenceEntries;
    if (type == FTW_F && S_ISREG(st->st_mode))
        referenceBytes += static_cast<int64_t>(st->st_blocks) * 512;
    return 0;
}

double seconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

// User plus system time of this process (`who` RUSAGE_SELF) or of its waited-for
// children (RUSAGE_CHILDREN), in seconds.
double cpuSeconds(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    const auto toSeconds = [](const timeval& t) { return static_cast<double>(t.tv_sec) + t.tv_usec / 1e6; };
    return toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
}

double timeFileSizer(const std::string& tree, int64_t& bytes, double& cpu) {
    const double cpuBefore = cpuSeconds(RUSAGE_SELF);
    const auto start = std::chrono::steady_clock::now();
    bytes = FileSizer::allocatedSize(tree, [] { return false; });
    const double elapsed = seconds(std::chrono::steady_clock::now() - start);
    cpu = cpuSeconds(RUSAGE_SELF) - cpuBefore;
    return elapsed;
}

// Runs `du -sk <tree>` as a child process; returns its time, or a negative value.
double timeDu(const std::string& tree, int64_t& kilobytes, double& cpu) {
    const double cpuBefore = cpuSeconds(RUSAGE_CHILDREN);
    int channel[2];
    if (::pipe(channel) != 0)
        return -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, channel[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, channel[0]);
    std::string program = "du";
    std::string option = "-sk";
    std::string path = tree;
    char* argv[] = {program.data(), option.data(), path.data(), nullptr};

    const auto start = std::chrono::steady_clock::now();
    pid_t child = -1;
    const int spawned = posix_spawnp(&child, "du", &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(channel[1]);
    std::string output;
    char buffer[256];
    ssize_t n = 0;
    while (spawned == 0 && (n = ::read(channel[0], buffer, sizeof buffer)) > 0)
        output.append(buffer, static_cast<size_t>(n));
    ::close(channel[0]);
    int status = 0;
    if (spawned != 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) != 0)
        return -1;
    const double elapsed = seconds(std::chrono::steady_clock::now() - start);
    cpu = cpuSeconds(RUSAGE_CHILDREN) - cpuBefore;
    kilobytes = std::strtoll(output.c_str(), nullptr, 10);
    return elapsed;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string withSeparators(int64_t value) {
    std::string digits = std::to_string(value);
    for (int i = static_cast<int>(digits.size()) - 3; i > 0; i -= 3)
        digits.insert(static_cast<size_t>(i), ",");
    return digits;
}

} // namespace

int main(int argc, char** argv) {
    std::string dataFolder = VELTRO_BENCH_DATA_DIR;
    int runs = 5;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--runs" && i + 1 < argc)
            runs = std::max(1, std::atoi(argv[++i]));
        else if (argument == "-h" || argument == "--help") {
            std::printf("usage: %s [data-folder] [--runs N]\n", argv[0]);
            return 0;
        } else
            dataFolder = argument;
    }

    std::error_code error;
    std::filesystem::create_directories(dataFolder, error);
    const std::string tree = dataFolder + "/filesizer-tree";
    const std::string marker = tree + ".complete";
    std::string recorded;
    if (std::ifstream in(marker); in)
        std::getline(in, recorded);
    if (recorded != kTreeVersion) {
        std::printf("building %s ...\n", tree.c_str());
        std::fflush(stdout);
        std::filesystem::remove(marker, error);
        std::filesystem::remove_all(tree, error);
        const auto start = std::chrono::steady_clock::now();
        TreeBuilder builder(tree);
        builder.build();
        ::sync();
        std::ofstream(marker) << kTreeVersion << "\n";
        std::printf("built %s entries in %.1f s\n", withSeparators(builder.entries()).c_str(),
                    seconds(std::chrono::steady_clock::now() - start));
    }

    if (::nftw(tree.c_str(), tally, 64, FTW_PHYS) != 0) {
        std::fprintf(stderr, "cannot walk %s\n", tree.c_str());
        return 1;
    }

    int64_t ours = 0;
    int64_t duKilobytes = 0;
    double cpu = 0;
    timeFileSizer(tree, ours, cpu); // warm-up, each side once
    if (timeDu(tree, duKilobytes, cpu) < 0) {
        std::fprintf(stderr, "du -sk failed\n");
        return 1;
    }
    std::vector<double> oursTimes;
    std::vector<double> duTimes;
    std::vector<double> ratios;
    std::vector<double> cpuRatios;
    for (int run = 0; run < runs; ++run) {
        double oursCpu = 0;
        double duCpu = 0;
        const double a = timeFileSizer(tree, ours, oursCpu);
        const double b = timeDu(tree, duKilobytes, duCpu);
        if (b <= 0) {
            std::fprintf(stderr, "du -sk failed\n");
            return 1;
        }
        oursTimes.push_back(a);
        duTimes.push_back(b);
        ratios.push_back(a / b);
        cpuRatios.push_back(duCpu > 0 ? oursCpu / duCpu : 0);
        std::printf("run %d: FileSizer %.3f s (cpu %.3f s), du %.3f s (cpu %.3f s), ratio %.3f\n", run + 1, a,
                    oursCpu, b, duCpu, a / b);
    }

    const double oursMedian = median(oursTimes);
    const double duMedian = median(duTimes);
    const double entries = static_cast<double>(referenceEntries);
    std::printf("tree: %s\n", tree.c_str());
    std::printf("entries: %s; regular-file allocation %s bytes (nftw), FileSizer %s bytes%s; du -sk %s KiB\n",
                withSeparators(referenceEntries).c_str(), withSeparators(referenceBytes).c_str(),
                withSeparators(ours).c_str(), ours == referenceBytes ? " (equal)" : " (DIFFERENT)",
                withSeparators(duKilobytes).c_str());
    std::printf("FileSizer::allocatedSize  median %.3f s  %s entries/s\n", oursMedian,
                withSeparators(static_cast<int64_t>(entries / oursMedian)).c_str());
    std::printf("du -sk                    median %.3f s  %s entries/s\n", duMedian,
                withSeparators(static_cast<int64_t>(entries / duMedian)).c_str());
    std::printf("ratio FileSizer/du: median of runs %.3f, of medians %.3f (target <= 0.95, aim 0.85)\n",
                median(ratios), oursMedian / duMedian);
    std::printf("cpu-time ratio FileSizer/du: median of runs %.3f\n", median(cpuRatios));
    return ours == referenceBytes ? 0 : 2;
}
