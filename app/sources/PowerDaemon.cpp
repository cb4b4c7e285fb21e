// Batteries as the power daemon's devices tell them.

#include <filesystem>

#include "sources/Power.hpp"

namespace zelto::sources {
namespace {

constexpr std::int64_t battery = 2;  // its Type

Pack::State stateOf(std::int64_t state) {
    switch (state) {
        case 1: return Pack::State::charging;
        case 2:
        case 3:
        case 6: return Pack::State::discharging;
        case 4: return Pack::State::full;
        case 5: return Pack::State::held;
        default: return Pack::State::unknown;
    }
}

/// It tells 0 for what it does not know.
std::optional<double> known(const bus::Data& value) {
    const auto number = value.number();
    return number && *number > 0 ? number : std::nullopt;
}

}  // namespace

std::optional<Pack> packOf(const bus::Data& properties) {
    const auto percent = properties["Percentage"].number();
    if (properties["Type"].integer() != battery || properties["PowerSupply"].flag() != true ||
        properties["IsPresent"].flag() == false || !percent)
        return std::nullopt;
    Pack pack{
        .name = std::filesystem::path(properties["NativePath"].text().value_or("")).filename().string(),
        .state = stateOf(properties["State"].integer().value_or(0)),
        .percent = *percent,
        .energy = known(properties["Energy"]),
        .energyFull = known(properties["EnergyFull"]),
        .energyDesign = known(properties["EnergyFullDesign"]),
        .watts = properties["EnergyRate"].number(),
        .temperature = known(properties["Temperature"])};
    const auto cycles = properties["ChargeCycles"].integer();
    if (cycles && *cycles > 0) pack.cycles = cycles;
    const auto seconds =
        known(properties[pack.state == Pack::State::charging ? "TimeToFull" : "TimeToEmpty"]);
    if (seconds) pack.minutes = *seconds / 60;
    return pack;
}

}  // namespace zelto::sources
