#include "removal/WorkList.h"

#include "platform/Date.h"

#include <charconv>
#include <chrono>

namespace WorkList {

namespace {

constexpr std::string_view endField = "end";
// More folders than any entry has, and far more bytes than any clean's list.
constexpr size_t maxFolders = 4096;
constexpr size_t maxListBytes = size_t{64} << 20;
// The dated folder's stamp is a Date, nanoseconds in 64 bits: a time beyond what it
// holds would overflow on the way there.
constexpr int64_t maxTimeSeconds =
    std::chrono::duration_cast<std::chrono::seconds>(Date::duration::max()).count();

void add(std::string& out, std::string_view field) {
    out.append(field);
    out.push_back('\0');
}

template <typename Number> void addNumber(std::string& out, Number value) {
    add(out, std::to_string(value));
}

// Reads the fields of a list one at a time; every field must end with a NUL byte.
class Fields {
public:
    explicit Fields(std::string_view bytes) : bytes_(bytes) {}

    std::optional<std::string_view> next() {
        const size_t end = bytes_.find('\0', position_);
        if (end == std::string_view::npos)
            return std::nullopt;
        const std::string_view field = bytes_.substr(position_, end - position_);
        position_ = end + 1;
        return field;
    }

    // The "end" field and nothing after it.
    bool atEnd() const { return position_ == bytes_.size(); }

    template <typename Number> std::optional<Number> number() {
        const auto field = next();
        if (!field || field->empty())
            return std::nullopt;
        Number value{};
        const auto [rest, error] = std::from_chars(field->data(), field->data() + field->size(), value);
        if (error != std::errc() || rest != field->data() + field->size())
            return std::nullopt;
        return value;
    }

    bool expect(std::string_view tag) { return next() == tag; }

private:
    std::string_view bytes_;
    size_t position_ = 0;
};

bool isValidPayload(std::string_view payload) {
    return !payload.empty();
}

const char* tagOf(Step::Kind kind) {
    switch (kind) {
    case Step::Kind::move:
        return "move";
    case Step::Kind::remove:
        return "delete";
    case Step::Kind::command:
        return "command";
    }
    return "";
}

std::optional<Step::Kind> kindOf(std::string_view tag) {
    for (Step::Kind kind : {Step::Kind::move, Step::Kind::remove, Step::Kind::command})
        if (tag == tagOf(kind))
            return kind;
    return std::nullopt;
}

} // namespace

bool isValidKey(std::string_view key) {
    if (key.empty() || key.size() > 32)
        return false;
    for (const char c : key) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                           c == '.' || c == '_' || c == '-';
        if (!plain)
            return false;
    }
    return true;
}

std::string framed(std::string_view list) {
    std::string out;
    addNumber(out, list.size());
    out.append(list);
    return out;
}

std::optional<std::string_view> unframed(std::string_view bytes, bool& malformed) {
    malformed = false;
    const size_t end = bytes.find('\0');
    if (end == std::string_view::npos) {
        malformed = bytes.size() > 20;
        return std::nullopt;
    }
    size_t length = 0;
    const auto [rest, error] = std::from_chars(bytes.data(), bytes.data() + end, length);
    if (end == 0 || error != std::errc() || rest != bytes.data() + end || length > maxListBytes) {
        malformed = true;
        return std::nullopt;
    }
    if (bytes.size() - end - 1 < length)
        return std::nullopt;
    return bytes.substr(end + 1, length);
}

std::string encode(const Batch& batch) {
    std::string out;
    add(out, "user");
    addNumber(out, batch.uid);
    addNumber(out, batch.gid);
    add(out, "home");
    add(out, batch.home);
    add(out, "tmp");
    add(out, batch.temporary);
    add(out, "trash");
    add(out, batch.trash);
    add(out, "time");
    addNumber(out, batch.localTime);
    for (const Step& step : batch.steps) {
        add(out, tagOf(step.kind));
        add(out, step.key);
        add(out, step.payload);
    }
    add(out, endField);
    return out;
}

std::string encode(const std::vector<MeasuredEntry>& entries) {
    std::string out;
    for (const MeasuredEntry& entry : entries) {
        if (!entry.countCommand.empty()) {
            add(out, "count");
            add(out, entry.id);
            add(out, entry.countCommand);
            continue;
        }
        add(out, "du");
        add(out, entry.id);
        addNumber(out, entry.folders.size());
        for (const std::string& folder : entry.folders)
            add(out, folder);
    }
    add(out, endField);
    return out;
}

std::string encodeRun(const std::string& shellText) {
    std::string out;
    add(out, "run");
    add(out, shellText);
    add(out, endField);
    return out;
}

std::optional<Batch> decodeBatch(std::string_view bytes) {
    Fields fields(bytes);
    Batch batch;
    if (!fields.expect("user"))
        return std::nullopt;
    const auto uid = fields.number<uid_t>();
    const auto gid = fields.number<gid_t>();
    if (!uid || !gid)
        return std::nullopt;
    batch.uid = *uid;
    batch.gid = *gid;
    for (auto [tag, into] : {std::pair{"home", &batch.home}, std::pair{"tmp", &batch.temporary},
                             std::pair{"trash", &batch.trash}}) {
        const auto value = fields.expect(tag) ? fields.next() : std::nullopt;
        if (!value || !isValidPayload(*value))
            return std::nullopt;
        *into = std::string(*value);
    }
    const auto time = fields.expect("time") ? fields.number<int64_t>() : std::nullopt;
    if (!time || *time > maxTimeSeconds || *time < -maxTimeSeconds)
        return std::nullopt;
    batch.localTime = *time;
    for (;;) {
        const auto tag = fields.next();
        if (!tag)
            return std::nullopt;
        if (*tag == endField)
            return fields.atEnd() ? std::optional<Batch>(std::move(batch)) : std::nullopt;
        const auto kind = kindOf(*tag);
        const auto key = fields.next();
        const auto payload = fields.next();
        if (!kind || !key || !payload || !isValidKey(*key) || !isValidPayload(*payload))
            return std::nullopt;
        batch.steps.push_back({*kind, std::string(*key), std::string(*payload)});
    }
}

std::optional<std::vector<MeasuredEntry>> decodeMeasurement(std::string_view bytes) {
    Fields fields(bytes);
    std::vector<MeasuredEntry> entries;
    for (;;) {
        const auto tag = fields.next();
        if (!tag)
            return std::nullopt;
        if (*tag == endField)
            return fields.atEnd() ? std::optional(std::move(entries)) : std::nullopt;
        const auto id = fields.next();
        if (!id || !isValidKey(*id))
            return std::nullopt;
        MeasuredEntry entry;
        entry.id = std::string(*id);
        if (*tag == "count") {
            const auto command = fields.next();
            if (!command || !isValidPayload(*command))
                return std::nullopt;
            entry.countCommand = std::string(*command);
        } else if (*tag == "du") {
            const auto count = fields.number<size_t>();
            if (!count || *count > maxFolders)
                return std::nullopt;
            for (size_t i = 0; i < *count; ++i) {
                const auto folder = fields.next();
                if (!folder || !isValidPayload(*folder))
                    return std::nullopt;
                entry.folders.emplace_back(*folder);
            }
        } else {
            return std::nullopt;
        }
        entries.push_back(std::move(entry));
    }
}

std::optional<std::string> decodeRun(std::string_view bytes) {
    Fields fields(bytes);
    if (!fields.expect("run"))
        return std::nullopt;
    const auto text = fields.next();
    if (!text || !fields.expect(endField) || !fields.atEnd())
        return std::nullopt;
    return std::string(*text);
}

} // namespace WorkList
