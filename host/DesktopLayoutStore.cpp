#include "host/DesktopLayoutStore.hpp"

#include <optional>
#include <set>

#include <system_error>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::host {
namespace {

/// Bytes; a larger file counts as one that cannot be read.
constexpr std::size_t largestFile = std::size_t{1} << 20;

/// Absent when a text is not UTF-8.
std::optional<std::string> documentOf(const DesktopLayout& layout) {
    std::string out = "{\"widgets\": [";
    const char* separator = "\n  ";
    for (const PlacedWidget& widget : layout.widgets) {
        const auto line = records::encodeJSON(widget);
        if (!line) return std::nullopt;
        out += separator + *line;
        separator = ",\n  ";
    }
    out += "\n]";
    if (const auto settings = layout.settings.value_or(DesktopSettings{}); settings != DesktopSettings{}) {
        const auto line = records::encodeJSON(settings);
        if (!line) return std::nullopt;
        out += ",\n\"settings\": " + *line;
    }
    return out + "}\n";
}

Result<void> checked(const DesktopSettings& settings) {
    struct Range {
        const char* name;
        const std::optional<double>& value;
        double least, most;
        const char* text;
    };
    for (const auto& [name, value, least, most, text] :
         {Range{"scale", settings.scale, smallestScale, largestScale, "0.25 and 8"},
          Range{"refresh", settings.refresh, 0, longestRefresh, "0 and 3600"},
          Range{"margin", settings.margin, 0, largestMargin, "0 and 1000"}})
        // Written so that NaN is refused too.
        if (value && !(*value >= least && *value <= most))
            return Fault{
                .path = std::string("settings.") + name, .reason = std::string("must lie between ") + text};
    return {};
}

/// Refuses what decodes but cannot be.
Result<DesktopLayout> checked(DesktopLayout layout) {
    if (layout.widgets.size() > mostWidgets)
        return Fault{.path = "widgets", .reason = "there are at most " + std::to_string(mostWidgets)};
    std::set<std::string> ids;
    for (std::size_t i = 0; i < layout.widgets.size(); ++i) {
        const PlacedWidget& widget = layout.widgets[i];
        const std::string place = "widgets[" + std::to_string(i) + "].";
        if (!ids.insert(widget.id).second)
            return Fault{.path = place + "id", .reason = "'" + widget.id + "' is there twice"};
        for (const auto& [name, tile] : {std::pair{"column", widget.column}, {"row", widget.row}})
            if (tile < 0 || tile > farthestTile)
                return Fault{.path = place + name, .reason = "must lie between 0 and 1000"};
    }
    if (const auto settings = checked(layout.settings.value_or(DesktopSettings{})); !settings)
        return settings.fault();
    return layout;
}

/// Whether what is there could not be a layout whoever read it.
bool isNoDocument(const std::filesystem::path& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    if (error && error != std::errc::too_many_symbolic_link_levels) return !std::filesystem::exists(status);
    if (!std::filesystem::is_regular_file(status)) return true;
    const auto size = std::filesystem::file_size(file, error);
    return !error && size > largestFile;
}

/// The layout itself is safe on the disk, or will be read again: a copy that cannot be kept is missed only
/// when a person breaks the file.
void keepCopy(const std::filesystem::path& copy, const std::string& bytes) {
    if (readFile(copy, largestFile) != bytes)
        static_cast<void>(writeFileAtomically(copy, bytes, {.durability = Durability::processDeath}));
}

Result<DesktopLayout> decoded(const std::string& document) {
    auto layout = records::decodeJSON<DesktopLayout>(document);
    return layout ? checked(*std::move(layout)) : layout;
}

}  // namespace

DesktopLayoutStore::DesktopLayoutStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

Result<DesktopLayout> DesktopLayoutStore::load() {
    removeLeftovers(file());
    bytes_->clear();
    isUnread_ = false;
    wasThere_ = true;
    const auto bytes = readFile(file(), largestFile);
    if (!bytes) {
        std::error_code error;
        if (std::filesystem::symlink_status(file(), error).type() == std::filesystem::file_type::not_found) {
            wasThere_ = false;
            return DesktopLayout{};
        }
        if (isNoDocument(file())) return keptAside("it is no file of at most 1 MiB");
        isUnread_ = true;
        return Fault{.path = file().string(), .reason = "it cannot be read now; it stays as it is"};
    }
    auto layout = decoded(*bytes);
    if (!layout) return keptAside(layout.fault().text());
    *bytes_ = *bytes;
    keepCopy(copy(), *bytes);
    return layout;
}

std::optional<DesktopLayout> DesktopLayoutStore::lastGood() const {
    const auto bytes = readFile(copy(), largestFile);
    auto layout = bytes ? decoded(*bytes) : Fault{};
    return layout ? std::optional(*std::move(layout)) : std::nullopt;
}

Fault DesktopLayoutStore::keptAside(const std::string& why) const {
    std::error_code error;
    // The first free name: what was kept aside before stays too.
    std::filesystem::path aside;
    for (int i = 1; i == 1 || std::filesystem::exists(std::filesystem::symlink_status(aside, error)); ++i)
        aside = folder_ / ("desktop.broken-" + std::to_string(i) + ".json");
    std::filesystem::rename(file(), aside, error);
    return {
        .path = file().string(),
        .reason = why + (error ? "; it cannot be kept aside: " + error.message()
                               : "; it is kept as " + aside.filename().string())};
}

std::function<Result<void>()> DesktopLayoutStore::saving(const DesktopLayout& layout) {
    const auto bytes = documentOf(layout);
    if (isUnread_ || !bytes)
        return [file = file(), isUnread = isUnread_]() -> Result<void> {
            return Fault{
                .path = file.string(),
                .reason = isUnread ? "it could not be read, and is not written over" : "cannot be written"};
        };
    return
        [folder = folder_, file = file(), copy = copy(), bytes = *bytes, known = bytes_]() -> Result<void> {
            std::error_code error;
            std::filesystem::create_directories(folder, error);
            if (const auto written = writeFileAtomically(file, bytes); !written)
                return Fault{.path = file.string(), .reason = "cannot be written: " + written.fault().reason};
            *known = bytes;
            keepCopy(copy, bytes);
            return {};
        };
}

bool DesktopLayoutStore::wasEdited() const {
    const auto bytes = readFile(file(), largestFile);
    return bytes && *bytes != *bytes_;
}

}  // namespace zelto::host
