#pragma once
// The words of this system: the texts in the code are the catalogue's English
// sentences, some naming what only the other platform has (its disk name, its file
// viewer, its settings, its snapshots and indexes). A Linux English translation gives
// each of those its Linux sentence and counts their singular forms. The C++ texts
// (context "Veltro") and QML's qsTr() (one context per file) find the same
// translation, because it is looked up by sentence whatever the context.

class QCoreApplication;

namespace LinuxWording {

// Installs the translation into `app` before any other, so that a translation into
// another language installed later still wins, and routes the engine's texts through
// Qt's translation. Call before the first text is read. False when the translation
// could not be loaded (the texts then read as written).
bool install(QCoreApplication& app);

} // namespace LinuxWording
