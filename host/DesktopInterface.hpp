#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/WidgetHost.hpp"
#include "platform/xpc/Connection.hpp"
#include "platform/xpc/Listener.hpp"

// The running host as other programs see it on the session bus (docs/widgets-for-apps.md).

namespace zelto::host {

/// reload(kind), list, add(kind, family), remove(id), move(id, monitor, column, row), resize(id, family),
/// gallery and quit.
const xpc::Interface& desktopInterface();

/// What the host does for a caller. All run on the host's thread.
struct DesktopActions {
    WidgetHost& host;
    std::function<std::int64_t()> columns;
    std::function<void()> showGallery;
    std::function<void()> quit;
};

/// Carries out one call; what makes no sense comes back as an error.
xpc::Result<xpc::Values> perform(
    const DesktopActions& actions, const std::string& method, const xpc::Values& arguments);

/// Offers the host on a bus, to this user only. `perform` gets each call with its answer, on the listener's
/// thread.
xpc::Result<xpc::Listener> listenAsDesktop(
    xpc::Bus bus,
    std::function<void(const std::string& method, xpc::Values arguments, xpc::Answer answer)> handler);

/// "KIND:FAMILY", families as small, medium or large or by their whole names. Absent when it is not that.
std::optional<std::pair<std::string, std::string>> parseWish(const std::string& text);

}  // namespace zelto::host
