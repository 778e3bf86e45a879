#pragma once
// One fake home for the whole catalogue test process. The home and temporary folders
// are read once per process, so every test asks for this same home before touching
// the catalogue; that holds whether ctest runs each test alone or the binary runs all.

#include "support/FakeHome.h"

inline const FakeHome& catalogueHome() {
    static const FakeHome home;
    return home;
}
