// What a text report may print of a file name: it stays on its line and sends the
// terminal nothing, whatever bytes the name holds.

#include "platform/Text.h"

#include <gtest/gtest.h>

TEST(Text, EscapedForTerminalKeepsNamesOnTheirLineAndInert) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"plain café ✓", "plain café ✓"},
        {"new\nline\r\ttab", "new\\nline\\r\\ttab"},
        {"\x1b[31mred\x07", "\\e[31mred\\x07"},
        {std::string("nul\0x", 5), "nul\\x00x"},
        {"del\x7f", "del\\x7f"},
        {"bad\xff\xfe", "bad\\xff\\xfe"},
        {"cut\xc3", "cut\\xc3"},
        {"surrogate\xed\xa0\x80", "surrogate\\xed\\xa0\\x80"},
        {"overlong\xe0\x80\xaf", "overlong\\xe0\\x80\\xaf"},
        {"csi\xc2\x9b", "csi\\u009b"},
        {"rtl\xe2\x80\xae", "rtl\\u202e"},
        {"line\xe2\x80\xa8sep", "line\\u2028sep"},
    };
    for (const auto& [raw, shown] : cases)
        EXPECT_EQ(Text::escapedForTerminal(raw), shown) << raw;
}
