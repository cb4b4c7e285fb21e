#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "foundation/Result.hpp"

namespace zelto::agent {

/// Opens what an address stands for in the person's own program for it. `token` is what the desktop gave for
/// the tap, so that the window comes to the front; it may be empty. Answers when the program has been
/// started, or with the reason why not.
void openPage(const std::string& address, const std::string& token, std::function<void(Result<void>)> opened);

/// A file as such an address: "file:///…", with what an address may not hold written as %XX.
std::string addressOfFile(const std::filesystem::path& file);

}  // namespace zelto::agent
