#include "ui/UiServices.h"

#include "ui/FileIconProvider.h"
#include "ui/Platform.h"
#include "ui/SymbolImageProvider.h"

#include <QQmlEngine>

namespace UiServices {

void install(QQmlEngine& engine) {
    // The engine takes ownership of the providers.
    engine.addImageProvider(QStringLiteral("symbol"), new SymbolImageProvider);
    engine.addImageProvider(QStringLiteral("fileicon"), new FileIconProvider);
    // Read the desktop's motion setting now rather than in the middle of a first frame.
    Platform::instance();
}

} // namespace UiServices
