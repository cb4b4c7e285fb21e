#pragma once

#include <string>

#include "shared/WidgetSnapshot.hpp"

namespace zelto::test {

/// A document with every required key and no optional one, with `extra` keys ("\"gpu\":0.5,") in front.
inline std::string leastDocument(const std::string& extra = "") {
    return "{" + extra +
           R"("date":0,"cpu":0.5,"cpuHistory":[],"memory":0,"memoryUsed":0,"memoryTotal":0,"fans":[],"awakeActive":false,)"
           R"("eqEnabled":false,"eqPreset":"","clips":[],"calendarAccess":false,"events":[],"clockZones":[],"careItems":[]})";
}

}  // namespace zelto::test
