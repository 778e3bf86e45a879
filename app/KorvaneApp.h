#pragma once
// The application entry: one QGuiApplication, the one shared model for the life of the
// process, and the main window. It sits beside main() rather than with the model because
// it loads the QML views, which are built on the model.

namespace KorvaneApp {

// True when the command line asks for the window rather than a headless command: no
// arguments, or only the window's own options.
bool wanted(int argc, char* argv[]);

// Runs the window until it is closed and returns the process's exit status.
// Options (not advertised): --screenshot-dir DIR scans, saves PNGs of the window before,
// during and after the scan into DIR, then closes the window.
int run(int argc, char* argv[]);

} // namespace KorvaneApp
