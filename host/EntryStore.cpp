#include "host/EntryStore.hpp"

#include <algorithm>
#include <set>

#include "platform/foundation/Files.hpp"
#include "platform/foundation/JSONDecoder.hpp"
#include "platform/foundation/JSONEncoder.hpp"

namespace zelto::host {

struct StoredTimeline {
    std::string kind;
    WidgetFamily family;
    ArchivedTimeline timeline;
};

}  // namespace zelto::host

ZELTO_RECORD(zelto::host::StoredTimeline, kind, family, timeline);

namespace zelto::host {

namespace {

/// Bytes; a larger file counts as none.
constexpr std::size_t largestFile = std::size_t{2} << 20;

}  // namespace

/// Ids come from a file that a person edits: anything but letters and digits is spelled out.
std::filesystem::path EntryStore::fileOf(const PlacedWidget& widget) const {
    constexpr const char* digits = "0123456789abcdef";
    std::string name;
    for (const char c : widget.id) {
        const auto byte = static_cast<unsigned char>(c);
        if ((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || c == '-') {
            name += c;
        } else {
            name += '_';
            name += digits[byte >> 4];
            name += digits[byte & 15];
        }
    }
    return folder_ / (name + ".json");
}

std::optional<ArchivedTimeline> EntryStore::load(const PlacedWidget& widget) const {
    const auto bytes = readFile(fileOf(widget), largestFile);
    if (!bytes) return std::nullopt;
    auto stored = decodeJSON<StoredTimeline>(*bytes);
    if (!stored || stored->kind != widget.kind || stored->family != widget.family) return std::nullopt;
    const auto& entries = stored->timeline.entries;
    if (std::ranges::any_of(
            entries, [](const ArchivedEntry& entry) { return faultOf(entry.view).has_value(); }))
        return std::nullopt;
    return std::move(stored->timeline);
}

bool EntryStore::save(const PlacedWidget& widget, const ArchivedTimeline& timeline) const {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    // It may hold what was copied to the clipboard.
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all, error);
    const auto bytes = encodeJSON(StoredTimeline{widget.kind, widget.family, timeline});
    return bytes && bytes->size() <= largestFile &&
           writeFileAtomically(
               fileOf(widget), *bytes, {.durability = Durability::processDeath, .readers = Readers::owner});
}

void EntryStore::keepOnly(const std::vector<PlacedWidget>& widgets) const {
    std::set<std::filesystem::path> kept;
    for (const PlacedWidget& widget : widgets) kept.insert(fileOf(widget));
    std::error_code error;
    std::vector<std::filesystem::path> others;
    for (std::filesystem::directory_iterator entry(folder_, error), end; entry != end && !error;
         entry.increment(error))
        if (!kept.contains(entry->path())) others.push_back(entry->path());
    for (const auto& other : others) std::filesystem::remove(other, error);
}

}  // namespace zelto::host
