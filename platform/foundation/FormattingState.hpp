#pragma once

// What Formatting keeps behind its own header. Only for this room's sources.

#include <map>
#include <string>

#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <unicode/unum.h>

#include "platform/foundation/Formatting.hpp"

namespace zelto {

/// ICU's objects for the environment, each opened when it is first asked for: opening is what costs.
struct Formatting::State {
    Environment environment;
    std::map<std::string, icu::LocalUDateFormatPointer> shortTimes;  // by zone
    std::map<std::string, icu::LocalUDateFormatPointer> skeletons;   // in the environment's zone
    std::map<std::string, icu::LocalUCalendarPointer> calendars;     // by zone
    icu::LocalUNumberFormatPointer number;

    /// An unknown identifier means the environment's own zone.
    const std::string& knownZone(const std::string& identifier) const;
    /// Null when ICU refuses.
    UCalendar* calendarFor(const std::string& timeZone);
    std::string format(UDateFormat* format, Date date) const;
    /// A date in the locale's own arrangement of the fields that a skeleton names.
    std::string bySkeleton(const char16_t* skeleton, Date date);
};

}  // namespace zelto
