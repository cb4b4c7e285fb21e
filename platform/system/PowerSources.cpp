#include "platform/system/PowerSources.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "platform/foundation/Files.hpp"

namespace zelto {
namespace {

namespace fs = std::filesystem;

/// A file of one line, without its end.
std::optional<std::string> line(const fs::path& path) {
    auto text = readFile(path);
    if (text) text->erase(std::min(text->find('\n'), text->size()));
    return text;
}

std::optional<std::int64_t> number(const fs::path& path) {
    const auto text = line(path);
    std::int64_t value = 0;
    if (!text || text->empty()) return std::nullopt;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (error != std::errc() || end != text->data() + text->size()) return std::nullopt;
    return value;
}

bool isMachineBattery(const fs::path& folder) {
    return line(folder / "type") == "Battery" && line(folder / "scope") != "Device" &&
           number(folder / "present") != 0;
}

struct Charge {
    std::int64_t now = 0;
    std::int64_t full = 0;
};

std::optional<Charge> charge(const fs::path& folder, std::string_view quantity) {
    if (quantity == "capacity") {
        const auto percent = number(folder / "capacity");
        if (!percent) return std::nullopt;
        return Charge{*percent, 100};
    }
    const auto now = number(folder / (std::string(quantity) + "_now"));
    const auto full = number(folder / (std::string(quantity) + "_full"));
    if (!now || !full) return std::nullopt;
    return Charge{*now, *full};
}

/// What all batteries hold together in one unit; absent when one of them does not tell it.
std::optional<Charge> sum(const std::vector<fs::path>& batteries, std::string_view quantity) {
    Charge total;
    for (const auto& battery : batteries) {
        const auto one = charge(battery, quantity);
        if (!one || __builtin_add_overflow(total.now, one->now, &total.now) ||
            __builtin_add_overflow(total.full, one->full, &total.full))
            return std::nullopt;
    }
    return total;
}

}  // namespace

std::optional<std::vector<PowerSourceDescription>> readPowerSources(const fs::path& classFolder) {
    std::error_code error;
    fs::directory_iterator folder(classFolder, error);
    if (error) return std::nullopt;

    std::vector<fs::path> batteries;
    for (; folder != fs::directory_iterator() && !error; folder.increment(error))
        if (isMachineBattery(folder->path())) batteries.push_back(folder->path());
    if (batteries.empty()) return std::vector<PowerSourceDescription>();
    std::ranges::sort(batteries);

    PowerSourceDescription source;
    source["Name"] = batteries.front().filename().string();
    for (const std::string_view quantity : {"energy", "charge", "capacity"}) {
        const auto total = sum(batteries, quantity);
        if (!total) continue;
        source["Current Capacity"] = total->now;
        source["Max Capacity"] = total->full;
        break;
    }
    source["Is Charging"] = std::ranges::any_of(
        batteries, [](const auto& battery) { return line(battery / "status") == "Charging"; });
    return std::vector{std::move(source)};
}

}  // namespace zelto
