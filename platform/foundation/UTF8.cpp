#include "foundation/UTF8.hpp"

#include <cstdint>
#include <cstring>

namespace zelto {
namespace {

/// The length of the well-formed sequence at the start of `p` (at most `left` bytes), or 0.
std::size_t sequenceLength(const unsigned char* p, std::size_t left) {
    const unsigned char lead = p[0];
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || left < length) return 0;
    // The second byte carries the bounds that keep out overlong forms, surrogates and values above U+10FFFF.
    const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (p[1] < low || p[1] > high) return 0;
    for (std::size_t i = 2; i < length; ++i)
        if ((p[i] & 0xC0) != 0x80) return 0;
    return length;
}

}  // namespace

std::size_t validUTF8Prefix(std::string_view text) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    std::size_t i = 0;
    while (i < text.size()) {
        std::uint64_t eight = 0;
        if (text.size() - i >= sizeof eight) {
            std::memcpy(&eight, bytes + i, sizeof eight);
            if ((eight & 0x8080808080808080U) == 0) {
                i += sizeof eight;
                continue;
            }
        }
        const std::size_t length = sequenceLength(bytes + i, text.size() - i);
        if (length == 0) return i;
        i += length;
    }
    return i;
}

}  // namespace zelto
