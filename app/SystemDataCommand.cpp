#include "app/SystemDataCommand.h"

#include "app/HeadlessRun.h"
#include "app/ScanSettings.h"
#include "app/SystemDataPrintout.h"
#include "platform/ByteCount.h"
#include "platform/Localized.h"
#include "scanning/DiskInfo.h"
#include "systemdata/SystemDataAnalyzer.h"
#include "systemdata/SystemDataAreas.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QTextStream>

#include <cstdio>
#include <iostream>

namespace {

QString q(const std::string& text) {
    return QString::fromStdString(text);
}

const SystemDataEntry* entryWithID(const QString& id) {
    for (const SystemDataEntry& entry : SystemDataAreas::entries())
        if (q(entry.id) == id)
            return &entry;
    return nullptr;
}

bool askToProceed(const SystemDataEntry::Action& action) {
    QTextStream(stdout) << q(action.title) << "\n"
                        << q(action.confirm) << "\n"
                        << q(localized("Continue? [y/N] ")) << Qt::flush;
    std::string answer;
    if (!std::getline(std::cin, answer))
        return false;
    return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes" || answer == "YES";
}

// Runs the entry's action, refusing what cannot run here rather than reporting a
// success that did nothing.
int runAction(const SystemDataEntry& entry, bool confirmed) {
    QTextStream err(stderr);
    if (!entry.action) {
        err << q(entry.title) << ": "
            << q(entry.protectedNote.value_or(localized("Nothing can be done here"))) << "\n";
        return 1;
    }
    if (const std::string reason = SystemDataAreas::unavailableReason(entry); !reason.empty()) {
        err << q(entry.action->title) << ": " << q(reason) << "\n";
        return 1;
    }
    if (!confirmed && !HeadlessRun::isTerminal(fileno(stdin)))
        return usageError(
            QStringLiteral("system-data: no terminal to confirm on; pass --yes to run without asking"));
    if (!confirmed && !askToProceed(*entry.action))
        return 2;
    const int64_t before = DiskInfo::current().available;
    if (const std::optional<std::string> message = SystemDataAnalyzer::perform(*entry.action)) {
        err << q(localizedFormat("%1: %2", {entry.title, *message})) << "\n";
        return 1;
    }
    QTextStream(stdout) << q(localizedFormat("%1 completed — %2 more free space (re-analyze to update sizes)",
                                             {entry.action->title,
                                              formatByteCount(DiskInfo::current().available - before)}))
                        << "\n";
    return 0;
}

} // namespace

int runSystemDataCommand(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Measures the system's storage areas with administrator rights and prints them, or runs one "
        "area's action."));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print one JSON object instead of a table."));
    const QCommandLineOption run(QStringLiteral("run"), QStringLiteral("Run the action of the area ID."),
                                 QStringLiteral("ID"));
    const QCommandLineOption yes(QStringLiteral("yes"), QStringLiteral("Do not ask before --run."));
    parser.addOptions({json, run, yes});
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("system-data"), QStringLiteral("The command."));
    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << parser.helpText()
                            << "\nExit status: 0 when done, 1 when the analysis or the action failed or "
                               "cannot run here, 2 for bad arguments or a refused confirmation.\n";
        return 0;
    }
    if (parser.positionalArguments().size() > 1)
        return usageError(
            QStringLiteral("system-data: unexpected argument '%1'").arg(parser.positionalArguments().at(1)));

    if (parser.isSet(run)) {
        const SystemDataEntry* entry = entryWithID(parser.value(run));
        if (!entry)
            return usageError(QStringLiteral("--run: unknown area '%1'").arg(parser.value(run)));
        return runAction(*entry, parser.isSet(yes));
    }

    AppModel model;
    model.analyzeSystemData();
    HeadlessRun::waitUntil([&model] { return !model.systemAnalyzing(); });
    if (!model.hasSystemReport()) {
        QTextStream(stderr) << "veltro: " << model.systemMessage() << "\n";
        return 1;
    }
    QTextStream out(stdout);
    if (parser.isSet(json))
        out << QJsonDocument(SystemDataPrintout::json(model)).toJson(QJsonDocument::Compact) << '\n';
    else
        out << SystemDataPrintout::text(model);
    return 0;
}
