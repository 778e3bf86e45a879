#include "app/RawArguments.h"

namespace RawArguments {

std::vector<std::string> values(int argc, const char* const* argv, std::string_view name) {
    std::vector<std::string> found;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument(argv[i]);
        if (argument == "--")
            break;
        if (argument == name) {
            if (i + 1 < argc)
                found.emplace_back(argv[++i]);
        } else if (argument.size() > name.size() && argument.starts_with(name) &&
                   argument[name.size()] == '=') {
            found.emplace_back(argument.substr(name.size() + 1));
        }
    }
    return found;
}

} // namespace RawArguments
