#include "Input.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Failure.hpp"
#include "foundation/FileDescriptor.hpp"
#include "foundation/ISO8601.hpp"

namespace zelto::cli {
namespace {

std::string readAll(int fd, const std::string& name, std::size_t mostBytes) {
    std::string out;
    // A file's size is known: a large one is then held once.
    struct stat status {};
    if (fstat(fd, &status) == 0 && status.st_size > 0)
        out.reserve(std::min(static_cast<std::size_t>(status.st_size), mostBytes));
    std::array<char, 64 * 1024> buffer;
    while (true) {
        const ssize_t count = read(fd, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw Failure(name + ": " + std::strerror(errno));
        if (count == 0) return out;
        out.append(buffer.data(), static_cast<std::size_t>(count));
        if (out.size() > mostBytes) return out;
    }
}

void writeAll(int fd, std::string_view bytes, const std::string& name) {
    while (!bytes.empty()) {
        const ssize_t count = write(fd, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw Failure(name + ": " + std::strerror(errno));
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace

std::string readInput(const std::string& path, std::size_t mostBytes) {
    if (path == "-") return readAll(STDIN_FILENO, "standard input", mostBytes);
    const FileDescriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!fd) throw Failure(path + ": " + std::strerror(errno));
    return readAll(fd.get(), path, mostBytes);
}

void writeOutput(const std::string& path, const std::string& bytes) {
    if (path == "-") {
        writeAll(STDOUT_FILENO, bytes, "standard output");
        return;
    }
    const FileDescriptor fd(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!fd) throw Failure(path + ": " + std::strerror(errno));
    writeAll(fd.get(), bytes, path);
}

Date parseDate(const std::string& text, const std::string& option) {
    if (const auto date = parseISO8601(text)) return *date;
    double seconds = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (error == std::errc() && end == text.data() + text.size() && std::isfinite(seconds)) return {seconds};
    throw Failure(
        option + ": '" + text + "' is neither a date like 2026-03-11T14:05:00-03:00 nor seconds since 2001");
}

widgetkit::WidgetFamily parseFamily(const std::string& text) {
    if (const auto family = widgetkit::familyCalled(text)) return *family;
    throw Failure("--family: '" + text + "' is not small, medium or large");
}

std::string familyName(widgetkit::WidgetFamily family) {
    return std::string(widgetkit::shortNameOf(family));
}

std::string familyNames(const std::vector<widgetkit::WidgetFamily>& offered) {
    std::string out;
    for (const widgetkit::WidgetFamily family : offered)
        out += (out.empty() ? "" : ", ") + familyName(family);
    return out;
}

}  // namespace zelto::cli
