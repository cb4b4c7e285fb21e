#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/DesktopLayout.hpp"

namespace zelto::desktop {

/// How the keys go from one widget to another: as they are read, round and round, or to a side.
enum class Step { next, previous, left, right, up, down };

/// The id of the widget to which a step leads. From nowhere, the first is next and the last previous; absent
/// where nothing lies to that side on the same monitor.
std::optional<std::string> stepFrom(
    const std::string& id, Step step, const std::vector<host::ArrangedWidget>& widgets);

}  // namespace zelto::desktop
