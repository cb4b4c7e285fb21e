#include "records/JSONEncoder.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "foundation/NumberText.hpp"
#include "foundation/UTF8.hpp"

namespace zelto::records {
namespace {

using Kind = Schema::Kind;

constexpr char isUTF8 = 'x';

/// Per byte: 0 passes as it is, isUTF8 belongs to a longer sequence, 'u' is written as \u00XX, anything else
/// as a backslash and that letter.
constexpr auto escapes = [] {
    std::array<char, 256> table{};
    for (std::size_t c = 0; c < 0x20; ++c) table[c] = 'u';
    for (std::size_t c = 0x80; c < 0x100; ++c) table[c] = isUTF8;
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

/// The number of leading bytes, in steps of eight, that pass as they are.
std::size_t plainPrefix(std::string_view text) {
    constexpr std::uint64_t ones = 0x0101010101010101U, highs = 0x8080808080808080U;
    const auto holds = [](std::uint64_t bytes, std::uint64_t byte) {
        const std::uint64_t zeroed = bytes ^ (ones * byte);
        return (zeroed - ones) & ~zeroed & highs;
    };
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text.data() + i, sizeof bytes);
        const std::uint64_t control = (bytes - ones * 0x20) & ~bytes & highs;
        if (((bytes & highs) | control | holds(bytes, '"') | holds(bytes, '\\') | holds(bytes, '/')) != 0)
            break;
    }
    return i;
}

/// Writes into the room behind a text's end and tells the text its length once, when all is written.
class Writer {
  public:
    explicit Writer(std::string& out) : out_(out), at_(out.data() + out.size()), end_(at_) {}
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { out_.resize(length()); }

    void put(char c) {
        reserve(1);
        *at_++ = c;
    }
    void put(std::string_view text) {
        reserve(text.size());
        std::memcpy(at_, text.data(), text.size());
        at_ += text.size();
    }
    /// `,"name":`, or with another mark before it. Names are letters and digits.
    void putKey(char before, std::string_view name) {
        reserve(name.size() + 4);
        *at_++ = before;
        *at_++ = '"';
        std::memcpy(at_, name.data(), name.size());
        at_ += name.size();
        *at_++ = '"';
        *at_++ = ':';
    }
    /// The same as a value.
    void putName(std::string_view name) {
        reserve(name.size() + 2);
        *at_++ = '"';
        std::memcpy(at_, name.data(), name.size());
        at_ += name.size();
        *at_++ = '"';
    }
    template <class Integer>
    void putInteger(Integer value) {
        reserve(longestNumber);
        at_ = std::to_chars(at_, end_, value).ptr;
    }
    bool putNumber(double value) {
        if (!std::isfinite(value)) return false;
        reserve(longestNumber);
        at_ = writeNumber(at_, value);
        return true;
    }
    bool putString(std::string_view text);
    bool putValue(const Schema& schema, const void* value);

  private:
    std::size_t length() const { return static_cast<std::size_t>(at_ - out_.data()); }
    void reserve(std::size_t more) {
        if (static_cast<std::size_t>(end_ - at_) < more) [[unlikely]]
            grow(more);
    }
    [[gnu::noinline]] void grow(std::size_t more) {
        const std::size_t used = length();
        out_.resize(2 * out_.size() + more + 4096);
        at_ = out_.data() + used;
        end_ = out_.data() + out_.size();
    }
    bool putRecord(const Schema& schema, const void* value);
    bool putList(const Schema& schema, const void* value);
    bool putToken(const Schema& schema, const void* value);

