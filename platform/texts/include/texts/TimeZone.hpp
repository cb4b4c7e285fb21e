#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "foundation/Date.hpp"

namespace zelto::texts {

/// A time zone by the system's own data (/usr/share/zoneinfo), which is kept up to date by itself. A plain
/// handle; may be used on any thread.
class TimeZone {
  public:
    /// The zone that an identifier means: a known name, the absolute path of a zone file, or a rule as TZ
    /// takes it ("EST5EDT,M3.2.0,M11.1.0"). Absent for anything else. What was found is kept for the process.
    static std::optional<TimeZone> find(const std::string& identifier);
    static TimeZone utc();

    /// Seconds since 2001 on the zone's own clocks, as if they were UTC's.
    double wallClock(Date date) const;
    /// The instant at which the zone's clocks show that: the first of two; where they skip it, as long behind
    /// the gap as it lies behind its begin.
    Date instant(double wallClock) const;

    struct Clock;

  private:
    explicit TimeZone(std::shared_ptr<const Clock> clock) : clock_(std::move(clock)) {}

    std::shared_ptr<const Clock> clock_;
};

/// True for a name of the system's zone folder, such as "America/Sao_Paulo"; not for what only stands for
/// another one there (localtime, posixrules) or is kept there a second time (posix/..., right/...).
bool isKnownTimeZone(const std::string& name);

/// What is read to tell the system's time zone.
struct TimeZoneSetting {
    /// The variable TZ.
    std::optional<std::string> variable;
    /// Where the machine's zone is kept, and where its name may be kept beside it.
    std::filesystem::path localTime = "/etc/localtime", nameFile = "/etc/timezone";
};

/// The identifier of the system's time zone, which means what the setting means to the C library: a name
/// where there is one ("Etc/GMT+3" for a rule of whole hours), otherwise a rule or an absolute path. UTC
/// where the setting makes no sense.
std::string identifierOf(const TimeZoneSetting& setting);

}  // namespace zelto::texts
