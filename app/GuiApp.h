#pragma once
// The windowed application: one QGuiApplication, the shared model, and the QML window.

namespace GuiApp {

// True when the command line asks for the window rather than a headless command: no
// arguments, or only the window's own options.
bool wanted(int argc, char* argv[]);

// Runs the window until it is closed and returns the process's exit status.
// Options (not advertised): --screenshot-dir DIR scans, saves PNGs of the window before,
// during and after the scan into DIR, then closes the window.
int run(int argc, char* argv[]);

} // namespace GuiApp
