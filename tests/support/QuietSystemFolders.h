#pragma once
// A scan looks at the machine's own junk folders (system logs and caches, crash dumps,
// other drives' trash folders) and a clean of what it found removes from them. Tests
// must neither depend on what this machine keeps there nor touch it.

// Once per process: moves the calling thread (and every thread and child it starts
// later) into a mount namespace of its own in which each of those folders that exists
// is an empty tmpfs. False where that is not permitted (not root): the folders then
// stay as they are, and an unprivileged clean cannot change them.
bool quietSystemFolders();
