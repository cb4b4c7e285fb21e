#pragma once

#include <functional>
#include <string>

#include "foundation/Result.hpp"

namespace zelto::agent {

/// Opens what an address stands for in the person's own program for it. `token` is what the desktop gave for
/// the tap, so that the window comes to the front; it may be empty. Answers when the program has been
/// started, or with the reason why not.
void openPage(const std::string& address, const std::string& token, std::function<void(Result<void>)> opened);

}  // namespace zelto::agent
