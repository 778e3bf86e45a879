#pragma once

#include <string>

// A fresh random (version 4) UUID in its upper-case hyphenated text form,
// e.g. 6F1C2A9E-0B7D-4E55-9C1A-2D3E4F5A6B7C.
std::string makeUuid();
