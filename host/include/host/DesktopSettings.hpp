#pragma once

#include <optional>

#include "records/Record.hpp"

namespace zelto::host {

/// What a person has set for all widgets together; absent where the desktop or the program says it.
struct DesktopSettings {
    /// Widgets stay where they are, whatever is dragged.
    std::optional<bool> locked = {};
    /// The widgets' scale, in place of the desktop's.
    std::optional<double> scale = {};
    /// Seconds between readings of the moment while somebody sees them; 0 for when the timelines say.
    std::optional<double> refresh = {};
    /// Points along each monitor's edges where no widget stands.
    std::optional<double> margin = {};

    bool operator==(const DesktopSettings&) const = default;
};

inline constexpr double smallestScale = 0.25, largestScale = 8;
inline constexpr double longestRefresh = 3600, defaultRefresh = 30;
inline constexpr double largestMargin = 1000;

}  // namespace zelto::host

ZELTO_RECORD(zelto::host::DesktopSettings, locked, scale, refresh, margin);
