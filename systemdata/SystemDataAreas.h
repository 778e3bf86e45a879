#pragma once
// The System Data catalogue as this system measures and acts on it: every entry's own
// folders followed by its Linux folders, and its action kept only where Linux has a
// command of the same meaning; where it has none, the reason stands as the entry's
// note instead. The catalogue itself stays as written.

#include "systemdata/SystemDataEntry.h"

#include <string>
#include <vector>

namespace SystemDataAreas {

// The twelve entries in catalogue order; built once, thread-safe.
const std::vector<SystemDataEntry>& entries();

// "" when the entry's action can run here, otherwise one line naming the tool that
// is missing. Looks on the children's search path without starting a process.
std::string unavailableReason(const SystemDataEntry& entry);

} // namespace SystemDataAreas
