#include "platform/XdgFolders.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

// The download folder as "user-dirs.dirs" names it: the last valid line wins, and a
// line that is not exactly a quoted "$HOME…" or "/…" value counts for nothing.
TEST(XdgFolders, DownloadFolderComesFromTheLastValidLine) {
    const std::string home = "/home/someone";
    const std::vector<std::pair<std::string, std::optional<std::string>>> cases{
        {"XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n", "/home/someone/Downloads"},
        {"  XDG_DOWNLOAD_DIR=\"/data/incoming//\"  \n", "/data/incoming"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/My \\\"Files\\\" \\\\ here\"", "/home/someone/My \"Files\" \\ here"},
        {"XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOWNLOAD_DIR=\"$HOME/b\"\n", "/home/someone/b"},
        {"XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOWNLOAD_DIR=/b\nXDG_DOWNLOAD_DIR=\"b\"\n", "/a"},
        {"XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOWNLOAD_DIR=\"$HOMEWARD/b\"\n", "/a"},
        {"XDG_DOWNLOAD_DIR=\"/a\" # moved\nXDG_DOWNLOAD_DIR=\"/b\"# glued\n", "/a"},
        {"XDG_DOWNLOAD_DIR=\"/a\n", std::nullopt},
        {"# XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOCUMENTS_DIR=\"/b\"\n", std::nullopt},
        {"XDG_DOWNLOAD_DIR=\"/a\"\nXDG_DOWNLOAD_DIR=\"$HOME/\"\n", std::nullopt},
        {"XDG_DOWNLOAD_DIR=\"$HOME\"", std::nullopt},
        {"XDG_DOWNLOAD_DIR=\"/\"", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(XdgFolders::downloadFolderIn(text, home), expected) << text;
}
