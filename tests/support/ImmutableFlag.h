#pragma once
// The immutable attribute, which refuses every change to an entry, root's included:
// how a test makes something root may not touch.

#include <string>

// Sets or clears the flag on `path` (a final link is not followed); false when the
// file system or the caller's rights do not allow it.
bool setImmutable(const std::string& path, bool on);
