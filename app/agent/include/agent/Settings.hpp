#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.hpp"
#include "records/Record.hpp"

namespace zelto::agent {

/// What a person has set, kept as app.json in the configuration folder; edits by hand count at once. What is
/// absent is as usual.
struct Settings {
    struct Awake {
        std::optional<bool> endsAtLock = {};
        std::optional<bool> endsOnLowBattery = {};

        bool operator==(const Awake&) const = default;
    };

    std::optional<std::int64_t> version = {};
    /// Time zones of the world clock, in the order shown.
    std::optional<std::vector<std::string>> clockZones = {};
    std::optional<Awake> awake = {};

    std::vector<std::string> zones() const { return clockZones.value_or(std::vector<std::string>()); }
    /// Keeping awake ends when the session is locked; usually not.
    bool awakeEndsAtLock() const { return awake.value_or(Awake()).endsAtLock.value_or(false); }
    /// It ends when a battery that is being emptied has less than 15 % left; usually so.
    bool awakeEndsOnLowBattery() const { return awake.value_or(Awake()).endsOnLowBattery.value_or(true); }

    bool operator==(const Settings&) const = default;
};

inline constexpr std::int64_t settingsVersion = 1;
inline constexpr std::size_t mostClockZones = 24;

/// The file of the settings.
class SettingsStore {
  public:
    explicit SettingsStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// The usual settings where there is no file. A file that says something else than settings is a fault,
    /// with its place; it stays as it is.
    Result<Settings> load() const;
    /// What was there before stays beside it as app.json.old. The fault has the system's reason.
    Result<void> save(const Settings& settings) const;

    std::filesystem::path file() const { return folder_ / "app.json"; }

  private:
    std::filesystem::path folder_;
};

/// Changes one setting by its name on the command line: "awake-ends-at-lock" or "awake-ends-on-low-battery"
/// to "on" or "off".
Result<void> change(Settings& settings, const std::string& option, const std::string& value);

/// The zone that a person means: its identifier ("Asia/Tokyo"), or its city where only one zone has it
/// ("tokyo"), by the system's zone table. The fault says what is wrong with it.
Result<std::string> zoneCalled(const std::string& name);

}  // namespace zelto::agent

ZELTO_RECORD(zelto::agent::Settings::Awake, endsAtLock, endsOnLowBattery);
ZELTO_RECORD(zelto::agent::Settings, version, clockZones, awake);
