#include "app/KorvaneApp.h"

#include "app/LinuxWording.h"
#include "app/ScreenshotTour.h"
#include "model/AppModel.h"
#include "removal/Privileged.h"
#include "ui/UiServices.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQmlApplicationEngine>
#include <QQuickStyle>
#include <QQuickWindow>
#include <QTextStream>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

// The QML modules are static libraries; their plugins must be named to be linked in.
Q_IMPORT_QML_PLUGIN(VeltroPlugin)
Q_IMPORT_QML_PLUGIN(Veltro_ModelPlugin)

namespace {

constexpr std::string_view screenshotOption = "--screenshot-dir";

} // namespace

bool KorvaneApp::wanted(int argc, char* argv[]) {
    return argc <= 1 || argv[1] == screenshotOption;
}

int KorvaneApp::run(int argc, char* argv[]) {
    QString screenshotDir;
    for (int i = 1; i < argc; ++i) {
        if (argv[i] == screenshotOption && i + 1 < argc) {
            screenshotDir = QString::fromLocal8Bit(argv[++i]);
        } else {
            QTextStream(stderr) << "veltro: unexpected argument '" << argv[i] << "'\n";
            return 2;
        }
    }

    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Veltro"));
    QGuiApplication::setApplicationVersion(QStringLiteral(VELTRO_VERSION));
    // Before the model, whose catalogues read their texts once.
    LinuxWording::install(app);
    QGuiApplication::setDesktopFileName(QStringLiteral("app.veltro.Veltro"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/app/app.veltro.Veltro.svg")));
    QGuiApplication::setQuitOnLastWindowClosed(true);
    QQuickStyle::setStyle(QStringLiteral("Basic"));

    // Declared before the engine so that it outlives every view that reads it.
    AppModel model;
    QQmlApplicationEngine engine;
    // Qt 6.4 does not look for modules in the resource root by itself; without this,
    // files in subfolders of the module cannot see their own module's types.
    engine.addImportPath(QStringLiteral("qrc:/"));
    UiServices::install(engine);
    engine.load(QUrl(QStringLiteral("qrc:/Veltro/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    if (!window)
        return 1;
    window->requestActivate();

    std::unique_ptr<ScreenshotTour> tour;
    if (!screenshotDir.isEmpty()) {
        tour = std::make_unique<ScreenshotTour>(*window, model, screenshotDir);
        tour->start();
    }

    int status = app.exec();
    if (tour && !tour->succeeded())
        status = 1;
    if (model.hasRunningWork()) {
        // A helper working as root outlives us unless told: it stops at its next safe
        // point and ends what it started, and we wait for that, but not for ever (its
        // closed input still tells it once we are gone).
        Privileged::endAll();
        // A scan winding down (or a clean) would hold the exit until it returns; nothing
        // is kept between runs, so leave at once.
        std::fflush(stdout);
        std::fflush(stderr);
        std::_Exit(status);
    }
    return status;
}
