#pragma once

// What Formatting keeps behind its own header. Only for this room's sources.

#include <map>
#include <string>

#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <unicode/unum.h>

#include "texts/Formatting.hpp"
#include "texts/TimeZone.hpp"

namespace zelto::texts {

/// ICU's objects for the environment, each opened when it is first asked for: opening is what costs. They
/// work on wall clocks as if those were UTC's: which zone's clock it is, the system's own data says.
struct Formatting::State {
    Environment environment;
    TimeZone zone = TimeZone::utc();
    icu::LocalUDateFormatPointer time;
    std::map<std::string, icu::LocalUDateFormatPointer> skeletons;
    icu::LocalUCalendarPointer calendar;
    icu::LocalUNumberFormatPointer number;

    /// An unknown name means the environment's own zone.
    TimeZone zoneNamed(const std::string& name) const;
    /// Null when ICU refuses.
    UCalendar* wallCalendar();
    std::string format(UDateFormat* format, double wallClock) const;
    /// A date in the locale's own arrangement of the fields that a skeleton names.
    std::string bySkeleton(const char16_t* skeleton, Date date);
};

}  // namespace zelto::texts
