#pragma once
// UTF-8 text from child processes and file names: trimming, shortening without
// splitting a character, and the line and "a|b" reading both privileged scripts'
// answers use. A stray invalid byte counts as one character of its own.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Text {

// `text` without white space and line breaks at both ends (ASCII and the Unicode
// space and separator characters).
std::string trimmed(std::string_view text);

// The first `count` characters (code points) of `text`.
std::string prefix(std::string_view text, size_t count);

// The longest start of `text` of at most `limit` bytes that does not end inside a
// well-formed character.
std::string prefixWithinBytes(std::string_view text, size_t limit);

// The non-empty lines of `text`, split at LF, CR, CR LF, U+2028 and U+2029.
std::vector<std::string_view> lines(std::string_view text);

// A line split at its first "|", when both pieces are non-empty.
std::optional<std::pair<std::string_view, std::string_view>> splitAtFirstBar(std::string_view line);

// `text` made safe to print on a terminal, one line per name: control characters as
// `\n`, `\t`, `\r`, `\e` or `\xNN` (C1 and the line, paragraph and direction
// controls as `\uNNNN`), and bytes that are not UTF-8 as `\xNN`, so a file name can
// neither start a new report line nor send the terminal a sequence.
std::string escapedForTerminal(std::string_view text);

} // namespace Text
