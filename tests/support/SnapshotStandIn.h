#pragma once
// The body of a stand-in `snapper` that has a configuration for the root file system
// holding `count` snapshots (number 0, the running system, is always listed).

#include <string>

inline std::string snapperWithSnapshots(int count) {
    std::string numbers = "number\\n0\\n";
    for (int n = 1; n <= count; ++n)
        numbers += std::to_string(n) + "\\n";
    return "case \"$*\" in\n\"-c root list\") exit 0 ;;\n*--columns\\ number) printf '" + numbers +
           "' ;;\nesac";
}
