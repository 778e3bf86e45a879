#include "platform/XdgFolders.h"

#include "platform/Environment.h"
#include "platform/Paths.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

std::string folderFromEnvironment(const char* name, std::string_view fallback) {
    // The base directory rules ignore relative values: they would depend on the
    // working folder.
    if (const char* value = std::getenv(name); value && value[0] == '/')
        return Paths::standardizedPath(value);
    return Paths::join(Environment::homeFolder(), fallback);
}

// The value of one line when it is a valid XDG_DOWNLOAD_DIR assignment.
std::optional<std::string> assignedValue(std::string_view line) {
    const size_t start = line.find_first_not_of(" \t");
    if (start == std::string_view::npos)
        return std::nullopt;
    line.remove_prefix(start);
    constexpr std::string_view key = "XDG_DOWNLOAD_DIR=\"";
    if (!line.starts_with(key))
        return std::nullopt;
    line.remove_prefix(key.size());
    std::string value;
    size_t at = 0;
    for (; at < line.size() && line[at] != '"'; ++at) {
        if (line[at] == '\\' && at + 1 < line.size())
            ++at;
        value.push_back(line[at]);
    }
    if (at == line.size())
        return std::nullopt; // no closing quote
    // As a shell reads it: blanks, then at most a comment.
    const std::string_view rest = line.substr(at + 1);
    const size_t next = rest.find_first_not_of(" \t\r");
    if (next != std::string_view::npos && (next == 0 || rest[next] != '#'))
        return std::nullopt;
    return value;
}

std::optional<std::string> readDownloadFolder() {
    std::ifstream file(Paths::join(XdgFolders::configHome(), "user-dirs.dirs"));
    if (!file)
        return std::nullopt;
    std::stringstream text;
    text << file.rdbuf();
    return XdgFolders::downloadFolderIn(text.str(), Environment::homeFolder());
}

} // namespace

namespace XdgFolders {

const std::string& cacheHome() {
    static const std::string folder = folderFromEnvironment("XDG_CACHE_HOME", ".cache");
    return folder;
}

const std::string& configHome() {
    static const std::string folder = folderFromEnvironment("XDG_CONFIG_HOME", ".config");
    return folder;
}

const std::string& dataHome() {
    static const std::string folder = folderFromEnvironment("XDG_DATA_HOME", ".local/share");
    return folder;
}

const std::optional<std::string>& downloadFolder() {
    static const std::optional<std::string> folder = readDownloadFolder();
    return folder;
}

std::optional<std::string> downloadFolderIn(std::string_view text, const std::string& home) {
    std::optional<std::string> found;
    while (!text.empty()) {
        const size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        std::optional<std::string> value = assignedValue(line);
        if (!value)
            continue;
        constexpr std::string_view homeVariable = "$HOME";
        if (value->starts_with(homeVariable) &&
            (value->size() == homeVariable.size() || (*value)[homeVariable.size()] == '/'))
            found = home + value->substr(homeVariable.size());
        else if (value->starts_with('/'))
            found = std::move(*value);
    }
    if (!found)
        return std::nullopt;
    // Lexically tidied, so "$HOME/" and "$HOME/." name the home folder as "$HOME" does.
    std::string folder = Paths::standardizedPath(*found);
    if (folder == "/" || folder == Paths::standardizedPath(home))
        return std::nullopt;
    return folder;
}

} // namespace XdgFolders
