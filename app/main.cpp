// One binary: with a command (`scan`, `clean`) it runs headless over the same model
// the window uses; without one it opens the window.

#include "app/CleanCommand.h"
#include "app/KorvaneApp.h"
#include "app/RawArguments.h"
#include "app/ScanCommand.h"
#include "platform/Localized.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstring>

namespace {

void routeTextsThroughQt() {
    installTranslator([](std::string_view key) {
        const std::string text(key);
        return QCoreApplication::translate("Veltro", text.c_str()).toStdString();
    });
}

QString usage() {
    return QStringLiteral("Usage:\n"
                          "  veltro                 open the window\n"
                          "  veltro scan [--json] [--large-threshold-gb X] [--add-root DIR]...\n"
                          "  veltro clean (--recommended | --category ID ... | --item PATH ...)\n"
                          "               [--large-threshold-gb X] [--add-root DIR]... [--dry-run] [--yes]\n"
                          "               [--json] [--purge]\n"
                          "  veltro --version\n"
                          "Run `veltro scan --help` or `veltro clean --help` for details.\n");
}

int runHeadless(int argc, char* argv[]) {
    const std::vector<std::string> rawItems = RawArguments::values(argc, argv, "--item");
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Veltro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELTRO_VERSION));
    const QStringList arguments = QCoreApplication::arguments();
    const QString command = arguments.value(1);
    if (command == QLatin1String("scan"))
        return runScanCommand(arguments);
    if (command == QLatin1String("clean"))
        return runCleanCommand(arguments, rawItems);
    if (command == QLatin1String("--version") || command == QLatin1String("-v")) {
        QTextStream(stdout) << "Veltro " << QCoreApplication::applicationVersion() << '\n';
        return 0;
    }
    if (command == QLatin1String("--help") || command == QLatin1String("-h")) {
        QTextStream(stdout) << usage();
        return 0;
    }
    QTextStream(stderr) << "veltro: unknown command '" << command << "'\n" << usage();
    return 2;
}

} // namespace

int main(int argc, char* argv[]) {
    // First, before anything reads a catalogue text.
    routeTextsThroughQt();
    return KorvaneApp::wanted(argc, argv) ? KorvaneApp::run(argc, argv) : runHeadless(argc, argv);
}
