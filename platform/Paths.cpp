#include "platform/Paths.h"

#include "platform/Environment.h"

#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace Paths {

std::string lastComponent(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    if (path == "/")
        return "/";
    const size_t slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string parentFolder(std::string_view path) {
    while (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    const size_t slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    if (slash == 0)
        return "/";
    std::string_view parent = path.substr(0, slash);
    while (parent.size() > 1 && parent.back() == '/')
        parent.remove_suffix(1);
    return std::string(parent);
}

std::string join(std::string_view parent, std::string_view name) {
    std::string out(parent);
    if (out.empty() || out.back() != '/')
        out.push_back('/');
    out.append(name);
    return out;
}

std::string canonicalPath(std::string_view path) {
    const std::string standardized = standardizedPath(path);
    if (standardized == "/")
        return standardized;
    const std::string parent = parentFolder(standardized);
    const std::string name = lastComponent(standardized);
    if (parent.empty())
        return standardized;
    char* resolved = ::realpath(parent.c_str(), nullptr);
    if (!resolved)
        return standardized;
    std::string result = join(resolved, name);
    std::free(resolved);
    return result;
}

std::string standardizedPath(std::string_view path) {
    std::string expanded;
    if (path == "~" || path.starts_with("~/")) {
        expanded = Environment::homeFolder();
        expanded.append(path.substr(1));
    } else {
        expanded = std::string(path);
    }
    const bool absolute = !expanded.empty() && expanded.front() == '/';
    std::vector<std::string_view> parts;
    std::string_view rest(expanded);
    while (!rest.empty()) {
        const size_t slash = rest.find('/');
        const std::string_view part = rest.substr(0, slash);
        rest = slash == std::string_view::npos ? std::string_view{} : rest.substr(slash + 1);
        if (part.empty() || part == ".")
            continue;
        if (part == "..") {
            if (!parts.empty() && parts.back() != "..")
                parts.pop_back();
            else if (!absolute)
                parts.push_back(part);
            continue;
        }
        parts.push_back(part);
    }
    std::string out = absolute ? "/" : "";
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            out.push_back('/');
        out.append(parts[i]);
    }
    if (out.empty() && !absolute)
        out.push_back('.');
    return out;
}

size_t componentCount(std::string_view path) {
    size_t count = 0;
    if (!path.empty() && path.front() == '/')
        count = 1;
    bool inPart = false;
    for (char c : path) {
        if (c == '/') {
            inPart = false;
        } else if (!inPart) {
            inPart = true;
            ++count;
        }
    }
    return count;
}

std::string abbreviatingHome(std::string_view path) {
    const std::string& home = Environment::homeFolder();
    if (home.empty() || home == "/")
        return std::string(path);
    if (path == home)
        return "~";
    if (path.size() > home.size() && path.starts_with(home) && path[home.size()] == '/') {
        // Built by appending: GCC 12 at -O3 warns (-Wrestrict) on the operator+ form.
        std::string abbreviated(1, '~');
        abbreviated.append(path.substr(home.size()));
        return abbreviated;
    }
    return std::string(path);
}

bool isWritable(const std::string& path) { return ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0; }

bool isReadable(const std::string& path) { return ::faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) == 0; }

} // namespace Paths
