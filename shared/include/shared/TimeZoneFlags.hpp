#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zelto::shared {

/// The flag emoji of the country that a time zone belongs to, by the system's time-zone table.
struct TimeZoneFlags {
    TimeZoneFlags() = delete;

    /// Time-zone identifier to country code.
    using Countries = std::unordered_map<std::string, std::string>;

    /// The table in /usr/share/zoneinfo/zone.tab, read once per process; empty when it cannot be read.
    static const Countries& countries();
    /// Absent for a zone that the table does not list and for a code that is not two characters long.
    static std::optional<std::string> flag(const std::string& zone) { return flag(zone, countries()); }

    // The same with the table passed in.
    static Countries parse(std::string_view text);
    static std::optional<std::string> flag(const std::string& zone, const Countries& countries);
};

}  // namespace zelto::shared
