#include "removal/HelperMeasurement.h"

#include "platform/Text.h"
#include "removal/HelperStop.h"
#include "removal/HelperTool.h"

#include <cctype>
#include <string>
#include <unistd.h>

namespace HelperMeasurement {

namespace {

std::string duProgram() {
    for (const char* candidate : {"/usr/bin/du", "/bin/du"})
        if (::access(candidate, X_OK) == 0)
            return candidate;
    return "/usr/bin/du";
}

bool writeLine(int fd, const std::string& line) {
    size_t written = 0;
    while (written < line.size()) {
        const ssize_t n = ::write(fd, line.data() + written, line.size() - written);
        if (n <= 0)
            return false;
        written += static_cast<size_t>(n);
    }
    return true;
}

} // namespace

int64_t sumOfFirstFields(std::string_view text) {
    int64_t sum = 0;
    for (std::string_view line : Text::lines(text)) {
        size_t i = 0;
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t'))
            ++i;
        int64_t value = 0;
        while (i < line.size() && std::isdigit(static_cast<unsigned char>(line[i])))
            value = value * 10 + (line[i++] - '0');
        sum += value;
    }
    return sum;
}

void run(const std::vector<WorkList::MeasuredEntry>& entries, int outFd) {
    const std::string du = duProgram();
    for (const WorkList::MeasuredEntry& entry : entries) {
        if (HelperStop::requested())
            return;
        std::string value;
        if (!entry.countCommand.empty()) {
            // One answer line per entry, whatever the command printed.
            const std::string printed =
                Text::trimmed(HelperTool::runShell(entry.countCommand, HelperTool::Output::capture).output);
            value = Text::trimmed(printed.substr(0, printed.find_first_of("\r\n")));
        } else {
            std::vector<std::string> argv{du, "-skx", "--"};
            argv.insert(argv.end(), entry.folders.begin(), entry.folders.end());
            const HelperTool::Result measured = HelperTool::run(argv, HelperTool::Output::capture);
            if (measured.stopped)
                return;
            value = std::to_string(sumOfFirstFields(measured.output));
        }
        if (!writeLine(outFd, entry.id + "|" + value + "\n"))
            return; // nobody reads any more
    }
}

} // namespace HelperMeasurement
