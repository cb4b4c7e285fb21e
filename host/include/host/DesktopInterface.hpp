#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "bus/Connection.hpp"
#include "bus/Listener.hpp"
#include "host/WidgetHost.hpp"

// The running host as other programs see it on the session bus (docs/widgets-for-apps.md).

namespace zelto::host {

inline constexpr std::string_view desktopService = "com.kavra.zelto.desktop";

/// What the host does for a caller. All run on the host's thread.
struct DesktopActions {
    std::function<WidgetHost&()> host;
    std::function<void()> showGallery;
    /// Gives the keys to the next widget.
    std::function<void()> focusNext;
    std::function<void()> quit;
    /// Changes an option of the running host, by the name and the text that the command line takes.
    std::function<Result<void>(const std::string& name, const std::string& value)> setOption;
    /// On any thread.
    std::function<bool()> isSeen = {};
};

/// reload(kind), list, add(kind, family, monitor), remove(id), undo, move(id, monitor, column, row),
/// resize(id, family), set(option, value), gallery, focus and quit, and the property `seen`: whether anybody
/// sees a widget. What cannot be done comes back as an error.
bus::Interface desktopInterface(const DesktopActions& actions);

/// Offers the host on a bus, to this user only; `dispatch` carries calls over to the host's thread.
bus::Result<bus::Listener> listenAsDesktop(
    bus::Address address, const DesktopActions& actions, std::function<void(std::function<void()>)> dispatch,
    std::function<void()> lost = {});

/// "KIND:FAMILY", families as small, medium or large or by their whole names. Absent when it is not that.
std::optional<std::pair<std::string, widgetkit::WidgetFamily>> parseAddition(const std::string& text);

}  // namespace zelto::host
