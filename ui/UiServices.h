#pragma once
// Everything a QML engine needs from C++ before it loads the window: the import path
// of the statically linked module and the image providers "symbol"
// (SymbolImageProvider) and "fileicon" (FileIconProvider).

class QQmlEngine;

namespace UiServices {

// Call once per engine, before loading any QML of the module.
void install(QQmlEngine& engine);

} // namespace UiServices
