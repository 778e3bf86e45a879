// Times a whole JunkScanner::scan of a large synthetic home folder against
// `du -sk` of the same folder, alternating the two, and prints the median ratio and
// the scan's peak memory.
//
//   veltro_bench_scan [data-folder] [--runs N]
//
// The home (about 330,000 entries laid out with the catalogue's folder names) is
// built once under the data folder (bench/data/ by default) and reused while its
// completion marker is there. Each scan runs in a child process of this program
// with HOME pointing at the synthetic home, so the home is read fresh and the
// child's resource usage is the scan's own.

#include "removal/Shell.h"
#include "scanning/JunkScanner.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

constexpr const char* kHomeVersion = "scan-home v1";
constexpr int64_t kGiB = int64_t{1} << 30;

class Random {
public:
    uint32_t next() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<uint32_t>(state_ >> 33);
    }
    uint32_t below(uint32_t n) { return next() % n; }

private:
    uint64_t state_ = 0x5ca11;
};

std::string hex(uint32_t value, int digits) {
    static constexpr char letters[] = "0123456789abcdef";
    std::string out(static_cast<size_t>(digits), '0');
    for (int i = digits - 1; i >= 0; --i, value >>= 4)
        out[static_cast<size_t>(i)] = letters[value & 15];
    return out;
}

class HomeBuilder {
public:
    explicit HomeBuilder(std::string root) : root_(std::move(root)), data_(70000, 'h') {}

    void build() {
        folders("");
        browserCaches();
        applicationCaches();
        packageCaches();
        projects();
        derivedData();
        personalFolders();
        largeFiles();
    }

    int64_t entries() const { return entries_; }

private:
    void browserCaches() {
        // One browser cache folder of 20,000 files, as Chromium keeps them.
        const std::string chrome = "Library/Caches/Google/Chrome/Default";
        folders(chrome + "/Cache/Cache_Data");
        for (int i = 0; i < 20000; ++i)
            file(chrome + "/Cache/Cache_Data/" + hex(random_.next(), 8) + hex(static_cast<uint32_t>(i), 8) +
                 "_0");
        folders(chrome + "/Code Cache/js");
        for (int i = 0; i < 3000; ++i)
            file(chrome + "/Code Cache/js/" + hex(static_cast<uint32_t>(i) * 2654435761u, 8) + "_0");
        folders("Library/Application Support/Google/Chrome/Default/GPUCache");
        for (int i = 0; i < 200; ++i)
            file("Library/Application Support/Google/Chrome/Default/GPUCache/data_" + std::to_string(i));
    }

    void applicationCaches() {
        for (int app = 0; app < 80; ++app) {
            const std::string base = "Library/Caches/com.vendor.app" + std::to_string(app);
            for (int sub = 0; sub < 10; ++sub) {
                const std::string folder = base + "/fsCachedData" + std::to_string(sub);
                folders(folder);
                for (int i = 0; i < 25; ++i)
                    file(folder + "/" + hex(random_.next(), 8));
            }
        }
        folders("Library/Logs/DiagnosticReports");
        for (int i = 0; i < 300; ++i)
            file("Library/Logs/DiagnosticReports/App-" + std::to_string(i) + ".ips");
        for (int i = 0; i < 200; ++i)
            file("Library/Logs/tool-" + std::to_string(i) + ".log");
        for (int i = 0; i < 100; ++i) {
            const std::string state =
                "Library/Saved Application State/com.vendor.app" + std::to_string(i) + ".savedState";
            folders(state);
            for (const char* name : {"data.data", "windows.plist", "restorecount.plist"})
                file(state + "/" + name);
        }
        for (int i = 0; i < 500; ++i)
            file(".Trash/old-" + std::to_string(i) + ".txt", i == 0);
    }

