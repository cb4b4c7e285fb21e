#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "shared/WidgetSnapshot.hpp"

namespace zelto::sources {

/// What the kernel tells of one fan; speeds in revolutions per minute.
struct FanReading {
    /// By chip, device and number, which outlast a restart: "thinkpad/thinkpad_hwmon/fan1".
    std::string key;
    double actual = 0;
    std::optional<double> minimum = {}, maximum = {};
    /// Something other than the firmware drives it.
    bool manual = false;
};

/// All fans of the sensor chips below /sys/class/hwmon, ordered by key, empty connectors included. A chip of
/// a sleeping device is left alone, since reading it would wake it. `root` is where sys is.
std::vector<FanReading> readFans(const std::filesystem::path& root);

/// The highest speed that each fan was ever seen at: most boards do not tell one.
class FanMemory {
  public:
    using Speeds = std::map<std::string, double>;
    explicit FanMemory(Speeds highest = {}) : highest_(std::move(highest)) {}

    /// The fans as the widgets know them; those that never turned are connectors without one. A fan without
    /// limits of its own goes from 0 to the highest speed seen, at least to 5000.
    std::vector<shared::WidgetSnapshot::Fan> fans(const std::vector<FanReading>& readings);
    const Speeds& highest() const { return highest_; }

    static constexpr double usualMaximum = 5000;

  private:
    Speeds highest_;
};

}  // namespace zelto::sources
