#include "sources/Temperature.hpp"

#include <array>
#include <string>
#include <string_view>

#include "system/KernelValues.hpp"

namespace zelto::sources {
namespace {

namespace fs = std::filesystem;
using system::entriesOf;
using system::kernelInteger;
using system::kernelLine;

struct Sensor {
    std::string_view chip;
    /// Any when empty.
    std::string_view label;
};

/// In the order in which they are preferred. "Tctl" carries an offset on some processors, "Tdie" does not.
constexpr std::array sensors{
    Sensor{"coretemp", "Package id 0"},
    Sensor{"k10temp", "Tdie"},
    Sensor{"zenpower", "Tdie"},
    Sensor{"k10temp", "Tctl"},
    Sensor{"zenpower", "Tctl"},
    Sensor{"cpu_thermal", ""},
    Sensor{"macsmc", ""},
    Sensor{"macsmc_hwmon", ""}};
constexpr std::array<std::string_view, 4> zones{"x86_pkg_temp", "TCPU", "cpu-thermal", "soc-thermal"};

/// The kernel counts thousandths; what no chip survives is no reading.
std::optional<double> celsius(const fs::path& file) {
    const auto value = kernelInteger(file);
    if (!value || *value < -40'000 || *value > 150'000) return std::nullopt;
    return static_cast<double>(*value) / 1000;
}

std::optional<ChipTemperature> readSensor(const fs::path& chip, std::string_view label) {
    for (const fs::path& file : entriesOf(chip)) {
        const std::string name = file.filename().string();
        if (!name.starts_with("temp") || !name.ends_with("_input")) continue;
        const std::string stem = name.substr(0, name.size() - std::string_view("_input").size());
        if (!label.empty() && kernelLine(chip / (stem + "_label")) != label) continue;
        if (const auto value = celsius(file))
            return ChipTemperature{.celsius = *value, .critical = celsius(chip / (stem + "_crit"))};
    }
    return std::nullopt;
}

}  // namespace

std::optional<ChipTemperature> readChipTemperature(const fs::path& root) {
    const auto chips = entriesOf(root / "sys/class/hwmon");
    for (const auto& [name, label] : sensors)
        for (const fs::path& chip : chips)
            if (kernelLine(chip / "name") == name)
                if (const auto found = readSensor(chip, label)) return found;
    const auto thermal = entriesOf(root / "sys/class/thermal");
    for (const std::string_view type : zones)
        for (const fs::path& zone : thermal)
            if (kernelLine(zone / "type") == type)
                if (const auto value = celsius(zone / "temp")) return ChipTemperature{.celsius = *value};
    return std::nullopt;
}

}  // namespace zelto::sources
