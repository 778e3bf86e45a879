#include "platform/TrashInfo.h"

#include "platform/Text.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace TrashInfo {

namespace {

bool isKeptAsIs(unsigned char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'))
        return true;
    return std::string_view("-_.!~*'():@&=+$,;/").find(static_cast<char>(c)) != std::string_view::npos;
}

int writeAll(int fd, const std::string& content) {
    size_t written = 0;
    while (written < content.size()) {
        const ssize_t n = ::write(fd, content.data() + written, content.size() - written);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        written += static_cast<size_t>(n);
    }
    return 0;
}

} // namespace

std::string encodePath(std::string_view path) {
    static constexpr char hex[] = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(path.size());
    for (const char byte : path) {
        const auto c = static_cast<unsigned char>(byte);
        if (isKeptAsIs(c)) {
            encoded += byte;
        } else {
            encoded += '%';
            encoded += hex[c >> 4];
            encoded += hex[c & 0x0F];
        }
    }
    return encoded;
}

std::tm localTime(Date date) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(date).time_since_epoch().count();
    const std::time_t t = static_cast<std::time_t>(seconds);
    // localtime_r reads TZ only once per process; a changed zone must count.
    ::tzset();
    std::tm local{};
    ::localtime_r(&t, &local);
    return local;
}

std::string text(std::string_view originalPath, Date deletedAt) {
    const std::tm local = localTime(deletedAt);
    char date[64];
    std::snprintf(date, sizeof date, "%04d-%02d-%02dT%02d:%02d:%02d", local.tm_year + 1900, local.tm_mon + 1,
                  local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
    return "[Trash Info]\nPath=" + encodePath(originalPath) + "\nDeletionDate=" + date + "\n";
}

std::string candidateName(const std::string& name, unsigned number) {
    const std::string suffix = number == 0 ? std::string() : " " + std::to_string(number);
    const size_t limit = NAME_MAX - kSuffix.size();
    const size_t room = limit > suffix.size() ? limit - suffix.size() : 0;
    return Text::prefixWithinBytes(name, room) + suffix;
}

int create(int infoFd, const std::string& name, const std::string& content, uid_t owner, gid_t group) {
    const std::string file = name + std::string(kSuffix);
    const int fd = ::openat(infoFd, file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0)
        return errno;
    int error = 0;
    // O_EXCL made this file ours, so handing it over cannot reach anything else.
    if (::geteuid() != owner && ::fchown(fd, owner, group) != 0)
        error = errno;
    if (error == 0)
        error = writeAll(fd, content);
    if (::close(fd) != 0 && error == 0)
        error = errno;
    if (error != 0)
        ::unlinkat(infoFd, file.c_str(), 0);
    return error;
}

void remove(int infoFd, const std::string& name) {
    ::unlinkat(infoFd, (name + std::string(kSuffix)).c_str(), 0);
}

} // namespace TrashInfo
