#include <new>

#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto::shared {

std::filesystem::path WidgetSnapshot::realHome(const HomeLookup& lookup) {
    return lookup.home();
}

std::filesystem::path WidgetSnapshot::folder(const HomeLookup& lookup) {
    return realHome(lookup) / "Library/Application Support/Zelto";
}

std::filesystem::path WidgetSnapshot::url(const HomeLookup& lookup) {
    return folder(lookup) / "widget.json";
}

std::optional<WidgetSnapshot> WidgetSnapshot::read(const HomeLookup& lookup) {
    const auto bytes = readFile(url(lookup), largestDocument);
    if (!bytes) return std::nullopt;
    auto snapshot = records::decodeJSON<WidgetSnapshot>(*bytes);
    if (!snapshot) return std::nullopt;
    return *std::move(snapshot);
}

std::optional<WidgetSnapshot> WidgetSnapshot::load(const HomeLookup& lookup) {
    try {
        return read(lookup);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

void WidgetSnapshot::save(const HomeLookup& lookup) const {
    makePrivateFolder(folder(lookup));
    removeLeftovers(url(lookup));
    if (const auto document = records::encodeJSON(*this))
        static_cast<void>(writeFileAtomically(url(lookup), *document, {.readers = Readers::owner}));
}

}  // namespace zelto::shared
