#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/ReplyBlock.hpp"
#include "records/Record.hpp"

// The contract between the app and its privileged helper, which changes charging and fans
// (docs/helper-contract.md). Records travel as JSON under their members' names; every member is required
// unless it is optional.

namespace zelto::shared {

enum class FanMode : std::uint8_t {
    automatic,    // left to the system
    temperature,  // driven by a sensor between two temperatures
    fixed,        // held at one level
};
inline constexpr std::array allFanModes{FanMode::automatic, FanMode::temperature, FanMode::fixed};

/// Which reading drives the fans in temperature mode: the hottest one, or the processor's.
enum class FanSensor : std::uint8_t { hottest, cpu };
inline constexpr std::array allFanSensors{FanSensor::hottest, FanSensor::cpu};

enum class ChargeBackend : std::uint8_t {
    inhibit,      // charging can be stopped while the adapter keeps powering the computer
    adapterOnly,  // only the adapter can be switched off
    unavailable,
};

struct ChargeConfig {
    bool enabled = false;
    /// The charge at which charging stops, in percent.
    std::int64_t limit = 80;
    /// Width of the sailing band below the limit, in percentage points.
    std::int64_t sailing = 5;
    bool dischargeAboveLimit = false;

    bool operator==(const ChargeConfig&) const = default;
};

struct FanConfig {
    FanMode mode = FanMode::automatic;
    FanSensor sensor = FanSensor::hottest;
    /// Where the fans start to rise above their minimum, in degrees Celsius.
    double startTemperature = 50;
    /// Where they reach their maximum, in degrees Celsius.
    double maxTemperature = 80;
    /// The speed of fixed mode, as a fraction of the fan's range.
    double fixedLevel = 0.5;

    bool operator==(const FanConfig&) const = default;
};

/// One fan as the helper reports it; speeds in revolutions per minute.
struct FanStatus {
    std::int64_t index;
    double actual;
    double minimum;
    double maximum;
    double target;
    /// Under the helper's control rather than the system's.
    bool manual;

    std::int64_t id() const { return index; }
};

/// The helper's whole state.
struct HelperStatus {
    std::string version;
    ChargeConfig chargeConfig;
    ChargeBackend chargeBackend;
    bool chargingPaused;
    /// The computer runs from the battery although the adapter is there.
    bool adapterDisabled;
    FanConfig fanConfig;
    /// In fan order; empty on a computer without fans.
    std::vector<FanStatus> fans;
    /// What currently drives fan control, in degrees Celsius.
    std::optional<double> controlTemperature = {};
    std::optional<std::string> lastError = {};
};

namespace HelperConstants {
inline constexpr std::string_view machService = "com.kavra.zelto.helper";
inline constexpr std::string_view plistName = "com.kavra.zelto.helper.plist";
inline constexpr std::string_view appIdentifier = "com.kavra.zelto";
/// The version of the helper that this build expects.
inline constexpr std::string_view version = "0.6.0";
}  // namespace HelperConstants

/// What the helper does for the app. Data are the JSON of the record named; each operation answers through
/// its reply exactly once, and never raises. A set operation's text is empty when the new configuration is in
/// force, otherwise it says why it is not.
class ZeltoHelperProtocol {
  public:
    using Data = std::string;

    virtual ~ZeltoHelperProtocol() = default;
    /// Replies with a HelperStatus.
    virtual void statusWithReply(ReplyBlock<Data> reply) = 0;
    /// Applies and keeps a ChargeConfig.
    virtual void setChargeConfig(Data config, ReplyBlock<std::string> reply) = 0;
    /// Applies and keeps a FanConfig.
    virtual void setFanConfig(Data config, ReplyBlock<std::string> reply) = 0;
    /// Resets all charge and fan settings.
    virtual void resetAllWithReply(ReplyBlock<> reply) = 0;
};

}  // namespace zelto::shared

ZELTO_NAMES(zelto::shared::FanMode, "a fan mode", automatic, temperature, fixed);
ZELTO_NAMES(zelto::shared::FanSensor, "a fan sensor", hottest, cpu);
ZELTO_NAMES(zelto::shared::ChargeBackend, "a charge back-end", inhibit, adapterOnly, unavailable);
ZELTO_RECORD(zelto::shared::ChargeConfig, enabled, limit, sailing, dischargeAboveLimit);
ZELTO_RECORD(zelto::shared::FanConfig, mode, sensor, startTemperature, maxTemperature, fixedLevel);
ZELTO_RECORD(zelto::shared::FanStatus, index, actual, minimum, maximum, target, manual);
ZELTO_RECORD(
    zelto::shared::HelperStatus, version, chargeConfig, chargeBackend, chargingPaused, adapterDisabled,
    fanConfig, fans, controlTemperature, lastError);
