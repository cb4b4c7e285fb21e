#pragma once

/// The identifiers under which hosts keep placed widgets; they never change.
namespace zelto::widget::WidgetKinds {

// Not formed from its name like the others: placed widgets are found again by it.
inline constexpr const char* overview = "ZeltoWidget";
inline constexpr const char* battery = "ZeltoBattery";
inline constexpr const char* system = "ZeltoSystem";
inline constexpr const char* storage = "ZeltoStorage";
inline constexpr const char* fans = "ZeltoFans";
inline constexpr const char* calendar = "ZeltoCalendar";
inline constexpr const char* worldClock = "ZeltoWorldClock";
inline constexpr const char* clipboard = "ZeltoClipboard";
inline constexpr const char* awake = "ZeltoAwake";
inline constexpr const char* equalizer = "ZeltoEqualizer";
inline constexpr const char* care = "ZeltoCare";

}  // namespace zelto::widget::WidgetKinds
