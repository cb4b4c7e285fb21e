#include "platform/foundation/URL.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

#include <unicode/uidna.h>

#include "platform/foundation/UTF8.hpp"

namespace zelto {
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
constexpr bool contains(std::string_view set, char c) {
    return set.find(c) != std::string_view::npos;
}

/// Unreserved characters and sub-delimiters of RFC 3986, and those that the part allows besides.
bool isAllowed(char c, std::string_view besides) {
    return isLetter(c) || isDigit(c) || contains("-._~!$&'()*+,;=", c) || contains(besides, c);
}

bool isWellFormed(std::string_view part, std::string_view besides) {
    for (std::size_t i = 0; i < part.size(); ++i) {
        if (part[i] == '%') {
            if (part.size() - i < 3 || !isHexDigit(part[i + 1]) || !isHexDigit(part[i + 2])) return false;
            i += 2;
        } else if (!isAllowed(part[i], besides)) {
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
void appendPart(std::string& out, std::string_view part, std::string_view besides) {
    if (isWellFormed(part, besides)) {
        out += part;
        return;
    }
    for (const char c : part) {
        if (isAllowed(c, besides))
            out += c;
        else
            appendPercentEncoded(out, c);
    }
}

std::optional<std::string> asciiHost(std::string_view host) {
    if (isWellFormed(host, "")) return std::string(host);
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
                                                        host.data(),
                                                        static_cast<std::int32_t>(host.size()),
                                                        buffer.data(),
                                                        static_cast<std::int32_t>(buffer.size()),
                                                        &info,
                                                        &status);
    uidna_close(idna);
    if (U_FAILURE(status) || info.errors != 0 || length <= 0) return std::nullopt;
    std::string encoded(buffer.data(), static_cast<std::size_t>(length));
    if (!isWellFormed(encoded, "")) return std::nullopt;
    return encoded;
}

bool isPort(std::string_view text) {
    return std::ranges::all_of(text, isDigit);
}

/// Appends user information, host and port; false when one of them breaks the grammar.
bool appendAuthority(std::string& out, std::string_view authority) {
    if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
        appendPart(out, authority.substr(0, at), ":");
        out += '@';
        authority.remove_prefix(at + 1);
    }
    if (authority.starts_with('[')) {
        const auto close = authority.find(']');
        if (close == std::string_view::npos || !isWellFormed(authority.substr(1, close - 1), ":"))
            return false;
        const auto rest = authority.substr(close + 1);
        if (!rest.empty() && (rest[0] != ':' || !isPort(rest.substr(1)))) return false;
        out += authority;
        return true;
    }
    const auto colon = authority.find(':');
    const auto port = colon == std::string_view::npos ? std::string_view() : authority.substr(colon);
    if (!port.empty() && !isPort(port.substr(1))) return false;
    const auto host = authority.substr(0, colon);
    if (host.find_first_of("[]") != std::string_view::npos) return false;
    const auto encoded = asciiHost(host);
    if (!encoded) return false;
    out += *encoded;
    out += port;
    return true;
}

bool isScheme(std::string_view text) {
    return !text.empty() && isLetter(text[0]) &&
           std::ranges::all_of(text, [](char c) { return isLetter(c) || isDigit(c) || contains("+-.", c); });
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
    if (text.empty() || !isValidUTF8(text)) return std::nullopt;
    std::string out;
    out.reserve(text.size());

    std::string_view rest = text;
    if (const auto end = rest.find_first_of(":/?#[]@");
        end != std::string_view::npos && end > 0 && rest[end] == ':') {
        if (!isScheme(rest.substr(0, end))) return std::nullopt;
        out += rest.substr(0, end + 1);
        rest.remove_prefix(end + 1);
    }
    if (rest.starts_with("//")) {
        out += "//";
        rest.remove_prefix(2);
        const auto end = std::min(rest.find_first_of("/?#"), rest.size());
        if (!appendAuthority(out, rest.substr(0, end))) return std::nullopt;
        rest.remove_prefix(end);
    }
    const auto query = std::min(rest.find_first_of("?#"), rest.size());
    appendPart(out, rest.substr(0, query), ":@/");
    rest.remove_prefix(query);
    if (rest.starts_with('?')) {
        const auto fragment = std::min(rest.find('#'), rest.size());
        out += '?';
        appendPart(out, rest.substr(1, fragment - 1), ":@/?");
        rest.remove_prefix(fragment);
    }
    if (rest.starts_with('#')) {
        out += '#';
        appendPart(out, rest.substr(1), ":@/?");
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

}  // namespace zelto
