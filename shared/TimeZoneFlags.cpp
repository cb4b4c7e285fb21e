#include "shared/TimeZoneFlags.hpp"

#include <algorithm>
#include <vector>

#include "foundation/Files.hpp"
#include "foundation/UTF8.hpp"
#include "texts/Characters.hpp"

namespace zelto::shared {
namespace {

/// From a letter to its regional indicator.
constexpr char32_t regionalIndicatorOffset = 127397;

/// A line feed behind a carriage return is half of one character, and no separator.
bool isSeparator(std::string_view text, std::size_t i) {
    return text[i] == '\n' && (i == 0 || text[i - 1] != '\r');
}

/// The non-empty pieces of a line between tabs.
std::vector<std::string_view> pieces(std::string_view line) {
    std::vector<std::string_view> out;
    while (!line.empty()) {
        const auto piece = line.substr(0, line.find('\t'));
        if (!piece.empty()) out.push_back(piece);
        line.remove_prefix(std::min(piece.size() + 1, line.size()));
    }
    return out;
}

std::u32string scalars(std::string_view text) {
    std::u32string out;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        char32_t scalar = length == 1 ? lead : lead & (0x7FU >> length);
        for (std::size_t k = 1; k < length; ++k)
            scalar = scalar << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
        out += scalar;
        i += length;
    }
    return out;
}

/// Appends a scalar of more than sixteen bits.
void appendScalar(std::string& out, char32_t scalar) {
    for (const int shift : {18, 12, 6, 0}) {
        const auto bits = static_cast<unsigned>(scalar >> shift) & (shift == 18 ? 0x07U : 0x3FU);
        out += static_cast<char>(bits | (shift == 18 ? 0xF0U : 0x80U));
    }
}

}  // namespace

TimeZoneFlags::Countries TimeZoneFlags::parse(std::string_view text) {
    Countries out;
    if (!isValidUTF8(text)) return out;
    std::size_t begin = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !isSeparator(text, i)) continue;
        const std::string_view line = text.substr(begin, i - begin);
        begin = i + 1;
        if (line.starts_with('#')) continue;
        const auto columns = pieces(line);
        if (columns.size() > 2) out.insert_or_assign(std::string(columns[2]), std::string(columns[0]));
    }
    return out;
}

const TimeZoneFlags::Countries& TimeZoneFlags::countries() {
    static const Countries table = parse(readFile("/usr/share/zoneinfo/zone.tab").value_or(""));
    return table;
}

std::optional<std::string> TimeZoneFlags::flag(const std::string& zone, const Countries& countries) {
    const auto found = countries.find(zone);
    if (found == countries.end() || texts::characters(found->second).size() != 2) return std::nullopt;
    std::string out;
    for (const char32_t scalar : scalars(texts::upperCased(found->second)))
        if (const char32_t mapped = scalar + regionalIndicatorOffset; mapped <= 0x10FFFF)
            appendScalar(out, mapped);
    return out;
}

}  // namespace zelto::shared
