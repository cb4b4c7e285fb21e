#pragma once

#include <string>
#include <string_view>

namespace zelto::widget {

/// A link to the main app: "zelto://" followed by a path and query.
inline std::string deepLink(std::string_view path) {
    return "zelto://" + std::string(path);
}

}  // namespace zelto::widget
