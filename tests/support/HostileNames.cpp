#include "support/HostileNames.h"

const std::vector<std::string>& hostileNames() {
    static const std::vector<std::string> names = {
        "it's",
        "say \"hi\"",
        "back\\slash",
        "$(touch PWNED)",
        "`touch PWNED`",
        "$DEST",
        "semi;colon & amp | pipe",
        "new\nline",
        "\n",
        "ends in newline\n",
        "-rf",
        "--",
        "-",
        " leading and trailing ",
        "*",
        "~",
        "name 1",
        "100% sure",
        "bad \xff\xfe utf8 \xc3",
        "caf\xc3\xa9 \xe2\x80\x94 \xf0\x9f\x98\x80",
        std::string(255, 'L'),
        std::string(253, 'e') + "\xc3\xa9",
        std::string(126, 'M') + "\xc3\xa9" + std::string(127, 'M'),
    };
    return names;
}
