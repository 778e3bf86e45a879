#include "app/CleanCommand.h"

#include "app/CountedText.h"

#include "app/CleanReport.h"
#include "app/HeadlessRun.h"
#include "app/ScanSettings.h"
#include "model/ItemKey.h"
#include "platform/Localized.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <QCommandLineParser>
#include <QFile>
#include <QJsonDocument>
#include <QTextStream>

#include <climits>
#include <cstdio>
#include <iostream>
#include <string>

#include <unistd.h>

namespace {

// The item a user means by PATH (raw bytes): its exact id (command ids included), the
// key the JSON report gives an id that is not UTF-8, or the canonical form of the path
// as the scanner records it. Bytes are compared as bytes, never as decoded text, so a
// name with an invalid byte cannot pick its look-alike with U+FFFD.
const ScanItem* findItem(const AppModel& model, const std::string& raw) {
    if (const ScanItem* exact = model.findItem(raw))
        return exact;
    if (raw.starts_with('\x01'))
        return model.findItem(ItemKey::toID(QString::fromStdString(raw)));
    std::string absolute = raw;
    if (!absolute.empty() && absolute.front() != '/' && absolute.front() != '~') {
        std::string cwd(PATH_MAX, '\0');
        if (!::getcwd(cwd.data(), cwd.size()))
            return nullptr;
        cwd.resize(std::char_traits<char>::length(cwd.c_str()));
        absolute = Paths::join(cwd, raw);
    }
    return model.findItem(Paths::canonicalPath(absolute));
}

// The --item values as bytes: the command line's own when they are the values the
// parser saw (an --item inside another option's value would make them differ).
std::vector<std::string> itemArguments(const QStringList& parsed, const std::vector<std::string>& raw) {
    bool same = parsed.size() == static_cast<qsizetype>(raw.size());
    for (qsizetype i = 0; same && i < parsed.size(); ++i)
        same = QString::fromLocal8Bit(raw[static_cast<size_t>(i)]) == parsed[i];
    if (same)
        return raw;
    std::vector<std::string> encoded;
    for (const QString& value : parsed)
        encoded.push_back(QFile::encodeName(value).toStdString());
    return encoded;
}

bool askToProceed(size_t count) {
    QTextStream(stdout) << countedText("Clean %Ln items? [y/N] ", count) << Qt::flush;
    std::string answer;
    if (!std::getline(std::cin, answer))
        return false;
    return answer == "y" || answer == "Y" || answer == "yes" || answer == "YES" || answer == "Yes";
}

} // namespace

int runCleanCommand(const QStringList& arguments, const std::vector<std::string>& rawItems) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Scans, chooses items as the window would, shows what will happen, and cleans them."));
    const QCommandLineOption recommended(
        QStringLiteral("recommended"),
        QStringLiteral("Clean the recommended items (as Select Recommended)."));
    const QCommandLineOption categoryOption(QStringLiteral("category"),
                                            QStringLiteral("Clean every item of this category (repeatable)."),
                                            QStringLiteral("ID"));
    const QCommandLineOption itemOption(QStringLiteral("item"),
                                        QStringLiteral("Clean this found item, by path or id (repeatable)."),
                                        QStringLiteral("PATH"));
    const QCommandLineOption dryRun(QStringLiteral("dry-run"), QStringLiteral("Show the summary and stop."));
    const QCommandLineOption yes(QStringLiteral("yes"), QStringLiteral("Do not ask for confirmation."));
    const QCommandLineOption json(QStringLiteral("json"),
                                  QStringLiteral("Print the summary and result as JSON."));
    const QCommandLineOption purge(
        QStringLiteral("purge"),
        QStringLiteral("Afterwards delete for good what this clean moved to the Trash."));
    parser.addOptions({recommended, categoryOption, itemOption, ScanSettings::thresholdOption(),
                       ScanSettings::addRootOption(), dryRun, yes, json, purge});
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("clean"), QStringLiteral("The command."));
    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << parser.helpText()
                            << "\nExit status: 0 when every item was cleaned, 1 when some failed, 2 for bad "
                               "arguments or a refused confirmation.\n";
        return 0;
    }
    if (parser.positionalArguments().size() > 1)
        return usageError(
            QStringLiteral("clean: unexpected argument '%1'").arg(parser.positionalArguments().at(1)));
    const int modes =
        int(parser.isSet(recommended)) + int(parser.isSet(categoryOption)) + int(parser.isSet(itemOption));
    if (modes != 1)
        return usageError(
            QStringLiteral("clean: choose exactly one of --recommended, --category ID or --item PATH"));
    ScanSettings settings;
    if (const auto error = ScanSettings::read(parser, settings))
        return usageError(*error);
    const bool interactive = HeadlessRun::isTerminal(fileno(stdin));
    if (!parser.isSet(yes) && !parser.isSet(dryRun) && !interactive)
        return usageError(
            QStringLiteral("clean: no terminal to confirm on; pass --yes to clean without asking"));

    AppModel model;
    const QStringList categories = parser.values(categoryOption);
    for (const QString& id : categories)
        if (!model.category(id))
            return usageError(QStringLiteral("--category: unknown category '%1'").arg(id));

    settings.applyTo(model);
    HeadlessRun::scan(model, HeadlessRun::isTerminal(fileno(stderr)));

    if (parser.isSet(recommended)) {
        model.selectRecommended();
    } else if (parser.isSet(categoryOption)) {
        for (const QString& id : categories)
            model.setAll(id, true);
    } else {
        std::vector<std::string> chosen;
        for (const std::string& argument : itemArguments(parser.values(itemOption), rawItems)) {
            const ScanItem* item = findItem(model, argument);
            if (!item)
                return usageError(QStringLiteral("--item: '%1' was not found by the scan")
                                      .arg(QString::fromStdString(Text::escapedForTerminal(argument))));
            chosen.push_back(item->id);
        }
        for (const std::string& id : chosen)
            model.setSelected(id, true);
    }

    QTextStream out(stdout);
    model.requestClean();
    const bool asJson = parser.isSet(json);
    QJsonObject report;
    if (asJson)
        report.insert("summary", CleanReport::summaryJson(model));
    else
        out << CleanReport::summary(model) << Qt::flush;

    if (model.itemsToClean().empty() || parser.isSet(dryRun)) {
        if (asJson)
            out << QJsonDocument(report).toJson(QJsonDocument::Compact) << '\n';
        return 0;
    }
    if (!parser.isSet(yes) && !askToProceed(model.itemsToClean().size()))
        return 2;

    model.setShowConfirm(false);
    model.clean();
    HeadlessRun::waitUntil([&model] { return model.phase() != AppModel::Phase::cleaning; });

    if (parser.isSet(purge) && model.lastResult() && !model.lastResult()->trashedURLs.empty()) {
        model.purgeLastTrashed();
        HeadlessRun::waitUntil([&model] { return !model.purgeMessage().isEmpty(); });
    }
    if (asJson) {
        report.insert("result", CleanReport::resultJson(model));
        out << QJsonDocument(report).toJson(QJsonDocument::Compact) << '\n';
    } else {
        out << '\n' << CleanReport::result(model);
        if (!model.purgeMessage().isEmpty())
            out << model.purgeMessage() << '\n';
    }
    out.flush();
    return model.lastResult() && !model.lastResult()->failures.empty() ? 1 : 0;
}
