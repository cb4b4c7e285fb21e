#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace zelto::system {

/// A power source as a table of named values. Keys in use: "Name", "Current Capacity" and "Max Capacity"
/// (integers of one unit), "Is Charging" (a flag).
using PowerSourceValue = std::variant<bool, std::int64_t, std::string>;
using PowerSourceDescription = std::map<std::string, PowerSourceValue>;

/// The machine's own power sources, read from the kernel's power-supply class below `classFolder`
/// (/sys/class/power_supply). Absent when there is no such folder.
///
/// How the kernel's files become one table:
///   type == "Battery", scope not "Device", present not 0   a battery of the machine; mice and headsets are
///   not energy_now, energy_full                                 Current Capacity, Max Capacity, in uWh
///   charge_now, charge_full                                 the same in uAh, when energy is not told
///   capacity                                                the same in percent of 100, when neither is
///   status == "Charging"                                    Is Charging
/// Several batteries are one source. Those that do not tell a charge and a capacity above 0 are left out;
/// what the others hold is summed in the first unit that all of them tell (where there is none, the first one
/// counts alone), and the source charges when one of them does. Files are read in the order of the batteries'
/// names.
std::optional<std::vector<PowerSourceDescription>> readPowerSources(const std::filesystem::path& classFolder);

/// Whether a folder of the power-supply class is a battery that feeds the machine.
bool isMachineBattery(const std::filesystem::path& supply);

/// Whether one of the machine's batteries is being emptied.
bool isOnBattery(const std::filesystem::path& classFolder);

}  // namespace zelto::system
