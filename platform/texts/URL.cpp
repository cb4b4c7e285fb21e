#include "texts/URL.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

#include <unicode/uidna.h>

#include "foundation/UTF8.hpp"

namespace zelto::texts {
namespace {

constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
/// Where a character may stand as it is. Unreserved characters and sub-delimiters of RFC 3986 may stand
/// everywhere.
enum Part : std::uint8_t { host = 1, userInformation = 2, literal = 4, path = 8, query = 16, scheme = 32 };

constexpr auto allowedIn = [] {
    std::array<std::uint8_t, 256> table{};
    const auto allow = [&](std::string_view characters, int parts) {
        for (const char c : characters) {
            auto& entry = table[static_cast<unsigned char>(c)];
            entry = static_cast<std::uint8_t>(entry | parts);
        }
    };
    const int everywhere = host | userInformation | literal | path | query;
    for (int c = 0; c < 128; ++c) {
        const char character = static_cast<char>(c);
        if (isLetter(character) || isDigit(character)) allow({&character, 1}, everywhere | scheme);
    }
    allow("-._~!$&'()*+,;=", everywhere);
    allow(":", userInformation | literal | path | query);
    allow("@/", path | query);
    allow("?", query);
    allow("+-.", scheme);
    return table;
}();

bool isAllowed(char c, Part part) {
    return (allowedIn[static_cast<unsigned char>(c)] & part) != 0;
}

bool isWellFormed(std::string_view part, Part kind) {
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (part[i] == '%') {
            if (part.size() - i < 3 || !isHexDigit(part[i + 1]) || !isHexDigit(part[i + 2])) return false;
            i += 2;
        } else if (!isAllowed(part[i], kind)) {
            return false;
        }
    }
    return true;
}

void appendPercentEncoded(std::string& out, char c) {
    static constexpr char digits[] = "0123456789ABCDEF";
    const auto byte = static_cast<std::uint8_t>(c);
    out += '%';
    out += digits[byte >> 4];
    out += digits[byte & 0x0F];
}

/// A part that is well formed stays as it is; otherwise all of it is encoded, its percent signs included.
void appendPart(std::string& out, std::string_view part, Part kind) {
    if (isWellFormed(part, kind)) {
        out += part;
        return;
    }
    for (const char c : part) {
        if (isAllowed(c, kind))
            out += c;
        else
            appendPercentEncoded(out, c);
    }
}

std::optional<std::string> asciiHost(std::string_view text) {
    if (isWellFormed(text, host)) return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    UIDNA* idna = uidna_openUTS46(
        UIDNA_CHECK_BIDI | UIDNA_CHECK_CONTEXTJ | UIDNA_NONTRANSITIONAL_TO_ASCII |
            UIDNA_NONTRANSITIONAL_TO_UNICODE,
        &status);
    std::array<char, 1024> buffer;
    UIDNAInfo info = UIDNA_INFO_INITIALIZER;
    const std::int32_t length = U_FAILURE(status) ? 0
                                                  : uidna_nameToASCII_UTF8(
                                                        idna,
                                                        text.data(),
                                                        static_cast<std::int32_t>(text.size()),
                                                        buffer.data(),
                                                        static_cast<std::int32_t>(buffer.size()),
                                                        &info,
                                                        &status);
    uidna_close(idna);
    if (U_FAILURE(status) || info.errors != 0 || length <= 0) return std::nullopt;
    std::string encoded(buffer.data(), static_cast<std::size_t>(length));
    if (!isWellFormed(encoded, host)) return std::nullopt;
    return encoded;
}

bool isPort(std::string_view text) {
    return std::ranges::all_of(text, isDigit);
}

/// Appends user information, host and port; false when one of them breaks the grammar.
bool appendAuthority(std::string& out, std::string_view authority) {
    if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
        appendPart(out, authority.substr(0, at), userInformation);
        out += '@';
        authority.remove_prefix(at + 1);
    }
    if (authority.starts_with('[')) {
        const auto close = authority.find(']');
        if (close == std::string_view::npos || !isWellFormed(authority.substr(1, close - 1), literal))
            return false;
        const auto rest = authority.substr(close + 1);
        if (!rest.empty() && (rest[0] != ':' || !isPort(rest.substr(1)))) return false;
        out += authority;
        return true;
    }
    const auto colon = authority.find(':');
    const auto port = colon == std::string_view::npos ? std::string_view() : authority.substr(colon);
    if (!port.empty() && !isPort(port.substr(1))) return false;
    const auto name = authority.substr(0, colon);
    if (name.find_first_of("[]") != std::string_view::npos) return false;
    const auto encoded = asciiHost(name);
    if (!encoded) return false;
    out += *encoded;
    out += port;
    return true;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text[0]) &&
           std::ranges::all_of(text, [](char c) { return isAllowed(c, scheme); });
}

/// The end of what a colon closes before any other delimiter; absent when it closes nothing.
std::optional<std::size_t> colonBeforeOthers(std::string_view text) {
    const auto end = text.find_first_of(":/?#[]@");
    if (end == std::string_view::npos || end == 0 || text[end] != ':') return std::nullopt;
    return end;
}

/// The path of a text without a scheme. A bracket in front of a colon is encoded and no delimiter any more:
/// the colon is encoded too, or what stands before it would be read back as a scheme.
void appendRelativePath(std::string& out, std::string_view text) {
    std::string encoded;
    appendPart(encoded, text, path);
    while (const auto colon = colonBeforeOthers(encoded)) encoded.replace(*colon, 1, "%3A");
    out += encoded;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
    if (text.empty() || !isValidUTF8(text)) return std::nullopt;
    std::string out;
    out.reserve(text.size());

    std::string_view rest = text;
    if (const auto end = colonBeforeOthers(rest)) {
        if (!isScheme(rest.substr(0, *end))) return std::nullopt;
        out += rest.substr(0, *end + 1);
        rest.remove_prefix(*end + 1);
    }
    if (rest.starts_with("//")) {
        out += "//";
        rest.remove_prefix(2);
        const auto end = std::min(rest.find_first_of("/?#"), rest.size());
        if (!appendAuthority(out, rest.substr(0, end))) return std::nullopt;
        rest.remove_prefix(end);
    }
    const auto pathEnd = std::min(rest.find_first_of("?#"), rest.size());
    if (out.empty())
        appendRelativePath(out, rest.substr(0, pathEnd));
    else
        appendPart(out, rest.substr(0, pathEnd), path);
    rest.remove_prefix(pathEnd);
    if (rest.starts_with('?')) {
        const auto fragment = std::min(rest.find('#'), rest.size());
        out += '?';
        appendPart(out, rest.substr(1, fragment - 1), query);
        rest.remove_prefix(fragment);
    }
    if (rest.starts_with('#')) {
        out += '#';
        appendPart(out, rest.substr(1), query);
    }
    return URL(std::move(out));
}

std::string percentEncodedAlphanumerics(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (isLetter(c) || isDigit(c))
            out += c;
        else
            appendPercentEncoded(out, c);
    }
    return out;
}

}  // namespace zelto::texts
