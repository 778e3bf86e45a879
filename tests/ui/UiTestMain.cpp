// main() of the UI tests: the offscreen platform, the software renderer (so windows
// can be grabbed without a GPU), the Basic style, and a record of every warning.

#include "UiHarness.h"

#include <QGuiApplication>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QtQml/qqmlextensionplugin.h>

#include <gtest/gtest.h>

Q_IMPORT_QML_PLUGIN(VeltroPlugin)

int main(int argc, char* argv[]) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QQuickStyle::setStyle(QStringLiteral("Basic"));
    ::testing::InitGoogleTest(&argc, argv);
    UiHarness::startRecording();
    QGuiApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
