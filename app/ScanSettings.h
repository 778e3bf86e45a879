#pragma once
// The scan options both headless commands accept: the large-file threshold and
// extra search folders.

#include "model/AppModel.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QString>

#include <optional>
#include <string>
#include <vector>

struct ScanSettings {
    double thresholdGB = 1.0;
    std::vector<std::string> extraRoots; // raw absolute paths

    static QCommandLineOption thresholdOption();
    static QCommandLineOption addRootOption();

    // Reads the options from a parser that has processed the arguments; on a bad value
    // returns a one-line message naming the argument.
    static std::optional<QString> read(const QCommandLineParser& parser, ScanSettings& settings);

    void applyTo(AppModel& model) const;
};

// Prints "veltro: <message>" on stderr; returns the exit status for bad arguments (2).
int usageError(const QString& message);
