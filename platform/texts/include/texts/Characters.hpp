#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::texts {

/// The user-perceived characters of a text, in order.
std::vector<std::string> characters(std::string_view text);

/// The number of leading bytes of `text`, no more than `most`, that end where a user-perceived character
/// does; `most`, which must end a code point, when the first character alone is longer.
std::size_t characterPrefix(std::string_view text, std::size_t most);

/// Whether nothing of a text is seen: blanks of all kinds, controls, and what is ignored by default.
bool isBlank(std::string_view text);

/// Full upper-casing that belongs to no language: "ß" becomes "SS".
std::string upperCased(std::string_view text);

/// The first user-perceived character upper-cased, the rest left as it is.
std::string firstUpperCased(std::string_view text);

}  // namespace zelto::texts
