#pragma once
// Writes a synthetic tree below a root, the same every time: folders made as
// needed, files of a seeded mix of sizes (some empty, most small, one in a hundred
// of 70,000 bytes), links and preallocated large files, counting every entry made.
// Any failure ends the program with a message.

#include <cstdint>
#include <string>

class TreeWriter {
public:
    // Files are empty `emptyPercent` of the time and small ones hold 1 to
    // `smallMaxBytes` bytes.
    TreeWriter(std::string root, uint64_t seed, uint32_t emptyPercent, uint32_t smallMaxBytes);

    void folders(const std::string& relative); // mkdir -p; "" is the root itself
    void file(const std::string& relative);    // parents made as needed
    void symlink(const std::string& relative, const std::string& target);
    void bigFile(const std::string& relative, int64_t bytes); // allocated, not written

    // The generator's next value, for names.
    uint32_t next();
    int64_t entries() const { return entries_; }

private:
    std::string full(const std::string& relative) const;
    [[noreturn]] void fail(const char* what, const std::string& relative) const;

    std::string root_;
    std::string data_;
    uint64_t state_;
    uint32_t emptyPercent_;
    uint32_t smallMaxBytes_;
    int64_t entries_ = 0;
};

// `value` as `digits` lower-case hexadecimal digits.
std::string hex(uint32_t value, int digits);
