#pragma once

#include <string>
#include <string_view>

// One shell word for any value: a single quote, the value with every ' written as
// the four characters '\'' , a single quote. Bytes pass through unchanged.
std::string shellQuote(std::string_view value);
