// The application as a process: the window's own run (which also shows that closing
// the window ends the process) and the commands that must not need a display.

#include "support/BinaryRun.h"
#include "support/FakeHome.h"
#include "support/PathQueries.h"

#include <QImage>

#include <gtest/gtest.h>

#include <iterator>

TEST(WindowProcess, ScreenshotRunPicturesTheWindowAndEndsWhenItCloses) {
    FakeHome home;
    const std::string checked = home.makeFileOfSize("Library/Caches/com.example.editor/blob.bin", 300'000);
    const std::string unchecked = home.makeFileOfSize("Library/Logs/example.log", 40'000);
    home.makeFileOfSize("Library/Mail/V10/inbox.mbox", 200'000);
    home.makeFile(".veltro-screenshot-home");
    const std::string shots = home.tree().makeDir("shots");

    // A window that stayed open would hold the run until the test's time limit.
    const BinaryRun run = BinaryRun::of({"--screenshot-dir", shots});
    EXPECT_EQ(run.status, 0) << run.err;

    const char* names[] = {"window-before.png",   "window-during.png", "window-after.png",
                           "window-selected.png", "overview.png",      "category.png",
                           "confirm-sheet.png",   "result-sheet.png",  "system-data.png"};
    constexpr int count = int(std::size(names));
    QImage pictures[count];
    for (int i = 0; i < count; ++i) {
        ASSERT_TRUE(pictures[i].load(QString::fromStdString(shots + "/" + names[i]))) << names[i];
        EXPECT_EQ(pictures[i].size(), QSize(1180, 760)) << names[i];
    }
    // Each moment looks different: sizes appear, the pill comes and goes, items get
    // checked, the sidebar goes back to its top, screens and sheets change.
    for (int i = 1; i < count; ++i)
        EXPECT_NE(pictures[i - 1], pictures[i]) << names[i - 1] << " and " << names[i];
    for (int i = 4; i < count; ++i)
        for (int j = i + 2; j < count; ++j)
            EXPECT_NE(pictures[i], pictures[j]) << names[i] << " and " << names[j];

    // The one item checked on the category screen was cleaned, and nothing else.
    EXPECT_FALSE(exists(checked));
    EXPECT_TRUE(exists(unchecked));
}

TEST(WindowProcess, ScreenshotRunCleansNothingInAHomeNotMadeForIt) {
    FakeHome home;
    const std::string cache = home.makeFileOfSize("Library/Caches/com.example.editor/blob.bin", 300'000);
    const std::string shots = home.tree().makeDir("shots");

    // A window that stayed open would hold the run until the test's time limit.
    const BinaryRun run = BinaryRun::of({"--screenshot-dir", shots});
    EXPECT_EQ(run.status, 1) << "a tour that skipped a picture reports it";
    EXPECT_NE(run.err.find(".veltro-screenshot-home"), std::string::npos) << run.err;
    EXPECT_TRUE(exists(cache));
    EXPECT_TRUE(exists(shots + "/confirm-sheet.png"));
    EXPECT_FALSE(exists(shots + "/result-sheet.png"));
    EXPECT_TRUE(exists(shots + "/system-data.png"));
}

TEST(WindowProcess, CommandsRunWithoutADisplay) {
    // A window would need one of these; the commands must not try.
    const std::vector<std::string> noDisplay{"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM=xcb"};
    const BinaryRun version = BinaryRun::of({"--version"}, noDisplay);
    EXPECT_EQ(version.status, 0) << version.err;
    EXPECT_EQ(version.out.rfind("Veltro ", 0), 0u) << version.out;
    const BinaryRun help = BinaryRun::of({"--help"}, noDisplay);
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("veltro scan"), std::string::npos) << help.out;
    EXPECT_EQ(BinaryRun::of({"--screenshot-dir"}, noDisplay).status, 2)
        << "an option without its value is refused before any window opens";
}
