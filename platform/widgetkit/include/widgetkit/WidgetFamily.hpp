#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "records/Record.hpp"
#include "ui/Size.hpp"

namespace zelto::widgetkit {

enum class WidgetFamily : std::uint8_t { systemSmall, systemMedium, systemLarge };

/// A widget's room.
constexpr ui::Size sizeOf(WidgetFamily family) {
    switch (family) {
        case WidgetFamily::systemSmall: return {164, 164};
        case WidgetFamily::systemMedium: return {344, 164};
        case WidgetFamily::systemLarge: return {344, 344};
    }
    return {164, 164};
}

/// What people call a family: "small".
constexpr std::string_view shortNameOf(WidgetFamily family) {
    constexpr std::array<std::string_view, 3> names{"small", "medium", "large"};
    return names[static_cast<std::size_t>(family)];
}
/// The family that a short name means.
constexpr std::optional<WidgetFamily> familyCalled(std::string_view shortName) {
    using enum WidgetFamily;
    for (const WidgetFamily family : {systemSmall, systemMedium, systemLarge})
        if (shortNameOf(family) == shortName) return family;
    return std::nullopt;
}

}  // namespace zelto::widgetkit

ZELTO_NAMES(zelto::widgetkit::WidgetFamily, "a widget family", systemSmall, systemMedium, systemLarge);