    void packageCaches() {
        folders("Library/Caches/Homebrew/downloads");
        for (int i = 0; i < 1500; ++i)
            file("Library/Caches/Homebrew/downloads/" + hex(random_.next(), 8) + "--formula-" +
                 std::to_string(i) + ".bottle.tar.gz");
        for (int i = 0; i < 256; ++i) {
            const std::string folder = "Library/Caches/pip/http/" + hex(static_cast<uint32_t>(i), 2) + "/" +
                                       hex(random_.below(256), 2);
            folders(folder);
            for (int f = 0; f < 30; ++f)
                file(folder + "/" + hex(random_.next(), 8) + hex(random_.next(), 8));
        }
        for (int i = 0; i < 300; ++i) {
            const std::string package = "Library/Caches/Yarn/v6/npm-package-" + std::to_string(i) + "-1.0.0";
            folders(package + "/node_modules/package-" + std::to_string(i));
            for (int f = 0; f < 11; ++f)
                file(package + "/node_modules/package-" + std::to_string(i) + "/f" + std::to_string(f) +
                     ".js");
        }
        // npm's content-addressed cache: two levels of hash folders.
        for (int a = 0; a < 256; ++a) {
            for (int b = 0; b < 16; ++b) {
                const std::string content = ".npm/_cacache/content-v2/sha512/" +
                                            hex(static_cast<uint32_t>(a), 2) + "/" +
                                            hex(static_cast<uint32_t>(b * 16), 2);
                folders(content);
                for (int f = 0; f < 10; ++f)
                    file(content + "/" + hex(random_.next(), 8) + hex(random_.next(), 8) +
                         hex(random_.next(), 8));
                if (b % 2 == 0) {
                    const std::string index = ".npm/_cacache/index-v5/" + hex(static_cast<uint32_t>(a), 2) +
                                              "/" + hex(static_cast<uint32_t>(b * 16), 2);
                    folders(index);
                    for (int f = 0; f < 10; ++f)
                        file(index + "/" + hex(random_.next(), 8) + hex(random_.next(), 8));
                }
            }
        }
        folders(".cache/huggingface/hub");
        for (int i = 0; i < 2000; ++i)
            file(".cache/huggingface/hub/blob-" + std::to_string(i));
    }

    void projects() {
        // Project trees with their node_modules: nobody's junk, walked only by the
        // large-file search.
        for (int project = 0; project < 25; ++project) {
            const std::string base = "Projects/project-" + std::to_string(project);
            folders(base + "/src");
            for (int f = 0; f < 100; ++f)
                file(base + "/src/module" + std::to_string(f) + ".ts");
            for (int package = 0; package < 300; ++package) {
                const std::string pkg = base + "/node_modules/pkg-" + std::to_string(package);
                folders(pkg + "/lib");
                folders(pkg + "/dist");
                for (const char* name : {"package.json", "README.md", "LICENSE", "index.js"})
                    file(pkg + "/" + name);
                for (int f = 0; f < 10; ++f)
                    file(pkg + "/lib/part" + std::to_string(f) + ".js");
                for (int f = 0; f < 4; ++f)
                    file(pkg + "/dist/bundle" + std::to_string(f) + ".js");
            }
        }
    }

    void derivedData() {
        for (int app = 0; app < 6; ++app) {
            const std::string base = "Library/Developer/Xcode/DerivedData/App" + std::to_string(app) + "-" +
                                     hex(random_.next(), 8) + hex(random_.next(), 8);
            for (int target = 0; target < 20; ++target) {
                const std::string objects = base + "/Build/Intermediates.noindex/App.build/Debug/Target" +
                                            std::to_string(target) + ".build/Objects-normal/arm64";
                folders(objects);
                for (int f = 0; f < 200; ++f)
                    file(objects + "/Source" + std::to_string(f) + ".o");
            }
            for (int shard = 0; shard < 20; ++shard) {
                const std::string records =
                    base + "/Index.noindex/DataStore/v5/records/" + hex(static_cast<uint32_t>(shard), 2);
                folders(records);
                for (int f = 0; f < 100; ++f)
                    file(records + "/Source" + std::to_string(f) + ".swift-" + hex(random_.next(), 8));
            }
        }
    }

    void personalFolders() {
        for (int i = 0; i < 400; ++i)
            file("Downloads/download-" + std::to_string(i) + ".pdf");
        for (int folder = 0; folder < 100; ++folder) {
            const std::string base = "Documents/folder-" + std::to_string(folder);
            folders(base);
            for (int f = 0; f < 50; ++f)
                file(base + "/document-" + std::to_string(f) + ".txt");
        }
    }

