#include "platform/foundation/JSONDecoder.hpp"
#include "platform/foundation/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto {

std::filesystem::path WidgetSnapshot::realHome(const HomeLookup& lookup) {
    return lookup.home();
}

std::filesystem::path WidgetSnapshot::folder(const HomeLookup& lookup) {
    return realHome(lookup) / "Library/Application Support/Zelto";
}

std::filesystem::path WidgetSnapshot::url(const HomeLookup& lookup) {
    return folder(lookup) / "widget.json";
}

std::optional<WidgetSnapshot> WidgetSnapshot::load(const HomeLookup& lookup) {
    const auto bytes = readFile(url(lookup));
    if (!bytes) return std::nullopt;
    return decodeJSON<WidgetSnapshot>(*bytes);
}

void WidgetSnapshot::save(const HomeLookup& lookup) const {
    std::error_code ignored;
    std::filesystem::create_directories(folder(lookup), ignored);
    if (const auto document = encodeJSON(*this)) writeFileAtomically(url(lookup), *document);
}

}  // namespace zelto
