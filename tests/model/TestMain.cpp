#include <gtest/gtest.h>

#include <QGuiApplication>

#include <cstdlib>

// The clipboard needs a GUI application; offscreen, so no display is required.
int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QGuiApplication application(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
