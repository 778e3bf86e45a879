#include "scanning/Measurement.h"

#include "platform/Localized.h"
#include "platform/Paths.h"
#include "scanning/FileSizer.h"

#include <algorithm>
#include <mutex>
#include <sys/stat.h>
#include <system_error>
#include <thread>

namespace Measurement {

namespace {

bool isDirectoryNoFollow(const std::string& path) {
    struct stat st {};
    return ::lstat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

} // namespace

std::optional<ScanItem> measureCandidate(const Candidate& candidate, std::stop_token stop) {
    const int64_t size = candidate.knownSize
                             ? *candidate.knownSize
                             : FileSizer::allocatedSize(candidate.path, [&stop] { return stop.stop_requested(); });
    ScanItem item{candidate.path,   candidate.categoryID, Paths::lastComponent(candidate.path),
                  candidate.path,   std::nullopt,         candidate.modified,
                  candidate.method, candidate.note};
    if (size >= 1) {
        item.size = size;
        return item;
    }
    if (candidate.method.kind == RemovalMethod::Kind::adminTrash && isDirectoryNoFollow(candidate.path) &&
        !Paths::isReadable(candidate.path)) {
        item.note = localized(unreadableNote);
        return item;
    }
    return std::nullopt;
}

std::vector<ScanItem> measure(const std::vector<Candidate>& candidates, const Progress& progress,
                              std::stop_token stop) {
    std::vector<ScanItem> output;
    const size_t total = candidates.size();
    if (total == 0)
        return output;

    // Room for every item at once: growing by doubling would hold the list twice
    // over while it moves.
    output.reserve(total);
    std::mutex mutex; // guards output, done, next and the progress calls
    size_t done = 0;
    size_t next = 0;
    // Every 10th, or every thousandth of a long list: each report wakes the receiver.
    const size_t step = std::max<size_t>(10, total / 1000);

    // A worker's first candidate starts even after a stop, like the first tasks of
    // a group started together; later ones only while no stop has been requested.
    auto work = [&] {
        std::unique_lock lock(mutex);
        for (bool first = true; next < total && (first || !stop.stop_requested()); first = false) {
            const size_t index = next++;
            // Files already measured need no worker of their own: taking them under the
            // lock spares a hand-over per file.
            const bool known = candidates[index].knownSize.has_value();
            if (!known)
                lock.unlock();
            std::optional<ScanItem> item = measureCandidate(candidates[index], stop);
            if (!known)
                lock.lock();
            if (item)
                output.push_back(std::move(*item));
            ++done;
            if (progress && (done % step == 0 || done == total))
                progress(done, total);
        }
    };

    {
        std::vector<std::jthread> workers;
        const size_t workerCount = std::min(maxConcurrent, total);
        workers.reserve(workerCount);
        try {
            for (size_t i = 0; i < workerCount; ++i)
                workers.emplace_back(work);
        } catch (const std::system_error&) {
            // Out of threads: measure with the workers that did start, or here.
            if (workers.empty())
                work();
        }
    } // joined here
    return output;
}

} // namespace Measurement
