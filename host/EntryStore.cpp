#include "host/EntryStore.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <system_error>

#include "DrawingMark.hpp"
#include "foundation/Files.hpp"

namespace zelto::host {
namespace {

/// Bytes; a larger file counts as none.
constexpr std::size_t largestFile = std::size_t{2} << 20;

/// Kinds come from a file that a person edits: anything but letters and digits is spelled out.
std::string spelled(std::string_view text) {
    constexpr const char* digits = "0123456789abcdef";
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-') {
            out += c;
        } else {
            out += '_';
            out += digits[byte >> 4];
            out += digits[byte & 15];
        }
    }
    return out;
}

/// What a look's file is called beside others.
std::string nameOf(const Look& look) {
    return spelled(look.kind) + "." + std::string(records::nameOf(look.family));
}

constexpr std::array suffixes{".1.json", ".2.json"};
std::filesystem::path withSuffix(std::filesystem::path path, const char* suffix) {
    path += suffix;
    return path;
}

constexpr const char* markName = "drawing";

}  // namespace

std::optional<std::string> EntryStore::dropUnfinished() {
    makeFolder();
    mark_ = DrawingMark::at(folder_ / markName);
    const auto name = mark_ ? mark_->cause() : std::nullopt;
    // Whatever the page says, nothing beyond the folder is meant.
    if (!name || std::filesystem::path(*name).filename() != *name) return std::nullopt;
    bool isAny = false;
    std::error_code error;
    for (const char* suffix : suffixes)
        isAny = std::filesystem::remove(withSuffix(folder_ / *name, suffix), error) || isAny;
    return isAny ? name : std::nullopt;
}

void EntryStore::makeFolder() const {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    // It may hold what was copied to the clipboard.
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
}

void EntryStore::whileDrawing(const Look& look, const std::function<void()>& draw) const {
    if (mark_)
        mark_->during(nameOf(look), draw);
    else
        draw();
}

std::array<std::filesystem::path, 2> EntryStore::filesOf(const Look& look) const {
    const auto stem = folder_ / nameOf(look);
    std::array files{withSuffix(stem, suffixes[0]), withSuffix(stem, suffixes[1])};
    // Both are there only when a death came between the writing of one and the removal of the other.
    std::error_code error;
    if (std::filesystem::last_write_time(files[0], error) < std::filesystem::last_write_time(files[1], error))
        std::swap(files[0], files[1]);
    return files;
}

std::optional<widgetkit::ArchivedTimeline> EntryStore::load(const Look& look) const {
    for (const auto& file : filesOf(look)) {
        const auto line = readFile(file, largestFile);
        if (!line) continue;
        // What a loss of power has cut short is none.
        if (auto reply = widgetkit::decodeReply(*line); reply && reply->timeline)
            return std::move(reply->timeline);
    }
    return std::nullopt;
}

Result<void> EntryStore::save(const Look& look, std::string_view line) const {
    if (line.size() > largestFile) return Fault{.reason = "larger than 2 MiB"};
    makeFolder();
    const auto [newest, other] = filesOf(look);
    std::error_code error;
    const bool replaces = std::filesystem::exists(newest, error);
    const auto& target = replaces ? other : newest;
    // In a vacant place, and whole: the newest one stays until this one stands.
    std::filesystem::remove(target, error);
    if (const auto written = writeFileAtomically(
            target, line, {.durability = Durability::processDeath, .readers = Readers::owner});
        !written)
        return Fault{.path = target.string(), .reason = "cannot be written: " + written.fault().reason};
    if (replaces) std::filesystem::remove(newest, error);
    return {};
}

void EntryStore::keepOnly(const std::set<Look>& looks) const {
    std::set<std::filesystem::path> kept{folder_ / markName};
    for (const Look& look : looks)
        for (const char* suffix : suffixes) kept.insert(withSuffix(folder_ / nameOf(look), suffix));
    std::error_code error;
    std::vector<std::filesystem::path> others;
    for (std::filesystem::directory_iterator entry(folder_, error), end; entry != end && !error;
         entry.increment(error))
        if (!kept.contains(entry->path())) others.push_back(entry->path());
    for (const auto& other : others) std::filesystem::remove(other, error);
}

}  // namespace zelto::host
