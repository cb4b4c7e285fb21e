#include "agent/Settings.hpp"

#include <algorithm>
#include <set>

#include <system_error>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/TimeZoneFlags.hpp"

namespace zelto::agent {
namespace {

namespace fs = std::filesystem;

/// Bytes; a larger file is no settings.
constexpr std::size_t largestFile = std::size_t{1} << 20;

Result<void> checked(const Settings& settings) {
    if (settings.version.value_or(settingsVersion) > settingsVersion)
        return Fault{.path = "version", .reason = "is newer than this program"};
    const auto zones = settings.zones();
    if (zones.size() > mostClockZones)
        return Fault{.path = "clockZones", .reason = "there are at most " + std::to_string(mostClockZones)};
    const auto& known = shared::TimeZoneFlags::countries();
    for (std::size_t i = 0; i < zones.size(); ++i)
        if (!known.contains(zones[i]))
            return Fault{
                .path = "clockZones[" + std::to_string(i) + "]",
                .reason = "'" + zones[i] + "' is not in the system's zone table"};
    return {};
}

/// ASCII only, which is all that zones' names have.
std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c == ' ' ? '_' : c;
    });
    return text;
}

}  // namespace

Result<Settings> SettingsStore::load() const {
    std::error_code error;
    if (!fs::exists(file(), error)) return Settings{};
    const auto bytes = readFile(file(), largestFile);
    if (!bytes) return Fault{.path = file().string(), .reason = "cannot be read"};
    auto settings = records::decodeJSON<Settings>(*bytes);
    const auto fault = settings ? checked(*settings) : Result<void>(settings.fault());
    if (!fault) return Fault{.path = file().string(), .reason = fault.fault().text()};
    return settings;
}

Result<void> SettingsStore::save(const Settings& settings) const {
    Settings versioned = settings;
    versioned.version = settingsVersion;
    const auto document = records::encodeJSON(versioned);
    if (!document) return Fault{.path = file().string(), .reason = "a text in it is not UTF-8"};
    makePrivateFolder(folder_);
    std::error_code error;
    fs::copy_file(file(), folder_ / "app.json.old", fs::copy_options::overwrite_existing, error);
    if (const auto written = writeFileAtomically(file(), *document + "\n"); !written)
        return Fault{.path = file().string(), .reason = "cannot be written: " + written.fault().reason};
    return {};
}

Result<void> change(Settings& settings, const std::string& option, const std::string& value) {
    if (value != "on" && value != "off") return Fault{.reason = "'" + value + "' is neither on nor off"};
    auto awake = settings.awake.value_or(Settings::Awake());
    if (option == "awake-ends-at-lock")
        awake.endsAtLock = value == "on";
    else if (option == "awake-ends-on-low-battery")
        awake.endsOnLowBattery = value == "on";
    else
        return Fault{
            .reason = "there is no setting '" + option +
                      "' (there are awake-ends-at-lock and awake-ends-on-low-battery)"};
    settings.awake = awake;
    return {};
}

Result<std::string> zoneCalled(const std::string& name) {
    const auto& known = shared::TimeZoneFlags::countries();
    if (known.empty()) return Fault{.reason = "the system has no zone table"};
    if (known.contains(name)) return name;
    std::set<std::string> meant;
    const std::string wanted = lowered(name);
    for (const auto& [zone, country] : known) {
        const std::string own = lowered(zone);
        if (own == wanted || own.substr(own.rfind('/') + 1) == wanted) meant.insert(zone);
    }
    if (meant.empty()) return Fault{.reason = "no time zone is called '" + name + "'"};
    if (meant.size() == 1) return *meant.begin();
    std::string all;
    for (const std::string& zone : meant) all += (all.empty() ? "" : ", ") + zone;
    return Fault{.reason = "'" + name + "' may be " + all};
}

}  // namespace zelto::agent
