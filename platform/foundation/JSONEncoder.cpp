#include "platform/foundation/JSONEncoder.hpp"

#include <array>
#include <charconv>
#include <cmath>

#include "platform/foundation/NumberText.hpp"
#include "platform/foundation/UTF8.hpp"

namespace zelto {
namespace {

using Kind = Schema::Kind;

/// Per byte: 0 passes as it is, 'u' is written as \u00XX, anything else as a backslash and that letter.
constexpr auto escapes = [] {
    std::array<char, 256> table{};
    for (std::size_t c = 0; c < 0x20; ++c) table[c] = 'u';
    table['\b'] = 'b';
    table['\f'] = 'f';
    table['\n'] = 'n';
    table['\r'] = 'r';
    table['\t'] = 't';
    table['"'] = '"';
    table['\\'] = '\\';
    table['/'] = '/';
    return table;
}();

template <class Integer>
void appendInteger(std::string& out, Integer value) {
    std::array<char, 24> text;
    out.append(text.begin(), std::to_chars(text.begin(), text.end(), value).ptr);
}

bool appendRecord(std::string& out, const Schema& schema, const void* value) {
    char separator = '{';
    for (const auto& field : schema.fields) {
        const Schema* inner = &field.schema();
        const void* member = schema.address(field, value);
        if (inner->kind == Kind::optional) {
            if (inner->count(member) == 0) continue;
            member = inner->at(member, 0);
            inner = &inner->element();
        }
        out += separator;
        out += field.encodedKey;
        if (!encodeJSON(*inner, member, out)) return false;
        separator = ',';
    }
    if (separator == '{') out += '{';
    out += '}';
    return true;
}

bool appendList(std::string& out, const Schema& schema, const void* value) {
    const std::size_t count = schema.count(value);
    const Schema& element = schema.element();
    out += '[';
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) out += ',';
        if (!encodeJSON(element, schema.at(value, i), out)) return false;
    }
    out += ']';
    return true;
}

}  // namespace

bool appendJSONString(std::string& out, std::string_view text) {
    if (!isValidUTF8(text)) return false;
    out += '"';
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const char escape = escapes[byte];
        if (escape == 0) continue;
        out += text.substr(begin, i - begin);
        begin = i + 1;
        out += '\\';
        out += escape;
        if (escape != 'u') continue;
        out += "00";
        out += static_cast<char>('0' + (byte >> 4));
        out += "0123456789abcdef"[byte & 0x0F];
    }
    out += text.substr(begin);
    out += '"';
    return true;
}

bool encodeJSON(const Schema& schema, const void* value, std::string& out) {
    switch (schema.kind) {
        case Kind::boolean: out += *static_cast<const bool*>(value) ? "true" : "false"; return true;
        case Kind::integer: appendInteger(out, *static_cast<const std::int64_t*>(value)); return true;
        case Kind::unsignedInteger:
            appendInteger(out, *static_cast<const std::uint64_t*>(value));
            return true;
        case Kind::real: {
            const double number = *static_cast<const double*>(value);
            if (!std::isfinite(number)) return false;
            appendNumber(out, number);
            return true;
        }
        case Kind::string: return appendJSONString(out, *static_cast<const std::string*>(value));
        case Kind::token: {
            std::string text;
            schema.print(value, text);
            return appendJSONString(out, text);
        }
        case Kind::optional:
            if (schema.count(value) == 0) return false;  // only a record can leave an absent value out
            return encodeJSON(schema.element(), schema.at(value, 0), out);
        case Kind::list: return appendList(out, schema, value);
        case Kind::record: return appendRecord(out, schema, value);
        case Kind::choice: {
            const auto& chosen = schema.cases[schema.count(value)];
            out += '{';
            out += chosen.encodedKey;
            if (!encodeJSON(chosen.schema(), schema.at(value, 0), out)) return false;
            out += '}';
            return true;
        }
    }
    return false;
}

}  // namespace zelto
