#include "ui/UiServices.h"

#include "ui/FileIconProvider.h"
#include "ui/Platform.h"
#include "ui/SymbolImageProvider.h"

#include <QQmlEngine>

namespace UiServices {

void install(QQmlEngine& engine) {
    // The module is linked in statically: its qmldir lives in the resources, under
    // :/Veltro/, which Qt 6.4 does not search by default.
    engine.addImportPath(QStringLiteral("qrc:/"));
    // The engine takes ownership of the providers.
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
    engine.addImageProvider(QStringLiteral("fileicon"), new FileIconProvider);
    // Read the desktop's motion setting now rather than in the middle of a first frame.
    Platform::instance();
}

} // namespace UiServices
