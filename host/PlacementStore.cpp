#include "host/PlacementStore.hpp"

#include <set>

#include "platform/foundation/Files.hpp"
#include "platform/foundation/JSONDecoder.hpp"
#include "platform/foundation/JSONEncoder.hpp"

namespace zelto::host {
namespace {

/// Bytes; a larger file counts as one that cannot be read.
constexpr std::size_t largestFile = std::size_t{1} << 20;

/// Absent when a text is not UTF-8.
std::optional<std::string> documentOf(const std::vector<PlacedWidget>& widgets) {
    std::string out = "{\"widgets\": [";
    const char* separator = "\n  ";
    for (const PlacedWidget& widget : widgets) {
        const auto line = encodeJSON(widget);
        if (!line) return std::nullopt;
        out += separator + *line;
        separator = ",\n  ";
    }
    return out + "\n]}\n";
}

/// What is wrong with widgets that decoded, or nothing.
std::string faultOf(const std::vector<PlacedWidget>& widgets) {
    std::set<std::string> ids;
    for (std::size_t i = 0; i < widgets.size(); ++i) {
        const auto [column, row] = widgets[i].cell();
        const std::string place = "widgets[" + std::to_string(i) + "].";
        if (!ids.insert(widgets[i].id).second) return place + "id: '" + widgets[i].id + "' is there twice";
        if (column < 0 || column > farthestTile) return place + "column: must lie between 0 and 1000";
        if (row < 0 || row > farthestTile) return place + "row: must lie between 0 and 1000";
    }
    return {};
}

}  // namespace

PlacementStore::PlacementStore(std::filesystem::path folder, std::function<void(const std::string&)> log)
    : folder_(std::move(folder)), log_(std::move(log)) {}

std::optional<std::vector<PlacedWidget>> PlacementStore::load() {
    removeLeftovers(file());
    bytes_.clear();
    const auto bytes = readFile(file(), largestFile);
    if (!bytes) {
        std::error_code error;
        if (!std::filesystem::exists(std::filesystem::symlink_status(file(), error)))
            return std::vector<PlacedWidget>();
        keepAside("it cannot be read");
        return std::nullopt;
    }
    DecodingError error;
    auto document = decodeJSON<PlacedWidgets>(*bytes, &error);
    const std::string fault = document ? faultOf(document->widgets) : error.text();
    if (!fault.empty()) {
        keepAside(fault);
        return std::nullopt;
    }
    bytes_ = *bytes;
    return std::move(document->widgets);
}

void PlacementStore::keepAside(const std::string& why) {
    std::error_code error;
    // The first free name: what was kept aside before stays too.
    std::filesystem::path aside;
    for (int i = 1; i == 1 || std::filesystem::exists(std::filesystem::symlink_status(aside, error)); ++i)
        aside = folder_ / ("desktop.broken-" + std::to_string(i) + ".json");
    std::filesystem::rename(file(), aside, error);
    log_(
        file().string() + ": " + why +
        (error ? "; it cannot be kept aside: " + error.message()
               : "; it is kept as " + aside.filename().string()));
}

bool PlacementStore::save(const std::vector<PlacedWidget>& widgets) {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    const auto bytes = documentOf(widgets);
    if (bytes && writeFileAtomically(file(), *bytes)) {
        bytes_ = *bytes;
        return true;
    }
    log_(file().string() + ": cannot be written");
    return false;
}

bool PlacementStore::wasEdited() const {
    const auto bytes = readFile(file(), largestFile);
    return bytes && *bytes != bytes_;
}

}  // namespace zelto::host
