// Batteries as the kernel's files tell them.

#include <algorithm>
#include <cmath>

#include "sources/Power.hpp"
#include "system/KernelValues.hpp"
#include "system/PowerSources.hpp"

namespace zelto::sources {
namespace {

namespace fs = std::filesystem;
using system::isMachineBattery;
using system::kernelInteger;
using system::kernelLine;

constexpr double micro = 1e-6;

fs::path classFolder(const fs::path& root) {
    return root / "sys/class/power_supply";
}

std::optional<double> value(const fs::path& file, double unit = micro) {
    const auto integer = kernelInteger(file);
    return integer ? std::optional(static_cast<double>(*integer) * unit) : std::nullopt;
}

/// In watt-hours: told as energy, or as charge, whose voltage is the one that it was made for.
std::optional<double> energy(const fs::path& battery, const std::string& which) {
    if (const auto told = value(battery / ("energy_" + which))) return told;
    const auto charge = value(battery / ("charge_" + which));
    const auto design = value(battery / "voltage_min_design");
    const auto voltage = design ? design : value(battery / "voltage_now");
    return charge && voltage ? std::optional(*charge * *voltage) : std::nullopt;
}

Pack::State stateOf(const std::string& status) {
    if (status == "Charging") return Pack::State::charging;
    if (status == "Discharging") return Pack::State::discharging;
    if (status == "Full") return Pack::State::full;
    if (status == "Not charging") return Pack::State::held;
    return Pack::State::unknown;
}

std::optional<double> wattsOf(const fs::path& battery) {
    auto watts = value(battery / "power_now");
    if (!watts) {
        const auto current = value(battery / "current_now"), voltage = value(battery / "voltage_now");
        if (current && voltage) watts = *current * *voltage;
    }
    // Some drivers sign it by its direction.
    return watts ? std::optional(std::abs(*watts)) : std::nullopt;
}

std::optional<Pack> readPack(const fs::path& battery) {
    Pack pack{
        .name = battery.filename().string(), .state = stateOf(kernelLine(battery / "status").value_or(""))};
    pack.energy = energy(battery, "now");
    pack.energyFull = energy(battery, "full");
    pack.energyDesign = energy(battery, "full_design");
    if (pack.energy && pack.energyFull && *pack.energyFull > 0)
        pack.percent = *pack.energy / *pack.energyFull * 100;
    else if (const auto capacity = kernelInteger(battery / "capacity"))
        pack.percent = static_cast<double>(*capacity);
    else
        return std::nullopt;
    pack.watts = wattsOf(battery);
    pack.temperature = value(battery / "temp", 0.1);
    // 0 is what drivers tell that do not count.
    pack.cycles = kernelInteger(battery / "cycle_count");
    if (pack.cycles && *pack.cycles <= 0) pack.cycles = std::nullopt;
    if (pack.watts && *pack.watts > 0 && pack.energy) {
        if (pack.state == Pack::State::discharging) pack.minutes = *pack.energy / *pack.watts * 60;
        if (pack.state == Pack::State::charging && pack.energyFull)
            pack.minutes = std::max(*pack.energyFull - *pack.energy, 0.0) / *pack.watts * 60;
    }
    return pack;
}

bool isAdapterIn(const fs::path& supply) {
    const auto type = kernelLine(supply / "type");
    return (type == "Mains" || type == "USB" || type == "Wireless") && kernelInteger(supply / "online") == 1;
}

}  // namespace

ChargeControl readChargeControl(const fs::path& root) {
    ChargeControl control;
    for (const fs::path& supply : system::entriesOf(classFolder(root))) {
        if (!isMachineBattery(supply)) continue;
        const auto limit = kernelInteger(supply / "charge_control_end_threshold");
        // 0 is what firmware tells that was never asked.
        if (limit && *limit > 0 && *limit <= 100)
            control.limit = std::min(control.limit.value_or(100), *limit);
        // "auto inhibit-charge [force-discharge]"
        const auto behaviour = kernelLine(supply / "charge_behaviour").value_or("");
        control.adapterDisabled |= behaviour.find("[force-discharge]") != std::string::npos;
    }
    return control;
}

PowerReading readPower(const fs::path& root) {
    PowerReading reading{.control = readChargeControl(root)};
    for (const fs::path& supply : system::entriesOf(classFolder(root))) {
        reading.isPluggedIn = reading.isPluggedIn || isAdapterIn(supply);
        if (isMachineBattery(supply))
            if (auto pack = readPack(supply)) reading.packs.push_back(*std::move(pack));
    }
    return reading;
}

}  // namespace zelto::sources
