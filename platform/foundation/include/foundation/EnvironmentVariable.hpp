#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

/// A variable of this process's environment; absent when it is not set.
inline std::optional<std::string> environmentVariable(std::string_view name) {
    const char* value = std::getenv(std::string(name).c_str());
    if (!value) return std::nullopt;
    return value;
}

}  // namespace zelto
