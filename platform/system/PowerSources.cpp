#include "system/PowerSources.hpp"

#include <algorithm>
#include <array>
#include <functional>
#include <span>

#include "system/KernelValues.hpp"

namespace zelto::system {
namespace {

namespace fs = std::filesystem;

struct Charge {
    std::int64_t now = 0;
    std::int64_t full = 0;
};

/// In the order in which they are preferred.
constexpr std::array<std::string_view, 3> quantities{"energy", "charge", "capacity"};

/// What a battery holds in one unit; absent when it does not tell it, or tells that it can hold nothing.
std::optional<Charge> charge(const fs::path& battery, std::string_view quantity) {
    if (quantity == "capacity") {
        const auto percent = kernelInteger(battery / "capacity");
        if (!percent) return std::nullopt;
        return Charge{*percent, 100};
    }
    const auto now = kernelInteger(battery / (std::string(quantity) + "_now"));
    const auto full = kernelInteger(battery / (std::string(quantity) + "_full"));
    if (!now || !full || *full < 1) return std::nullopt;
    return Charge{*now, *full};
}

bool tellsCharge(const fs::path& battery) {
    return std::ranges::any_of(
        quantities, [&](std::string_view quantity) { return charge(battery, quantity).has_value(); });
}

/// What all batteries hold together in one unit; absent when one of them does not tell it.
std::optional<Charge> sum(std::span<const fs::path> batteries, std::string_view quantity) {
    Charge total;
    for (const auto& battery : batteries) {
        const auto one = charge(battery, quantity);
        if (!one || __builtin_add_overflow(total.now, one->now, &total.now) ||
            __builtin_add_overflow(total.full, one->full, &total.full))
            return std::nullopt;
    }
    return total;
}

/// In the first unit that all of them tell; where there is none, the first battery speaks for all.
std::optional<Charge> heldBy(std::span<const fs::path> batteries) {
    for (const std::string_view quantity : quantities)
        if (const auto total = sum(batteries, quantity)) return total;
    return batteries.size() > 1 ? heldBy(batteries.first(1)) : std::nullopt;
}

}  // namespace

bool isMachineBattery(const fs::path& supply) {
    return kernelLine(supply / "type") == "Battery" && kernelLine(supply / "scope") != "Device" &&
           kernelInteger(supply / "present") != 0;
}

std::optional<std::vector<PowerSourceDescription>> readPowerSources(const fs::path& classFolder) {
    std::error_code error;
    if (!fs::is_directory(classFolder, error)) return std::nullopt;
    std::vector<fs::path> batteries = entriesOf(classFolder);
    std::erase_if(batteries, std::not_fn(isMachineBattery));
    if (batteries.empty()) return std::vector<PowerSourceDescription>();
    // One that tells nothing of its charge would hide what the others tell.
    if (std::ranges::any_of(batteries, tellsCharge)) std::erase_if(batteries, std::not_fn(tellsCharge));

    PowerSourceDescription source;
    source["Name"] = batteries.front().filename().string();
    if (const auto held = heldBy(batteries)) {
        source["Current Capacity"] = held->now;
        source["Max Capacity"] = held->full;
    }
    source["Is Charging"] = std::ranges::any_of(
        batteries, [](const auto& battery) { return kernelLine(battery / "status") == "Charging"; });
    return std::vector{std::move(source)};
}

bool isOnBattery(const fs::path& classFolder) {
    return std::ranges::any_of(entriesOf(classFolder), [](const fs::path& source) {
        return isMachineBattery(source) && kernelLine(source / "status") == "Discharging";
    });
}

}  // namespace zelto::system
