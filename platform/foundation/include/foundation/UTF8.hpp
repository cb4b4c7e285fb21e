#pragma once

#include <cstddef>
#include <string_view>

namespace zelto {

/// The number of leading bytes of `text` that are well-formed UTF-8; its size when all are.
std::size_t validUTF8Prefix(std::string_view text);

inline bool isValidUTF8(std::string_view text) {
    return validUTF8Prefix(text) == text.size();
}

}  // namespace zelto