    void largeFiles() {
        bigFile("Downloads/installer.iso", kGiB + kGiB / 2);
        bigFile("Movies/recording.mov", 2 * kGiB);
        bigFile("VMs/Linux.vmdk", kGiB + kGiB / 5);
        bigFile("Library/Developer/Xcode/DerivedData/huge-cache.bin", kGiB + kGiB / 10);
    }

    std::string full(const std::string& relative) const {
        return relative.empty() ? root_ : root_ + "/" + relative;
    }

    // mkdir -p, counting what it makes.
    void folders(const std::string& relative) {
        if (relative.empty()) {
            if (::mkdir(root_.c_str(), 0755) != 0 && errno != EEXIST)
                fail("mkdir", relative);
            return;
        }
        for (size_t slash = relative.find('/');; slash = relative.find('/', slash + 1)) {
            const std::string part = relative.substr(0, slash);
            if (::mkdir(full(part).c_str(), 0755) == 0)
                ++entries_;
            else if (errno != EEXIST)
                fail("mkdir", part);
            if (slash == std::string::npos)
                break;
        }
    }

    void file(const std::string& relative, bool makeParents = false) {
        if (makeParents && relative.find('/') != std::string::npos)
            folders(relative.substr(0, relative.rfind('/')));
        int fd = ::open(full(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0 && errno == ENOENT) {
            folders(relative.substr(0, relative.rfind('/')));
            fd = ::open(full(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        }
        if (fd < 0)
            fail("open", relative);
        const uint32_t pick = random_.below(100);
        const size_t bytes = pick < 8 ? 0 : pick < 99 ? random_.below(3000) + 1 : data_.size();
        if (bytes > 0 && ::write(fd, data_.data(), bytes) != static_cast<ssize_t>(bytes))
            fail("write", relative);
        ::close(fd);
        ++entries_;
    }

    void bigFile(const std::string& relative, int64_t bytes) {
        folders(relative.substr(0, relative.rfind('/')));
        const int fd = ::open(full(relative).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0 || ::posix_fallocate(fd, 0, bytes) != 0)
            fail("fallocate", relative);
        ::close(fd);
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

double seconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
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

struct ChildRun {
    double seconds = -1;
    double cpuSeconds = 0; // user + system time of the child
    long maxRssKiB = 0;
    std::string output;
};

// Runs a program with extra environment variables, collecting its standard output,
// its wall time and its own peak resident size.
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
    run.cpuSeconds = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                     static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
    return run;
}

// The child side: one scan of $HOME, printing what it found and how long the
// collection phase took.
int scanChild() {
    const auto start = std::chrono::steady_clock::now();
    double collection = -1;
    double largeSearch = -1;
    std::chrono::steady_clock::time_point largeStart;
    const std::vector<ScanItem> items =
        JunkScanner::scan(ScanOptions{kGiB, {}, false}, [&](const ScanEvent& event) {
            const auto now = std::chrono::steady_clock::now();
            if (const auto* started = std::get_if<ScanEvent::CategoryStarted>(&event.value)) {
                if (started->step == 1)
                    collection = seconds(now - start);
                if (started->id == "large.files")
                    largeStart = now;
            } else if (const auto* finished = std::get_if<ScanEvent::CategoryFinished>(&event.value)) {
                if (finished->id == "large.files")
                    largeSearch = seconds(now - largeStart);
            }
        });
    std::map<std::string, std::pair<int, int64_t>> perCategory;
    int64_t total = 0;
    for (const ScanItem& item : items) {
        auto& [count, bytes] = perCategory[item.categoryID];
        ++count;
        bytes += item.size.value_or(0);
        total += item.size.value_or(0);
    }
    std::printf("items %zu bytes %lld collection %.3f large %.3f\n", items.size(),
                static_cast<long long>(total), collection, largeSearch);
    for (const auto& [id, figures] : perCategory)
        std::printf("  %-18s %6d items %15s bytes\n", id.c_str(), figures.first,
                    withSeparators(figures.second).c_str());
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc >= 2 && std::string(argv[1]) == "--scan-child")
        return scanChild();

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
    const std::string home = std::filesystem::absolute(dataFolder + "/scan-home").lexically_normal().string();
    const std::string temporary =
        std::filesystem::absolute(dataFolder + "/scan-tmp").lexically_normal().string();
    const std::string marker = home + ".complete";
    std::string recorded;
    if (std::ifstream in(marker); in)
        std::getline(in, recorded);
    if (recorded != kHomeVersion) {
        std::printf("building %s ...\n", home.c_str());
        std::fflush(stdout);
        std::filesystem::remove(marker, error);
        std::filesystem::remove_all(home, error);
        const auto start = std::chrono::steady_clock::now();
        HomeBuilder builder(home);
        builder.build();
        ::sync();
        std::ofstream(marker) << kHomeVersion << "\n";
        std::printf("built %s entries in %.1f s\n", withSeparators(builder.entries()).c_str(),
                    seconds(std::chrono::steady_clock::now() - start));
    }
    std::filesystem::create_directories(temporary, error);

    const std::string self = std::filesystem::read_symlink("/proc/self/exe", error).string();
    const std::vector<std::string> scanEnvironment{"HOME=" + home, "TMPDIR=" + temporary};
    const auto scan = [&] { return runChild({self, "--scan-child"}, scanEnvironment); };
    const auto du = [&] { return runChild({"du", "-sk", home}, {}); };

    // What the command probes cost on this machine, whatever the home holds.
    const auto probeStart = std::chrono::steady_clock::now();
    for (const char* tool : {"xcrun", "brew", "docker", "tmutil"})
        Shell::run(std::string("command -v ") + tool, 10);
    if (Shell::run("command -v docker", 10).status == 0)
        Shell::run(
            "docker system df --format '{{.Type}}|{{.Reclaimable}}' 2>/dev/null | grep 'Build Cache' | "
            "cut -d'|' -f2 | grep -v '^0B'",
            30);
    const double probes = seconds(std::chrono::steady_clock::now() - probeStart);

    const ChildRun warmScan = scan();
    const ChildRun warmDu = du();
    if (warmScan.seconds < 0 || warmDu.seconds < 0) {
        std::fprintf(stderr, "the scan or du failed\n");
        return 1;
    }
    std::printf("%s", warmScan.output.c_str());
    std::printf("du -sk: %s", warmDu.output.c_str());

    std::vector<double> scanTimes, duTimes, ratios, scanCpu, duCpu;
    long peakKiB = warmScan.maxRssKiB;
    for (int run = 0; run < runs; ++run) {
        const ChildRun a = scan();
        const ChildRun b = du();
        if (a.seconds < 0 || b.seconds <= 0) {
            std::fprintf(stderr, "the scan or du failed\n");
            return 1;
        }
        scanTimes.push_back(a.seconds);
        duTimes.push_back(b.seconds);
        ratios.push_back(a.seconds / b.seconds);
        scanCpu.push_back(a.cpuSeconds);
        duCpu.push_back(b.cpuSeconds);
        peakKiB = std::max(peakKiB, a.maxRssKiB);
        std::printf(
            "run %d: scan %.3f s (cpu %.3f s; %s), du %.3f s (cpu %.3f s), ratio %.3f, peak RSS %.1f MB\n",
            run + 1, a.seconds, a.cpuSeconds, a.output.substr(0, a.output.find('\n')).c_str(), b.seconds,
            b.cpuSeconds, a.seconds / b.seconds, static_cast<double>(a.maxRssKiB) / 1024);
    }
    const double scanMedian = median(scanTimes);
    const double duMedian = median(duTimes);
    std::printf("home: %s\n", home.c_str());
    std::printf("scan median %.3f s, du -sk median %.3f s\n", scanMedian, duMedian);
    std::printf("command probes on this machine: %.3f s (part of every scan)\n", probes);
    std::printf("ratio scan/du: median of runs %.3f, of medians %.3f (target <= 1.2, aim 0.8)\n",
                median(ratios), scanMedian / duMedian);
    std::printf("ratio without the command probes: %.3f\n", (scanMedian - probes) / duMedian);
    std::printf("processor time (user + system), medians: scan %.3f s, du %.3f s, ratio %.3f\n",
                median(scanCpu), median(duCpu), median(scanCpu) / median(duCpu));
    std::printf("scan peak RSS: %.1f MB (target <= 64 MB)\n", static_cast<double>(peakKiB) / 1024);
    return 0;
}
