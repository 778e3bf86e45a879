#pragma once
// Option values as the exact bytes the shell passed. Qt decodes the command line as
// text, which turns a byte that is not UTF-8 into U+FFFD; a file name with such a
// byte would then name a different file (or none).

#include <string>
#include <string_view>
#include <vector>

namespace RawArguments {

// The values of the long option `name` (e.g. "--item"), given as "--item VALUE" or
// "--item=VALUE", in order, up to a "--" that ends the options.
std::vector<std::string> values(int argc, const char* const* argv, std::string_view name);

} // namespace RawArguments
