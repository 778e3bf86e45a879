// One binary: with a command (`scan`, `clean`, `system-data`) it runs headless over the same model
// the window uses; without one it opens the window.

#include "app/CleanCommand.h"
#include "app/KorvaneApp.h"
#include "app/LinuxWording.h"
#include "app/RawArguments.h"
#include "app/ScanCommand.h"
#include "app/SystemDataCommand.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstring>

namespace {

QString usage() {
    return QStringLiteral("Usage:\n"
                          "  veltro                 open the window\n"
                          "  veltro scan [--json] [--large-threshold-gb X] [--add-root DIR]...\n"
                          "  veltro clean (--recommended | --category ID ... | --item PATH ...)\n"
                          "               [--large-threshold-gb X] [--add-root DIR]... [--dry-run] [--yes]\n"
                          "               [--json] [--purge]\n"
                          "  veltro system-data [--json] [--run ID [--yes]]\n"
                          "  veltro --version\n"
                          "Run `veltro <command> --help` for details.\n");
}

int runHeadless(int argc, char* argv[]) {
    const std::vector<std::string> rawItems = RawArguments::values(argc, argv, "--item");
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Veltro"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VELTRO_VERSION));
    LinuxWording::install(app);
    const QStringList arguments = QCoreApplication::arguments();
    const QString command = arguments.value(1);
    if (command == QLatin1String("scan"))
        return runScanCommand(arguments);
    if (command == QLatin1String("clean"))
        return runCleanCommand(arguments, rawItems);
    if (command == QLatin1String("system-data"))
        return runSystemDataCommand(arguments);
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
    return KorvaneApp::wanted(argc, argv) ? KorvaneApp::run(argc, argv) : runHeadless(argc, argv);
}
