#pragma once

#include <optional>
#include <string>

namespace zelto::desktop {

/// Before the toolkit starts: where a Wayland compositor has no layers for windows to lie in, and an X server
/// beside it, as GNOME Shell has, our windows go there, where they lie below all others and in their places.
/// What a person asks the toolkit for by GDK_BACKEND is left to it. Returns what is to be told about a
/// display on which they cannot.
std::optional<std::string> chooseDisplay();

}  // namespace zelto::desktop
