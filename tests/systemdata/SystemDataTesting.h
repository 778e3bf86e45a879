#pragma once
// Shared by the System Data suites: one fake home per process (the home folder is
// read once), and the stand-in authorisation tools.

#include "support/AuthorizationToolStandIn.h"
#include "support/FakeHome.h"

inline const FakeHome& sharedHome() {
    static const FakeHome home;
    return home;
}
