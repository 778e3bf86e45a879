#include "app/ScanSettings.h"

#include "platform/Paths.h"

#include <QFile>
#include <QTextStream>

#include <cmath>
#include <sys/stat.h>

QCommandLineOption ScanSettings::thresholdOption() {
    return QCommandLineOption(QStringLiteral("large-threshold-gb"),
                              QStringLiteral("Minimum size of a large file in GB of 2^30 bytes (default 1)."),
                              QStringLiteral("X"));
}

QCommandLineOption ScanSettings::addRootOption() {
    return QCommandLineOption(QStringLiteral("add-root"),
                              QStringLiteral("Also search this folder for large files (repeatable)."),
                              QStringLiteral("DIR"));
}

std::optional<QString> ScanSettings::read(const QCommandLineParser& parser, ScanSettings& settings) {
    if (parser.isSet(thresholdOption())) {
        const QString text = parser.value(thresholdOption());
        bool ok = false;
        const double value = text.toDouble(&ok);
        // The largest threshold whose byte count still fits a signed 64-bit integer.
        if (!ok || !std::isfinite(value) || value < 0 || value > 8.0e9)
            return QStringLiteral("--large-threshold-gb: '%1' is not a size in GB between 0 and 8000000000").arg(text);
        settings.thresholdGB = value;
    }
    for (const QString& root : parser.values(addRootOption())) {
        const std::string raw = QFile::encodeName(root).toStdString();
        struct stat st {};
        if (raw.empty() || ::stat(raw.c_str(), &st) != 0 || !S_ISDIR(st.st_mode))
            return QStringLiteral("--add-root: '%1' is not an existing folder").arg(root);
        char* resolved = ::realpath(raw.c_str(), nullptr);
        settings.extraRoots.push_back(resolved ? std::string(resolved) : raw);
        std::free(resolved);
    }
    return std::nullopt;
}

void ScanSettings::applyTo(AppModel& model) const {
    model.setLargeThresholdGB(thresholdGB);
    model.addRoots(extraRoots);
}

int usageError(const QString& message) {
    QTextStream(stderr) << "veltro: " << message << '\n';
    return 2;
}
