#pragma once
// Where Linux keeps what each System Data entry stands for: folders appended, on this
// system, to the entry's own and measured with them. "~" stands for the home folder.

#include <string>
#include <string_view>
#include <vector>

namespace LinuxSystemDataFolders {

// The Linux folders of the entry with this id, in order; none for an unknown id.
const std::vector<std::string>& of(std::string_view entryID);

} // namespace LinuxSystemDataFolders
