// The application as a process: the window's own run (which also shows that closing
// the window ends the process) and the commands that must not need a display.

#include "support/FakeHome.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>

#include <gtest/gtest.h>

#include <iterator>

namespace {

struct ProcessRun {
    bool finished = false;
    int exitCode = -1;
    QString out, err;
};

ProcessRun runProcess(const QString& program, const QStringList& arguments,
                      const QProcessEnvironment& environment, int timeoutMs = 60000) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    ProcessRun run;
    run.finished = process.waitForStarted() && process.waitForFinished(timeoutMs);
    if (!run.finished)
        process.kill();
    process.waitForFinished();
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.out = QString::fromLocal8Bit(process.readAllStandardOutput());
    run.err = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}

QProcessEnvironment environmentFor(const FakeHome& home) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", QString::fromStdString(home.home()));
    environment.insert("TMPDIR", QString::fromStdString(home.tmp()));
    return environment;
}

} // namespace

TEST(WindowProcess, ScreenshotRunPicturesTheWindowAndEndsWhenItCloses) {
    FakeHome home;
    const std::string checked = home.makeFileOfSize("Library/Caches/com.example.editor/blob.bin", 300'000);
    const std::string unchecked = home.makeFileOfSize("Library/Logs/example.log", 40'000);
    home.makeFileOfSize("Library/Mail/V10/inbox.mbox", 200'000);
    home.makeFile(".veltro-screenshot-home");
    const QString shots = QString::fromStdString(home.tree().makeDir("shots"));

    QProcessEnvironment environment = environmentFor(home);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    const ProcessRun run = runProcess(VELTRO_BINARY, {"--screenshot-dir", shots}, environment, 120000);
    ASSERT_TRUE(run.finished) << "the process did not end after its window closed";
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();

    const char* names[] = {"window-before.png",   "window-during.png", "window-after.png",
                           "window-selected.png", "overview.png",      "category.png",
                           "confirm-sheet.png",   "result-sheet.png",  "system-data.png"};
    constexpr int count = int(std::size(names));
    QImage pictures[count];
    for (int i = 0; i < count; ++i) {
        ASSERT_TRUE(pictures[i].load(QDir(shots).filePath(names[i]))) << names[i];
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
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(checked)));
    EXPECT_TRUE(QFileInfo::exists(QString::fromStdString(unchecked)));
}

TEST(WindowProcess, ScreenshotRunCleansNothingInAHomeNotMadeForIt) {
    FakeHome home;
    const std::string cache = home.makeFileOfSize("Library/Caches/com.example.editor/blob.bin", 300'000);
    const QString shots = QString::fromStdString(home.tree().makeDir("shots"));

    QProcessEnvironment environment = environmentFor(home);
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    const ProcessRun run = runProcess(VELTRO_BINARY, {"--screenshot-dir", shots}, environment, 120000);
    ASSERT_TRUE(run.finished) << "the process did not end after its window closed";
    EXPECT_EQ(run.exitCode, 1) << "a tour that skipped a picture reports it";
    EXPECT_TRUE(run.err.contains(".veltro-screenshot-home")) << run.err.toStdString();
    EXPECT_TRUE(QFileInfo::exists(QString::fromStdString(cache)));
    EXPECT_TRUE(QFileInfo::exists(QDir(shots).filePath("confirm-sheet.png")));
    EXPECT_FALSE(QFileInfo::exists(QDir(shots).filePath("result-sheet.png")));
    EXPECT_TRUE(QFileInfo::exists(QDir(shots).filePath("system-data.png")));
}

TEST(WindowProcess, CommandsRunWithoutADisplay) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    // A window would need one of these; the commands must not try.
    environment.remove("DISPLAY");
    environment.remove("WAYLAND_DISPLAY");
    environment.insert("QT_QPA_PLATFORM", "xcb");

    ProcessRun version = runProcess(VELTRO_BINARY, {"--version"}, environment);
    ASSERT_TRUE(version.finished);
    EXPECT_EQ(version.exitCode, 0) << version.err.toStdString();
    EXPECT_TRUE(version.out.startsWith("Veltro ")) << version.out.toStdString();

    ProcessRun help = runProcess(VELTRO_BINARY, {"--help"}, environment);
    ASSERT_TRUE(help.finished);
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("veltro scan")) << help.out.toStdString();

    ProcessRun unknown = runProcess(VELTRO_BINARY, {"--screenshot-dir"}, environment);
    ASSERT_TRUE(unknown.finished);
    EXPECT_EQ(unknown.exitCode, 2) << "an option without its value is refused before any window opens";
}
