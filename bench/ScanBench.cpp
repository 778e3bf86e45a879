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

#include "BenchTiming.h"
#include "TreeWriter.h"
#include "removal/Shell.h"
#include "scanning/JunkScanner.h"

#include <cstdio>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr const char* kHomeVersion = "scan-home v1";
constexpr int64_t kGiB = int64_t{1} << 30;

class HomeBuilder {
public:
    explicit HomeBuilder(const std::string& root) : tree_(root, 0x5ca11, 8, 3000) {}

    int64_t build() {
        folders("");
        browserCaches();
        applicationCaches();
        packageCaches();
        projects();
        derivedData();
        personalFolders();
        largeFiles();
        return tree_.entries();
    }

private:
    void browserCaches() {
        // One browser cache folder of 20,000 files, as Chromium keeps them.
        const std::string chrome = "Library/Caches/Google/Chrome/Default";
        folders(chrome + "/Cache/Cache_Data");
        for (int i = 0; i < 20000; ++i)
            file(chrome + "/Cache/Cache_Data/" + hex(tree_.next(), 8) + hex(static_cast<uint32_t>(i), 8) +
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
                    file(folder + "/" + hex(tree_.next(), 8));
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
            file(".Trash/old-" + std::to_string(i) + ".txt");
    }

    void packageCaches() {
        folders("Library/Caches/Homebrew/downloads");
        for (int i = 0; i < 1500; ++i)
            file("Library/Caches/Homebrew/downloads/" + hex(tree_.next(), 8) + "--formula-" +
                 std::to_string(i) + ".bottle.tar.gz");
        for (int i = 0; i < 256; ++i) {
            const std::string folder = "Library/Caches/pip/http/" + hex(static_cast<uint32_t>(i), 2) + "/" +
                                       hex(tree_.next() % 256, 2);
            folders(folder);
            for (int f = 0; f < 30; ++f)
                file(folder + "/" + hex(tree_.next(), 8) + hex(tree_.next(), 8));
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
                    file(content + "/" + hex(tree_.next(), 8) + hex(tree_.next(), 8) + hex(tree_.next(), 8));
                if (b % 2 == 0) {
                    const std::string index = ".npm/_cacache/index-v5/" + hex(static_cast<uint32_t>(a), 2) +
                                              "/" + hex(static_cast<uint32_t>(b * 16), 2);
                    folders(index);
                    for (int f = 0; f < 10; ++f)
                        file(index + "/" + hex(tree_.next(), 8) + hex(tree_.next(), 8));
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
                                     hex(tree_.next(), 8) + hex(tree_.next(), 8);
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
                    file(records + "/Source" + std::to_string(f) + ".swift-" + hex(tree_.next(), 8));
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

    void folders(const std::string& relative) { tree_.folders(relative); }
    void file(const std::string& relative) { tree_.file(relative); }
    void bigFile(const std::string& relative, int64_t bytes) { tree_.bigFile(relative, bytes); }

    TreeWriter tree_;
};

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

    const BenchArguments arguments = parseBenchArguments(argc, argv);
    const std::string home =
        std::filesystem::absolute(arguments.dataFolder + "/scan-home").lexically_normal().string();
    const std::string temporary =
        std::filesystem::absolute(arguments.dataFolder + "/scan-tmp").lexically_normal().string();
    ensureTree(home, kHomeVersion, [&] { return HomeBuilder(home).build(); });
    std::error_code error;
    std::filesystem::create_directories(temporary, error);

    const std::string self = std::filesystem::read_symlink("/proc/self/exe", error).string();
    const std::vector<std::string> scanEnvironment{"HOME=" + home, "TMPDIR=" + temporary};
    const auto scan = [&] { return runChild({self, "--scan-child"}, scanEnvironment); };
    const auto du = [&] { return runChild({"du", "-sk", home}); };

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
    for (int run = 0; run < arguments.runs; ++run) {
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
    std::printf("ratio scan/du: median of runs %.3f, of medians %.3f (target <= 0.7)\n",
                median(ratios), scanMedian / duMedian);
    std::printf("ratio without the command probes: %.3f\n", (scanMedian - probes) / duMedian);
    std::printf("processor time (user + system), medians: scan %.3f s, du %.3f s, ratio %.3f\n",
                median(scanCpu), median(duCpu), median(scanCpu) / median(duCpu));
    std::printf("scan peak RSS: %.1f MB (target <= 64 MB)\n", static_cast<double>(peakKiB) / 1024);
    return 0;
}
