#pragma once

#include <string_view>

#include "ui/Values.hpp"

/// The colours of all widgets.
namespace zelto::widget::Palette {

inline constexpr ui::Color accent{0.25, 0.85, 0.70};
inline constexpr ui::Color blue{0.45, 0.65, 1.0};
inline constexpr ui::Color memory{0.85, 0.60, 1.0};
inline constexpr ui::Color warning{1.0, 0.65, 0.25};
inline constexpr ui::Color danger{1.0, 0.38, 0.40};
inline constexpr ui::Color white{1, 1, 1};
inline constexpr ui::Color black{0, 0, 0};
/// The unfilled part of gauges and bars.
inline constexpr ui::Color track = white.withOpacity(0.12);
/// The fill of rounded tiles inside widgets.
inline constexpr ui::Color card = white.withOpacity(0.07);
/// The whole widget's background.
inline constexpr ui::LinearGradient background{{0.12, 0.15, 0.18}, {0.04, 0.05, 0.07}};

/// The colour of a load or of a volume's use, a fraction: accent below 0.6, warning below 0.85, otherwise
/// danger.
ui::Color loadColor(double fraction);

/// Color(hex:): a colour from six hexadecimal digits with or without number signs around them; of eight
/// digits the first two are ignored. Any other text gives a medium blue.
ui::Color colorFromHex(std::string_view hex);

}  // namespace zelto::widget::Palette
