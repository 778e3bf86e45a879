#include "removal/Shell.h"

#include "platform/Environment.h"

namespace Shell {

std::string path() {
    const std::string& home = Environment::homeFolder();
    const std::string h = home == "/" ? std::string() : home;
    return "/opt/homebrew/bin:/usr/local/bin:" + h + "/.orbstack/bin:" + h + "/.docker/bin:/usr/bin:/bin:/usr/sbin:/sbin";
}

std::string decodeUtf8Lossy(std::string_view bytes) {
    static constexpr std::string_view replacement = "\xEF\xBF\xBD";
    std::string out;
    out.reserve(bytes.size());
    const auto* s = reinterpret_cast<const unsigned char*>(bytes.data());
    const size_t n = bytes.size();
    size_t i = 0;
    while (i < n) {
        const unsigned char c = s[i];
        size_t length = 0;
        unsigned char low = 0x80, high = 0xBF;
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
            ++i;
            continue;
        } else if (c >= 0xC2 && c <= 0xDF) {
            length = 2;
        } else if (c >= 0xE0 && c <= 0xEF) {
            length = 3;
            if (c == 0xE0)
                low = 0xA0;
            else if (c == 0xED)
                high = 0x9F;
        } else if (c >= 0xF0 && c <= 0xF4) {
            length = 4;
            if (c == 0xF0)
                low = 0x90;
            else if (c == 0xF4)
                high = 0x8F;
        } else {
            out.append(replacement);
            ++i;
            continue;
        }
        // A maximal valid prefix of a sequence becomes one replacement character.
        size_t j = 1;
        for (; j < length && i + j < n; ++j) {
            const unsigned char next = s[i + j];
            const unsigned char lo = j == 1 ? low : 0x80;
            const unsigned char hi = j == 1 ? high : 0xBF;
            if (next < lo || next > hi)
                break;
        }
        if (j == length) {
            out.append(bytes.substr(i, length));
            i += length;
        } else {
            out.append(replacement);
            i += j;
        }
    }
    return out;
}

} // namespace Shell
