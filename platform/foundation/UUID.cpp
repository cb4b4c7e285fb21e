#include "foundation/UUID.hpp"

#include <cstdlib>

#include <sys/random.h>

namespace zelto {
namespace {

constexpr bool isHyphenPosition(std::size_t i) {
    return i == 8 || i == 13 || i == 18 || i == 23;
}

constexpr int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

UUID UUID::random() {
    UUID id;
    // The kernel hands out up to 256 bytes whole once its source is seeded; it never fails for sixteen.
    if (getrandom(id.bytes.data(), id.bytes.size(), 0) != static_cast<ssize_t>(id.bytes.size())) std::abort();
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);
    return id;
}

std::optional<UUID> UUID::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    UUID id;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isHyphenPosition(i)) {
            if (text[i] != '-') return std::nullopt;
            continue;
        }
        const int digit = hexDigit(text[i]);
        if (digit < 0) return std::nullopt;
        auto& byte = id.bytes[digits++ / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | digit);
    }
    return id;
}

void UUID::appendText(std::string& out) const {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::array<char, 36> text;
    std::size_t end = 0;
    for (const std::uint8_t byte : bytes) {
        if (isHyphenPosition(end)) text[end++] = '-';
        text[end++] = digits[byte >> 4];
        text[end++] = digits[byte & 0x0F];
    }
    out.append(text.data(), text.size());
}

std::string UUID::text() const {
    std::string out;
    appendText(out);
    return out;
}

}  // namespace zelto
