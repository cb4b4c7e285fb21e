#pragma once

#include <cstdint>
#include <optional>

namespace zelto::widget {

/// Readings that the widget process takes itself.
struct LiveData {
    std::optional<std::int64_t> battery;  // charge in percent; absent without a usable battery
    bool charging = false;
    double cpu = 0;               // busy fraction over half a second, 0 to 1
    double memory = 0;            // fraction of the physical memory in use, 0 to 1
    double disk = 0;              // fraction of the start-up volume in use, 0 to 1
    std::uint64_t diskFree = 0;   // bytes available for important use
    std::uint64_t diskTotal = 0;  // bytes
};

}  // namespace zelto::widget
