#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zelto {

/// The user-perceived characters of a text, in order.
std::vector<std::string> characters(std::string_view text);

/// Full upper-casing that belongs to no language: "ß" becomes "SS".
std::string upperCased(std::string_view text);

/// The first user-perceived character upper-cased, the rest left as it is.
std::string firstUpperCased(std::string_view text);

}  // namespace zelto
