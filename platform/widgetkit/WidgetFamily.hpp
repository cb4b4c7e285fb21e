#pragma once

#include <cstdint>

#include "platform/foundation/Record.hpp"

namespace zelto {

enum class WidgetFamily : std::uint8_t { systemSmall, systemMedium, systemLarge };

/// A widget's room in points.
struct WidgetSize {
    double width, height;
    constexpr bool operator==(const WidgetSize&) const = default;
};

constexpr WidgetSize sizeOf(WidgetFamily family) {
    switch (family) {
        case WidgetFamily::systemSmall: return {164, 164};
        case WidgetFamily::systemMedium: return {344, 164};
        case WidgetFamily::systemLarge: return {344, 344};
    }
    return {164, 164};
}

}  // namespace zelto

ZELTO_NAMES(zelto::WidgetFamily, "a widget family", systemSmall, systemMedium, systemLarge);
