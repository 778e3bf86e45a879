#include "app/ScanCommand.h"

#include "app/HeadlessRun.h"
#include "app/ScanReport.h"
#include "app/ScanSettings.h"

#include <QCommandLineParser>
#include <QTextStream>

#include <cstdio>

int runScanCommand(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Scans for reclaimable space and prints what was found."));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print one JSON object instead of a report."));
    parser.addOption(json);
    parser.addOption(ScanSettings::thresholdOption());
    parser.addOption(ScanSettings::addRootOption());
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("scan"), QStringLiteral("The command."));
    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << parser.helpText();
        return 0;
    }
    if (parser.positionalArguments().size() > 1)
        return usageError(
            QStringLiteral("scan: unexpected argument '%1'").arg(parser.positionalArguments().at(1)));
    ScanSettings settings;
    if (const auto error = ScanSettings::read(parser, settings))
        return usageError(*error);

    AppModel model;
    settings.applyTo(model);
    HeadlessRun::scan(model, HeadlessRun::isTerminal(fileno(stderr)));

    // Looked up again after the scan, from the same table: the places cost nothing per item.
    const SearchedPlaces::PerCategory searched =
        SearchedPlaces::of(ScanOptions{0, model.extraRoots(), model.hasFullDiskAccess()});
    if (parser.isSet(json)) {
        ScanReport::writeJson(model, searched, stdout);
        std::fflush(stdout);
        return 0;
    }
    QTextStream out(stdout);
    out << ScanReport::text(model, searched);
    out.flush();
    return 0;
}
