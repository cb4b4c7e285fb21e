#pragma once

#include <string>

namespace zelto::desktop {

/// What shows the desktop that a window which another program opens now is an answer to the person's last
/// tap, so that it comes to the front; empty where the desktop has no such thing.
std::string activationToken();

}  // namespace zelto::desktop
