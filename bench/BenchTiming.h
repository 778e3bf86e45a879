#pragma once
// What both benchmarks share: their command line, the synthetic tree built once and
// reused, timed child processes (the reference tool, or a scan in a fresh process),
// and the figures they print.

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct BenchArguments {
    std::string dataFolder; // where the synthetic tree lives
    int runs = 5;
};

// `[data-folder] [--runs N]`; prints the usage and exits for -h / --help.
BenchArguments parseBenchArguments(int argc, char** argv);

// Builds the tree at `path` with `build` unless the marker beside it records
// `version`; a tree of another version is removed first.
void ensureTree(const std::string& path, const std::string& version, const std::function<int64_t()>& build);

struct ChildRun {
    double seconds = -1;   // wall time; negative when the child failed
    double cpuSeconds = 0; // user + system time of the child
    long maxRssKiB = 0;
    std::string output;
};

// Runs a program (searched on PATH) with extra environment variables, collecting
// its standard output, its wall and processor time and its own peak resident size.
ChildRun runChild(std::vector<std::string> arguments, const std::vector<std::string>& extraEnvironment = {});

// User plus system time of this process so far.
double processCpuSeconds();

double seconds(std::chrono::steady_clock::duration duration);
double median(std::vector<double> values);
std::string withSeparators(int64_t value);
