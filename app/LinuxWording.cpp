#include "app/LinuxWording.h"

#include "platform/Localized.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QTranslator>

namespace {

constexpr const char* context = "Veltro";

// Every message of the file is in the one context; the caller's is ignored.
class AnyContextTranslator : public QTranslator {
public:
    using QTranslator::QTranslator;
    QString translate(const char*, const char* sourceText, const char* disambiguation, int n) const override {
        return QTranslator::translate(context, sourceText, disambiguation, n);
    }
};

// The installed copy when the application runs from its package, else the one built in.
QString translationFile() {
    const QString installed =
        QCoreApplication::applicationDirPath() + QStringLiteral("/../share/veltro/translations/linux_en.qm");
    return QFileInfo::exists(installed) ? installed : QStringLiteral(":/translations/linux_en.qm");
}

} // namespace

namespace LinuxWording {

bool install(QCoreApplication& app) {
    installTranslator([](std::string_view key) {
        const std::string text(key);
        return QCoreApplication::translate(context, text.c_str()).toStdString();
    });
    auto* translator = new AnyContextTranslator(&app);
    if (!translator->load(translationFile())) {
        delete translator;
        return false;
    }
    return QCoreApplication::installTranslator(translator);
}

} // namespace LinuxWording
