#pragma once
// Shortening texts for failure reasons without splitting a UTF-8 sequence. Texts
// here come from Shell::Output, which is already valid UTF-8; a stray invalid byte
// counts as one character of its own.

#include <cstddef>
#include <string>
#include <string_view>

namespace TextCut {

// `text` without white space and line breaks at both ends (ASCII and the Unicode
// space and separator characters).
std::string trimmed(std::string_view text);

// The first `count` characters (code points) of `text`.
std::string prefix(std::string_view text, size_t count);

} // namespace TextCut
