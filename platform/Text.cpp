#include "platform/Text.h"

#include <cstdint>

namespace Text {

namespace {

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Length in bytes of the character starting at `at` (a lone or broken byte is 1).
size_t characterLength(std::string_view text, size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    size_t length = 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2;
    else if (lead >= 0xE0 && lead <= 0xEF)
        length = 3;
    else if (lead >= 0xF0 && lead <= 0xF4)
        length = 4;
    if (at + length > text.size())
        return 1;
    for (size_t i = 1; i < length; ++i)
        if (!isContinuation(text[at + i]))
            return 1;
    return length;
}

uint32_t codePoint(std::string_view text, size_t at, size_t length) {
    const auto byte = [&](size_t i) {
        return static_cast<uint32_t>(static_cast<unsigned char>(text[at + i]));
    };
    switch (length) {
    case 2:
        return ((byte(0) & 0x1F) << 6) | (byte(1) & 0x3F);
    case 3:
        return ((byte(0) & 0x0F) << 12) | ((byte(1) & 0x3F) << 6) | (byte(2) & 0x3F);
    case 4:
        return ((byte(0) & 0x07) << 18) | ((byte(1) & 0x3F) << 12) | ((byte(2) & 0x3F) << 6) |
               (byte(3) & 0x3F);
    default:
        return byte(0);
    }
}

bool isWhiteSpace(uint32_t c) {
    return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}

} // namespace

std::string trimmed(std::string_view text) {
    size_t begin = 0;
    size_t end = 0; // one past the last character that is not white space
    bool seenText = false;
    for (size_t at = 0; at < text.size();) {
        const size_t length = characterLength(text, at);
        const bool space = length == 1 && static_cast<unsigned char>(text[at]) >= 0x80
                               ? false
                               : isWhiteSpace(codePoint(text, at, length));
        if (!space) {
            if (!seenText)
                begin = at;
            seenText = true;
            end = at + length;
        }
        at += length;
    }
    return seenText ? std::string(text.substr(begin, end - begin)) : std::string();
}

std::string prefix(std::string_view text, size_t count) {
    size_t at = 0;
    for (size_t taken = 0; taken < count && at < text.size(); ++taken)
        at += characterLength(text, at);
    return std::string(text.substr(0, at));
}

std::string prefixWithinBytes(std::string_view text, size_t limit) {
    size_t at = 0;
    while (at < text.size()) {
        const size_t length = characterLength(text, at);
        if (at + length > limit)
            break;
        at += length;
    }
    return std::string(text.substr(0, at));
}

std::vector<std::string_view> lines(std::string_view text) {
    std::vector<std::string_view> out;
    size_t start = 0;
    size_t at = 0;
    auto breakLength = [&text](size_t i) -> size_t {
        if (text[i] == '\n')
            return 1;
        if (text[i] == '\r')
            return i + 1 < text.size() && text[i + 1] == '\n' ? 2 : 1;
        if (text.substr(i, 3) == "\u2028" || text.substr(i, 3) == "\u2029")
            return 3;
        return 0;
    };
    while (at < text.size()) {
        if (const size_t length = breakLength(at)) {
            if (at > start)
                out.push_back(text.substr(start, at - start));
            at += length;
            start = at;
        } else {
            ++at;
        }
    }
    if (start < text.size())
        out.push_back(text.substr(start));
    return out;
}

std::optional<std::pair<std::string_view, std::string_view>> splitAtFirstBar(std::string_view line) {
    const size_t bar = line.find('|');
    if (bar == std::string_view::npos || bar == 0 || bar + 1 == line.size())
        return std::nullopt;
    return std::make_pair(line.substr(0, bar), line.substr(bar + 1));
}

std::string escapedForTerminal(std::string_view text) {
    static constexpr char hex[] = "0123456789abcdef";
    std::string out;
    out.reserve(text.size());
    const auto escapeByte = [&](unsigned char byte) {
        out += "\\x";
        out += hex[byte >> 4];
        out += hex[byte & 0xF];
    };
    for (size_t at = 0; at < text.size();) {
        const size_t length = characterLength(text, at);
        const auto byte = static_cast<unsigned char>(text[at]);
        if (length == 1) {
            switch (byte) {
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            case 0x1B:
                out += "\\e";
                break;
            default:
                if (byte < 0x20 || byte >= 0x7F)
                    escapeByte(byte);
                else
                    out += static_cast<char>(byte);
            }
            ++at;
            continue;
        }
        const uint32_t c = codePoint(text, at, length);
        const bool malformed = (length == 3 && (c < 0x800 || (c >= 0xD800 && c <= 0xDFFF))) ||
                               (length == 4 && (c < 0x10000 || c > 0x10FFFF));
        if (malformed) {
            escapeByte(byte);
            ++at;
            continue;
        }
        const bool control = (c >= 0x80 && c <= 0x9F) || c == 0x2028 || c == 0x2029 ||
                             (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
        if (control) {
            out += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                out += hex[(c >> shift) & 0xF];
        } else {
            out.append(text.substr(at, length));
        }
        at += length;
    }
    return out;
}

} // namespace Text
