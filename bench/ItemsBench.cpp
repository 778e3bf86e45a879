// How the cost of a scan grows with the number of items it finds. Homes of 10,000,
// 50,000, 100,000 and 200,000 old downloads (one category) and one of 20,000 items
// over five categories: each is scanned by the whole `veltro scan --json` process,
// alternated with `du -sk` of the same home, for the ratio, the peak memory and the
// growth of the time at each doubling of the items. Then the real model and the
// category table's proxy, offscreen, on the 100,000-item home: filling the table,
// sorting by each column, one filter keystroke, Select All and applying the result
// of a clean of all 100,000 items.
//
//   veltro_bench_items [data-folder] [--runs N] [--veltro PATH]
//
// The homes are built once under the data folder (bench/data/ by default) and reused
// while their completion markers are there; the one the clean empties is rebuilt for
// every run. The model runs in a child process of this program with HOME pointing
// at that home, like the scans.

#include "BenchTiming.h"
#include "TreeWriter.h"
#include "model/AppModel.h"

#include <QElapsedTimer>
#include <QGuiApplication>

#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

constexpr const char* kHomeVersion = "items-home v1";
constexpr int64_t kDay = 86'400;
constexpr int kWindowItems = 100'000;

struct Home {
    std::string name;
    int items = 0;
    bool mixed = false;
};

