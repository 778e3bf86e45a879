#pragma once
// A root like the one a Flatpak sandbox gives its application: the machine's folders
// as they are, and the sandbox's marker file at the top. While it exists, the calling
// thread (and every thread it starts meanwhile) sees it as "/". Needs root and a
// mount namespace of the process's own (see QuietSystemFolders.h).

#include <string>

class SandboxRoot {
public:
    SandboxRoot();
    ~SandboxRoot() { leave(); }
    SandboxRoot(const SandboxRoot&) = delete;
    SandboxRoot& operator=(const SandboxRoot&) = delete;

    // False when the root could not be built or entered: the test should skip.
    bool entered() const { return entered_; }

    // Back to the machine's root; the sandbox's mounts go away.
    void leave();

private:
    std::string top_;
    int machineRoot_ = -1;
    int workingFolder_ = -1;
    bool entered_ = false;
};
