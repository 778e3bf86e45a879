#include "platform/ShellQuote.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace {

// What a real /bin/sh makes of the quoted word: printf '%s' <word>.
std::string echoedByShell(const std::string& value) {
    const std::string command = "printf '%s' " + shellQuote(value);
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        return "<popen failed>";
    std::string out;
    char buffer[256];
    size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        out.append(buffer, n);
    const int status = ::pclose(pipe);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return "<shell failed>";
    return out;
}

} // namespace

// The quoted forms themselves are pinned by the administrator batch's exact text.
TEST(ShellQuote, TheShellReadsBackExactlyTheValue) {
    // An empty value must stay an argument of its own, though the shell reads back
    // nothing either way.
    EXPECT_EQ(shellQuote(""), "''");
    for (const std::string& value :
         {std::string("plain"), std::string("it's"), std::string("'"), std::string("a b\tc\nd"),
          std::string("$(echo injected) `id` ${HOME} *.txt ~ ; | & > <"), std::string("-rf --"),
          std::string("back\\slash \"double\" '' end'"), std::string("caf\xc3\xa9 \xff\xfe raw bytes")}) {
        EXPECT_EQ(echoedByShell(value), value);
    }
}
