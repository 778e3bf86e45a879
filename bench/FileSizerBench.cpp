// Measures one large synthetic tree with FileSizer::allocatedSize and with
// `du -sk`, alternating the two, and prints the median times and their ratio.
//
//   veltro_bench_filesizer [data-folder] [--runs N]
//
// The tree is built once under the data folder (bench/data/ by default) and reused
// while its completion marker is there.

#include "BenchTiming.h"
#include "TreeWriter.h"
#include "scanning/FileSizer.h"

#include <cstdio>
#include <cstdlib>
#include <ftw.h>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr const char* kTreeVersion = "filesizer-tree v1: flat 20000, deep 200x25, packages 1600";

int64_t buildTree(const std::string& root) {
    TreeWriter tree(root, 0x5eed, 10, 2000);
    tree.folders("");
    for (int i = 0; i < 20000; ++i)
        tree.file("flat/item-" + std::to_string(i) + ".dat");
    for (int chain = 0; chain < 200; ++chain) {
        std::string path = "deep/chain-" + std::to_string(chain);
        for (int level = 0; level < 25; ++level) {
            tree.folders(path);
            for (int f = 0; f < 3; ++f)
                tree.file(path + "/f" + std::to_string(f) + ".log");
            path += "/level-" + std::to_string(level);
        }
    }
    for (int package = 0; package < 1600; ++package) {
        // Some packages sit in nested module folders, for a spread of depths.
        std::string base = "projects/p" + std::to_string(package % 40) + "/node_modules";
        if (package % 5 == 0)
            base += "/host-" + std::to_string(package) + "/node_modules";
        const std::string pkg = base + "/pkg-" + std::to_string(package);
        for (const char* name : {"package.json", "index.js", "README.md", "LICENSE"})
            tree.file(pkg + "/" + name);
        tree.symlink(pkg + "/main.js", "index.js");
        for (int f = 0; f < 60; ++f)
            tree.file(pkg + "/lib/m" + std::to_string(f) + ".js");
        for (int sub = 0; sub < 5; ++sub)
            for (int f = 0; f < 20; ++f)
                tree.file(pkg + "/lib/part" + std::to_string(sub) + "/c" + std::to_string(f) + ".js");
        tree.folders(pkg + "/empty");
    }
    return tree.entries();
}

int64_t referenceEntries = 0;
int64_t referenceBytes = 0;

int tally(const char*, const struct stat* st, int type, FTW* where) {
    if (where->level > 0)
        ++referenceEntries;
    if (type == FTW_F && S_ISREG(st->st_mode))
        referenceBytes += static_cast<int64_t>(st->st_blocks) * 512;
    return 0;
}

double timeFileSizer(const std::string& tree, int64_t& bytes, double& cpu) {
    const double cpuBefore = processCpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    bytes = FileSizer::allocatedSize(tree, [] { return false; });
    const double elapsed = seconds(std::chrono::steady_clock::now() - start);
    cpu = processCpuSeconds() - cpuBefore;
    return elapsed;
}

} // namespace

int main(int argc, char** argv) {
    const BenchArguments arguments = parseBenchArguments(argc, argv);
    const std::string tree = arguments.dataFolder + "/filesizer-tree";
    ensureTree(tree, kTreeVersion, [&] { return buildTree(tree); });

    if (::nftw(tree.c_str(), tally, 64, FTW_PHYS) != 0) {
        std::fprintf(stderr, "cannot walk %s\n", tree.c_str());
        return 1;
    }

    int64_t ours = 0;
    double cpu = 0;
    timeFileSizer(tree, ours, cpu); // warm-up, each side once
    ChildRun du = runChild({"du", "-sk", tree});
    std::vector<double> oursTimes;
    std::vector<double> duTimes;
    std::vector<double> ratios;
    std::vector<double> cpuRatios;
    for (int run = 0; du.seconds > 0 && run < arguments.runs; ++run) {
        const double a = timeFileSizer(tree, ours, cpu);
        du = runChild({"du", "-sk", tree});
        if (du.seconds <= 0)
            break;
        oursTimes.push_back(a);
        duTimes.push_back(du.seconds);
        ratios.push_back(a / du.seconds);
        cpuRatios.push_back(du.cpuSeconds > 0 ? cpu / du.cpuSeconds : 0);
        std::printf("run %d: FileSizer %.3f s (cpu %.3f s), du %.3f s (cpu %.3f s), ratio %.3f\n", run + 1, a,
                    cpu, du.seconds, du.cpuSeconds, a / du.seconds);
    }
    if (du.seconds <= 0) {
        std::fprintf(stderr, "du -sk failed\n");
        return 1;
    }
    const int64_t duKilobytes = std::strtoll(du.output.c_str(), nullptr, 10);

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