const std::vector<Home> homes{{"items-10000", 10'000, false},
                              {"items-50000", 50'000, false},
                              {"items-100000", 100'000, false},
                              {"items-200000", 200'000, false},
                              {"items-mixed-20000", 20'000, true}};

void makeOld(const std::string& path) {
    const timespec old{static_cast<time_t>(std::time(nullptr) - 200 * kDay), 0};
    const timespec times[2]{old, old};
    ::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

// `count` old downloads; with `mixed`, a fifth of the items in each of five categories.
int64_t buildHome(const std::string& root, int count, bool mixed) {
    TreeWriter tree(root, 0x17e35, 0, 3000);
    tree.folders("");
    tree.folders("Downloads");
    const int downloads = mixed ? count / 5 : count;
    for (int i = 0; i < downloads; ++i) {
        const std::string name = "Downloads/download-" + std::to_string(i) + ".pdf";
        tree.file(name);
        makeOld(root + "/" + name);
    }
    if (mixed) {
        for (int i = 0; i < count / 5; ++i) {
            const std::string n = std::to_string(i);
            tree.file("Library/Caches/com.vendor.app" + n + "/cache.db");
            tree.file("Library/Logs/tool-" + n + ".log");
            tree.file("Library/Saved Application State/com.vendor.app" + n + ".savedState/windows.plist");
            tree.file(".Trash/old-" + n + ".txt");
        }
    }
    return tree.entries();
}

// Reads what the window's views read whenever the model tells them something
// changed, so that the figures include the views' share of every step.
class ViewReader : public QObject {
public:
    explicit ViewReader(AppModel& model) : model_(model) {
        connect(&model, &AppModel::resultsChanged, this, [this] {
            model_.ranking();
            model_.largestItems();
            model_.cleanPlan();
        });
        connect(&model, &AppModel::totalsChanged, this, [this] {
            model_.selectedTotal();
            model_.foundTotal();
            model_.selectionCount();
        });
        QAbstractItemModel* sidebar = model.categoryList();
        connect(sidebar, &QAbstractItemModel::dataChanged, this, [sidebar] {
            const QHash<int, QByteArray> roles = sidebar->roleNames();
            for (int row = 0; row < sidebar->rowCount(); ++row)
                for (auto role = roles.keyBegin(); role != roles.keyEnd(); ++role)
                    sidebar->index(row, 0).data(*role);
        });
    }

    // The rows a table of 900 pixels shows.
    void readVisibleRows() const {
        CategoryItemsProxy& table = *model_.categoryTable();
        const QHash<int, QByteArray> roles = table.roleNames();
        for (int row = 0; row < std::min(table.rowCount(), 30); ++row)
            for (auto role = roles.keyBegin(); role != roles.keyEnd(); ++role)
                table.index(row, 0).data(*role);
    }

private:
    AppModel& model_;
};

// Times the queued call during which `mark()` is called: the main thread's share of
// a clean (applying its result), told apart from the clean's own work.
class TimedApplication : public QGuiApplication {
public:
    using QGuiApplication::QGuiApplication;
    bool notify(QObject* receiver, QEvent* event) override {
        if (event->type() != QEvent::MetaCall)
            return QGuiApplication::notify(receiver, event);
        QElapsedTimer timer;
        timer.start();
        const bool handled = QGuiApplication::notify(receiver, event);
        if (marked_ && markedSeconds < 0)
            markedSeconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        return handled;
    }
    void mark() { marked_ = true; }
    double markedSeconds = -1;

private:
    bool marked_ = false;
};

bool waitUntil(const std::function<bool()>& done) {
    QElapsedTimer timer;
    timer.start();
    while (!done()) {
        if (timer.elapsed() > 600'000)
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 50);
    }
    return true;
}

// The child side of the model figures: prints one line of "name seconds" pairs.
int windowChild(int argc, char** argv) {
    TimedApplication application(argc, argv);
    AppModel model;
    ViewReader views(model);
    std::vector<std::pair<std::string, double>> figures;
    QElapsedTimer timer;
    const auto time = [&](const std::string& name, const std::function<void()>& step) {
        timer.start();
        step();
        views.readVisibleRows();
        figures.emplace_back(name, static_cast<double>(timer.nsecsElapsed()) / 1e9);
    };

    time("scan", [&] {
        model.scan();
        waitUntil([&] { return model.phase() == AppModel::Phase::ready; });
    });
    if (model.itemCountOf("user.downloads") != kWindowItems) {
        std::fprintf(stderr, "the scan found %d items\n", model.itemCountOf("user.downloads"));
        return 1;
    }
    CategoryItemsProxy& table = *model.categoryTable();
    time("fill", [&] { model.categoryItems()->setCategoryId("user.downloads"); });
    time("sort name", [&] { table.sortBy(CategoryItemsProxy::SortKey::name); });
    time("sort size", [&] { table.sortBy(CategoryItemsProxy::SortKey::size); });
    time("sort date", [&] { table.sortBy(CategoryItemsProxy::SortKey::date); });
    time("filter keystroke", [&] { table.setFilterText("7"); });
    time("filter cleared", [&] { table.setFilterText(""); });
    time("select all", [&] { model.setAll("user.downloads", true); });

    QObject::connect(&model, &AppModel::showResultChanged, [&] { application.mark(); });
    time("clean", [&] {
        model.requestClean("user.downloads");
        model.clean();
        waitUntil([&] { return model.phase() == AppModel::Phase::ready; });
    });
    figures.emplace_back("clean result", application.markedSeconds);
    if (model.itemCountOf("user.downloads") != 0) {
        std::fprintf(stderr, "the clean left %d items\n", model.itemCountOf("user.downloads"));
        return 1;
    }
    for (const auto& [name, seconds] : figures)
        std::printf("%s=%.4f\n", name.c_str(), seconds);
    return 0;
}

std::map<std::string, double> parseFigures(const std::string& output) {
    std::map<std::string, double> figures;
    size_t start = 0;
    while (start < output.size()) {
        const size_t end = output.find('\n', start);
        const std::string line = output.substr(start, end - start);
        if (const size_t equals = line.find('='); equals != std::string::npos)
            figures[line.substr(0, equals)] = std::atof(line.c_str() + equals + 1);
        if (end == std::string::npos)
            break;
        start = end + 1;
    }
    return figures;
}

std::string defaultVeltro() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    return (self.parent_path().parent_path() / "app" / "veltro").string();
}

} // namespace

int main(int argc, char** argv) {
    if (argc >= 2 && std::string(argv[1]) == "--window-child")
        return windowChild(argc, argv);

    std::string veltro = defaultVeltro();
    std::vector<char*> rest{argv[0]};
    for (int i = 1; i < argc; ++i) {
        if (std::string(argv[i]) == "--veltro" && i + 1 < argc)
            veltro = argv[++i];
        else
            rest.push_back(argv[i]);
    }
    const BenchArguments arguments = parseBenchArguments(static_cast<int>(rest.size()), rest.data());
    const std::string data = std::filesystem::absolute(arguments.dataFolder).lexically_normal().string();
    const std::string temporary = data + "/items-tmp";
    std::error_code error;
    std::filesystem::create_directories(temporary, error);

    std::printf("veltro: %s\n", veltro.c_str());
    std::printf("%-18s %8s %9s %9s %7s %9s %8s %10s\n", "home", "items", "scan s", "du s", "ratio", "peak MB",
                "KB/item", "x/doubling");
    double previousTime = 0;
    int previousItems = 0;
    for (const Home& home : homes) {
        const std::string path = data + "/" + home.name;
        ensureTree(path, kHomeVersion, [&] { return buildHome(path, home.items, home.mixed); });
        const std::vector<std::string> environment{"HOME=" + path, "TMPDIR=" + temporary};
        const auto scan = [&] { return runChild({veltro, "scan", "--json"}, environment); };
        const auto du = [&] { return runChild({"du", "-sk", path}); };
        scan(); // warm the cache
        du();
        std::vector<double> scanTimes, duTimes, ratios;
        long peakKiB = 0;
        for (int run = 0; run < arguments.runs; ++run) {
            const ChildRun a = scan();
            const ChildRun b = du();
            if (a.seconds < 0 || b.seconds <= 0) {
                std::fprintf(stderr, "the scan or du failed on %s\n", home.name.c_str());
                return 1;
            }
            scanTimes.push_back(a.seconds);
            duTimes.push_back(b.seconds);
            ratios.push_back(a.seconds / b.seconds);
            peakKiB = std::max(peakKiB, a.maxRssKiB);
        }
        const double scanMedian = median(scanTimes);
        const double peakMB = static_cast<double>(peakKiB) / 1024;
        std::string growth = "-";
        if (!home.mixed && previousItems > 0) {
            const double doublings = std::log2(static_cast<double>(home.items) / previousItems);
            char text[32];
            std::snprintf(text, sizeof text, "%.2f", std::pow(scanMedian / previousTime, 1 / doublings));
            growth = text;
        }
        std::printf("%-18s %8s %9.3f %9.3f %7.2f %9.1f %8.2f %10s\n", home.name.c_str(),
                    withSeparators(home.items).c_str(), scanMedian, median(duTimes), median(ratios), peakMB,
                    static_cast<double>(peakKiB) / home.items, growth.c_str());
        std::fflush(stdout);
        if (!home.mixed) {
            previousTime = scanMedian;
            previousItems = home.items;
        }
    }
    std::printf("targets: at most 2.3x per doubling; 100,000 items at most 1.5 s, 4x du and 64 MB + 1 KB per "
                "item\n\n");

    // The model and the table: a home of its own, since the clean empties it.
    const std::string windowHome = data + "/items-window-100000";
    const std::string self = std::filesystem::read_symlink("/proc/self/exe", error).string();
    std::map<std::string, std::vector<double>> figures;
    for (int run = 0; run < arguments.runs; ++run) {
        ensureTree(windowHome, kHomeVersion, [&] { return buildHome(windowHome, kWindowItems, false); });
        const ChildRun child =
            runChild({self, "--window-child"},
                     {"HOME=" + windowHome, "TMPDIR=" + temporary, "QT_QPA_PLATFORM=offscreen"});
        // Emptied by the clean: the next run builds it again.
        std::filesystem::remove(windowHome + ".complete", error);
        if (child.seconds < 0) {
            std::fprintf(stderr, "the model run failed\n");
            return 1;
        }
        for (const auto& [name, seconds] : parseFigures(child.output))
            figures[name].push_back(seconds);
    }
    std::printf("the model and the category table, %s items (median of %d runs):\n",
                withSeparators(kWindowItems).c_str(), arguments.runs);
    for (const auto& [name, values] : figures)
        std::printf("  %-18s %8.3f s\n", name.c_str(), median(values));
    std::printf("targets: fill 0.5 s, a sort or Select All 0.3 s, a filter keystroke 0.15 s\n");
    return 0;
}
