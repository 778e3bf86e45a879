#include "platform/Localized.h"

#include <vector>

namespace {

Translator& currentTranslator() {
    static Translator translator;
    return translator;
}

} // namespace

void installTranslator(Translator translator) { currentTranslator() = std::move(translator); }

std::string localized(std::string_view key) {
    const Translator& translator = currentTranslator();
    return translator ? translator(key) : std::string(key);
}

std::string localizedFormat(std::string_view key, std::initializer_list<std::string_view> values) {
    const std::string pattern = localized(key);
    const std::vector<std::string_view> args(values);
    std::string out;
    out.reserve(pattern.size() + 16);
    for (size_t i = 0; i < pattern.size(); ++i) {
        const char c = pattern[i];
        if (c == '%' && i + 1 < pattern.size() && pattern[i + 1] >= '1' && pattern[i + 1] <= '9') {
            const size_t index = static_cast<size_t>(pattern[i + 1] - '1');
            if (index < args.size()) {
                out.append(args[index]);
                ++i;
                continue;
            }
        }
        out.push_back(c);
    }
    return out;
}
