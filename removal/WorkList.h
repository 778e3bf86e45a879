#pragma once
// What the user process asks veltro-helper to do, written to the helper's standard
// input: fields of raw bytes, each ended by a NUL byte, never read by a shell, the
// last one "end". The helper then keeps its input open only to learn that the user
// process stopped it or went away (end of file).
//
// clean:   "user" uid gid, "home" path, "tmp" path, "trash" path, "time" seconds,
//          then per step "move"|"delete"|"command" key payload, then "end".
// measure: per entry "du" id count path... or "count" id shell-text, then "end".
// run:     "run" shell-text, then "end".

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace WorkList {

// The helper's modes, its first command-line argument.
inline constexpr const char* cleanMode = "clean";
inline constexpr const char* measureMode = "measure";
inline constexpr const char* runMode = "run";

struct Step {
    enum class Kind { move, remove, command };
    Kind kind = Kind::move;
    std::string key;     // the answer key ("i<k>")
    std::string payload; // the item's path as recorded, or the command text

    bool operator==(const Step&) const = default;
};

struct Batch {
    uid_t uid = 0; // the user the moved items are handed to
    gid_t gid = 0;
    std::string home; // the user's home and temporary folders, for the safety check
    std::string temporary;
    std::string trash;     // the user's home trash, which receives the dated folder
    int64_t localTime = 0; // the user's wall-clock time: seconds since the epoch plus the UTC offset
    std::vector<Step> steps;

    bool operator==(const Batch&) const = default;
};

struct MeasuredEntry {
    std::string id;
    std::vector<std::string> folders; // measured with du -skx, summed in KiB
    std::string countCommand;         // when set, the entry's value is this shell command's trimmed output

    bool operator==(const MeasuredEntry&) const = default;
};

std::string encode(const Batch& batch);
std::string encode(const std::vector<MeasuredEntry>& entries);
std::string encodeRun(const std::string& shellText);

// The decoders take a whole list, "end" included; anything malformed, unknown or
// trailing gives nothing at all.
std::optional<Batch> decodeBatch(std::string_view bytes);
std::optional<std::vector<MeasuredEntry>> decodeMeasurement(std::string_view bytes);
std::optional<std::string> decodeRun(std::string_view bytes);

// On the helper's standard input a list comes after its length in decimal and a NUL
// byte, so the helper knows it has all of it while its input stays open.
std::string framed(std::string_view list);

// The list inside `bytes` once all of it has arrived; nothing while more must come,
// or, with `malformed` set, when the length is not a number or too large.
std::optional<std::string_view> unframed(std::string_view bytes, bool& malformed);

// Answer keys are short and plain, so an answer line cannot be forged by one.
bool isValidKey(std::string_view key);

} // namespace WorkList
