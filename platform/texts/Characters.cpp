#include "texts/Characters.hpp"

#include <algorithm>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include "ICUText.hpp"

namespace zelto::texts {

using icuText::filled;
using icuText::utf16;
using icuText::utf8;

namespace {

bool isASCII(char c) {
    return static_cast<signed char>(c) >= 0;
}

char upperASCII(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

std::vector<std::string> characters(std::string_view text) {
    // A plain letter is a character by itself; only a carriage return joins what follows.
    if (std::ranges::all_of(text, [](char c) { return isASCII(c) && c != '\r'; })) {
        std::vector<std::string> out;
        for (const char c : text) out.emplace_back(1, c);
        return out;
    }
    const std::u16string units = utf16(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::LocalUBreakIteratorPointer breaks(
        ubrk_open(UBRK_CHARACTER, "", units.data(), static_cast<std::int32_t>(units.size()), &status));
    std::vector<std::string> out;
    if (U_FAILURE(status)) return out;
    std::int32_t begin = ubrk_first(breaks.getAlias());
    for (std::int32_t end = ubrk_next(breaks.getAlias()); end != UBRK_DONE;
         end = ubrk_next(breaks.getAlias())) {
        out.push_back(utf8(std::u16string_view(units).substr(
            static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin))));
        begin = end;
    }
    return out;
}

std::size_t characterPrefix(std::string_view text, std::size_t most) {
    if (most >= text.size()) return text.size();
    // Whether a character ends at `most` is told by what comes before and by the one code point behind.
    const std::string_view head = text.substr(0, most);
    std::size_t behind = most + 1;
    while (behind < text.size() && (static_cast<unsigned char>(text[behind]) & 0xC0) == 0x80) ++behind;
    std::size_t end = 0;
    for (const std::string& character : characters(text.substr(0, behind))) {
        if (end + character.size() > head.size()) break;
        end += character.size();
    }
    return end > 0 ? end : most;
}

bool isBlank(std::string_view text) {
    return std::ranges::all_of(utf16(text), [](char16_t unit) {
        const UChar32 scalar = unit;  // half of a larger one is never blank
        return u_isUWhiteSpace(scalar) != 0 || u_iscntrl(scalar) != 0 ||
               u_hasBinaryProperty(scalar, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
    });
}

std::string upperCased(std::string_view text) {
    if (std::ranges::all_of(text, isASCII)) {
        std::string out(text);
        for (char& c : out) c = upperASCII(c);
        return out;
    }
    const std::u16string units = utf16(text);
    return utf8(filled([&](UChar* out, std::int32_t size, UErrorCode* status) {
        return u_strToUpper(out, size, units.data(), static_cast<std::int32_t>(units.size()), "", status);
    }));
}

std::string firstUpperCased(std::string_view text) {
    // Dates begin with a plain letter nearly always, and that needs no break iterator.
    if (text.size() > 1 && isASCII(text[0]) && isASCII(text[1])) {
        std::string out(text);
        out[0] = upperASCII(out[0]);
        return out;
    }
    const auto all = characters(text);
    if (all.empty()) return {};
    return upperCased(all.front()) + std::string(text.substr(all.front().size()));
}

}  // namespace zelto::texts