    std::string& out_;
    char* at_;
    char* end_;
    std::string scratch_;
};

bool Writer::putString(std::string_view text) {
    put('"');
    std::size_t begin = 0;
    for (std::size_t i = plainPrefix(text); i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const char escape = escapes[byte];
        if (escape == 0) {
            ++i;
        } else if (escape == isUTF8) {
            const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            if (validUTF8Prefix(text.substr(i, length)) < length) return false;
            i += length;
            i += plainPrefix(text.substr(i));
        } else {
            put(text.substr(begin, i - begin));
            begin = ++i;
            put('\\');
            put(escape);
            if (escape == 'u') {
                put("00");
                put(static_cast<char>('0' + (byte >> 4)));
                put("0123456789abcdef"[byte & 0x0F]);
            }
            i += plainPrefix(text.substr(i));
        }
    }
    put(text.substr(begin));
    put('"');
    return true;
}

bool Writer::putRecord(const Schema& schema, const void* value) {
    const std::size_t start = length();
    for (const auto& field : schema.fields) {
        const Schema* inner = &field.schema();
        const void* member = schema.address(field, value);
        if (inner->kind == Kind::optional) {
            if (inner->count(member) == 0) continue;
            member = inner->at(member, 0);
            inner = &inner->element();
        }
        putKey(',', field.name);
        if (!putValue(*inner, member)) return false;
    }
    if (length() == start)
        put('{');
    else
        out_[start] = '{';  // in place of the comma before the first key
    put('}');
    return true;
}

bool Writer::putList(const Schema& schema, const void* value) {
    const std::size_t count = schema.count(value);
    const Schema& element = schema.element();
    put('[');
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0) put(',');
        if (!putValue(element, schema.at(value, i))) return false;
    }
    put(']');
    return true;
}

bool Writer::putToken(const Schema& schema, const void* value) {
    scratch_.clear();
    schema.print(value, scratch_);
    return putString(scratch_);
}

bool Writer::putValue(const Schema& schema, const void* value) {
    switch (schema.kind) {
        case Kind::boolean:
            put(std::string_view(*static_cast<const bool*>(value) ? "true" : "false"));
            return true;
        case Kind::integer: putInteger(*static_cast<const std::int64_t*>(value)); return true;
        case Kind::unsignedInteger: putInteger(*static_cast<const std::uint64_t*>(value)); return true;
        case Kind::real: return putNumber(*static_cast<const double*>(value));
        case Kind::date: return putNumber(static_cast<const Date*>(value)->sinceReference);
        case Kind::string: return putString(*static_cast<const std::string*>(value));
        case Kind::token:
        case Kind::bytes: return putToken(schema, value);
        case Kind::enumeration: putName(schema.caseName(value)); return true;
        case Kind::optional:
            // Only a record can leave an absent value out.
            return schema.count(value) == 1 && putValue(schema.element(), schema.at(value, 0));
        case Kind::list: return putList(schema, value);
        case Kind::record: return putRecord(schema, value);
        case Kind::choice: {
            const auto& chosen = schema.cases[schema.count(value)];
            putKey('{', chosen.name);
            if (!putValue(chosen.schema(), schema.at(value, 0))) return false;
            put('}');
            return true;
        }
    }
    return false;
}

/// How many bytes one byte of a text takes.
std::size_t encodedLength(char c) {
    const char escape = escapes[static_cast<unsigned char>(c)];
    return escape == 0 || escape == isUTF8 ? 1 : escape == 'u' ? 6 : 2;
}

}  // namespace

std::size_t jsonLength(std::string_view text) {
    std::size_t length = 0;
    for (const char c : text) length += encodedLength(c);
    return length;
}

std::size_t jsonPrefix(std::string_view text, std::size_t bytes) {
    std::size_t end = 0, length = 0;
    while (end < text.size() && (length += encodedLength(text[end])) <= bytes) ++end;
    // The rest of a code point goes with its first byte.
    while (end > 0 && end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return end;
}

bool appendJSONString(std::string& out, std::string_view text) {
    return Writer(out).putString(text);
}

std::optional<std::string> encodeJSON(const Schema& schema, const void* value) {
    std::string out;
    if (!Writer(out).putValue(schema, value)) return std::nullopt;
    return out;
}

}  // namespace zelto::records
