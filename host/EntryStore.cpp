#include "host/EntryStore.hpp"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>

#include <system_error>

#include "DrawingMark.hpp"
#include "foundation/Files.hpp"

namespace zelto::host {
namespace {

/// Bytes; a larger file counts as none.
constexpr std::size_t largestFile = std::size_t{2} << 20;

/// Ids come from a file that a person edits: anything but letters and digits is spelled out.
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

constexpr const char* markName = "drawing";

}  // namespace

std::optional<std::string> EntryStore::dropUnfinished() {
    makeFolder();
    mark_ = DrawingMark::at(folder_ / markName);
    const auto name = mark_ ? mark_->cause() : std::nullopt;
    std::error_code error;
    // Whatever the page says, nothing beyond the folder is meant.
    if (name && std::filesystem::path(*name).filename() == *name &&
        std::filesystem::remove(folder_ / *name, error))
        return name;
    return std::nullopt;
}

void EntryStore::makeFolder() const {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    // It may hold what was copied to the clipboard.
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
}

void EntryStore::whileDrawing(const PlacedWidget& widget, const std::function<void()>& draw) const {
    if (mark_)
        mark_->during(fileOf(widget).filename().string(), draw);
    else
        draw();
}

std::filesystem::path EntryStore::fileOf(const PlacedWidget& widget) const {
    return folder_ / (spelled(widget.id) + "." + spelled(widget.kind) + "." +
                      std::string(records::nameOf(widget.family)) + ".json");
}

std::optional<widgetkit::ArchivedTimeline> EntryStore::load(const PlacedWidget& widget) const {
    const auto line = readFile(fileOf(widget), largestFile);
    if (!line) return std::nullopt;
    auto reply = widgetkit::decodeReply(*line);
    if (!reply) return std::nullopt;
    return std::move(reply->timeline);
}

Result<void> EntryStore::save(const PlacedWidget& widget, std::string_view line) const {
    if (line.size() > largestFile) return Fault{.reason = "larger than 2 MiB"};
    makeFolder();
    const auto file = fileOf(widget);
    if (!writeFileAtomically(file, line, {.durability = Durability::processDeath, .readers = Readers::owner}))
        return Fault{.path = file.string(), .reason = "cannot be written"};
    return {};
}

void EntryStore::keepOnly(const std::vector<PlacedWidget>& widgets) const {
    std::set<std::filesystem::path> kept{folder_ / markName};
    for (const PlacedWidget& widget : widgets) kept.insert(fileOf(widget));
    std::error_code error;
    std::vector<std::filesystem::path> others;
    for (std::filesystem::directory_iterator entry(folder_, error), end; entry != end && !error;
         entry.increment(error))
        if (!kept.contains(entry->path())) others.push_back(entry->path());
    for (const auto& other : others) std::filesystem::remove(other, error);
}

}  // namespace zelto::host
