#pragma once

#include "systemdata/SystemDataEntry.h"

#include <vector>

namespace SystemDataCatalog {

// The twelve entries in catalogue order; built once, thread-safe.
const std::vector<SystemDataEntry>& entries();

} // namespace SystemDataCatalog
