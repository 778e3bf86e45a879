#pragma once

#include <string>
#include <string_view>

enum class Risk { safe, caution, review };

namespace Risks {

// Localised: "Safe", "Caution", "Review".
std::string label(Risk risk);

// The case name: "safe", "caution", "review".
std::string_view name(Risk risk);

} // namespace Risks
