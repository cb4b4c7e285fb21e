#pragma once

#include <filesystem>
#include <optional>

namespace zelto::sources {

/// The processor's, in degrees Celsius.
struct ChipTemperature {
    double celsius = 0;
    /// Where the chip slows down or switches off; absent when it does not tell.
    std::optional<double> critical = {};
};

/// From the sensor chips below /sys/class/hwmon, found by name, since their numbers change from one start to
/// the next; where none is known, from the thermal zones below /sys/class/thermal. The battery's, the disks'
/// and the mainboard's sensors never count. `root` is where sys is.
std::optional<ChipTemperature> readChipTemperature(const std::filesystem::path& root);

}  // namespace zelto::sources
