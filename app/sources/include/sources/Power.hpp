#pragma once

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "bus/Data.hpp"
#include "foundation/Date.hpp"
#include "shared/WidgetSnapshot.hpp"

namespace zelto::sources {

/// One of the machine's batteries, whoever told of it.
struct Pack {
    enum class State { unknown, charging, discharging, full, held };

    /// As the kernel calls it: "BAT0".
    std::string name = {};
    State state = State::unknown;
    double percent = 0;
    /// In watt-hours; absent where only the percentage is told.
    std::optional<double> energy = {}, energyFull = {}, energyDesign = {};
    /// Taken out or put in, in watts, never negative.
    std::optional<double> watts = {};
    std::optional<double> temperature = {};  // degrees Celsius
    std::optional<std::int64_t> cycles = {};
    /// To empty or to full, whichever it goes to.
    std::optional<double> minutes = {};
};

/// What the kernel lets programs decide about charging, read back from its files.
struct ChargeControl {
    /// Percent; absent where there is none to set.
    std::optional<std::int64_t> limit = {};
    /// The adapter is there, and the battery is emptied all the same.
    bool adapterDisabled = false;
};

struct PowerReading {
    std::vector<Pack> packs = {};
    bool isPluggedIn = false;
    ChargeControl control = {};
};

/// From the kernel's power-supply class. `root` is where sys is.
PowerReading readPower(const std::filesystem::path& root);
ChargeControl readChargeControl(const std::filesystem::path& root);

/// From the properties of one device of the power daemon; absent for what is not a battery of the machine.
std::optional<Pack> packOf(const bus::Data& properties);

/// All packs as one battery; absent without any. Energies are summed where all packs tell them; else the
/// percentages' mean counts. Health is what the packs hold at most of what they were made to hold.
std::optional<shared::WidgetSnapshot::Battery> batteryOf(const PowerReading& reading);

/// Watts and minutes jump from one reading to the next: what is shown is the mean of a minute.
class MinuteMean {
  public:
    /// The mean of what came within the last minute; without a value what was there is forgotten.
    std::optional<double> add(Date now, std::optional<double> value);

  private:
    std::deque<std::pair<Date, double>> values_;
};

}  // namespace zelto::sources
