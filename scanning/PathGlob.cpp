#include "scanning/PathGlob.h"

#include "platform/Environment.h"

#include <cerrno>
#include <dirent.h>
#include <fnmatch.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

std::string homeOfUser(const std::string& user) {
    const long suggested = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<size_t>(suggested) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    while (true) {
        const int error = ::getpwnam_r(user.c_str(), &entry, buffer.data(), buffer.size(), &found);
        if (error == ERANGE && buffer.size() < (1u << 20)) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (error != 0 || !found || !found->pw_dir)
            return {};
        return found->pw_dir;
    }
}

// "~" and "~/..." name the user's home folder, "~name/..." that user's; an unknown
// user leaves the pattern as it is, which then names nothing.
std::string expandTilde(std::string_view pattern) {
    if (pattern.empty() || pattern.front() != '~')
        return std::string(pattern);
    const size_t slash = pattern.find('/');
    const std::string_view user =
        pattern.substr(1, slash == std::string_view::npos ? pattern.npos : slash - 1);
    const std::string_view rest =
        slash == std::string_view::npos ? std::string_view{} : pattern.substr(slash);
    std::string home = user.empty() ? Environment::homeFolder() : homeOfUser(std::string(user));
    if (home.empty())
        return std::string(pattern);
    home.append(rest);
    return home;
}

std::vector<std::string_view> components(std::string_view path) {
    std::vector<std::string_view> parts;
    size_t start = 0;
    while (start <= path.size()) {
        size_t end = path.find('/', start);
        if (end == std::string_view::npos)
            end = path.size();
        if (end > start)
            parts.push_back(path.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

bool isWildcard(std::string_view component) {
    return component.find_first_of("*?[") != std::string_view::npos;
}

std::string joined(const std::string& folder, std::string_view name) {
    std::string path;
    path.reserve(folder.size() + 1 + name.size());
    path.append(folder);
    if (path.back() != '/')
        path.push_back('/');
    path.append(name);
    return path;
}

void appendMatches(const std::string& folder, const std::string& pattern, std::vector<std::string>& out) {
    DIR* dir = ::opendir(folder.c_str());
    if (!dir)
        return;
    while (const dirent* entry = ::readdir(dir)) {
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0')))
            continue;
        if (::fnmatch(pattern.c_str(), name, 0) == 0)
            out.push_back(joined(folder, name));
    }
    ::closedir(dir);
}

} // namespace

namespace PathGlob {

std::vector<std::string> expand(std::string_view pattern) {
    const std::string expanded = expandTilde(pattern);
    std::vector<std::string> current{"/"};
    for (const std::string_view component : components(expanded)) {
        std::vector<std::string> next;
        if (isWildcard(component)) {
            const std::string componentPattern(component);
            for (const std::string& folder : current)
                appendMatches(folder, componentPattern, next);
        } else {
            for (const std::string& folder : current) {
                std::string candidate = joined(folder, component);
                struct stat st {};
                if (::lstat(candidate.c_str(), &st) == 0)
                    next.push_back(std::move(candidate));
            }
        }
        if (next.empty())
            return {};
        current = std::move(next);
    }
    if (current.size() == 1 && current.front() == "/")
        return {};
    return current;
}

} // namespace PathGlob
