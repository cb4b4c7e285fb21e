#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "records/Record.hpp"

namespace zelto {

/// Appends a value as compact JSON, keys in table order, absent optionals left out, slashes escaped. False
/// when a number is not finite or a string is not UTF-8; `out` is then of no use.
bool encodeJSON(const Schema& schema, const void* value, std::string& out);

/// The value as a JSON document; absent when it cannot be written.
template <class T>
std::optional<std::string> encodeJSON(const T& value) {
    std::optional<std::string> out(std::in_place);
    if (!encodeJSON(schemaOf<T>(), &value, *out)) out.reset();
    return out;
}

/// Appends `text` as a JSON string; false when it is not UTF-8.
bool appendJSONString(std::string& out, std::string_view text);

/// How many bytes a text takes as a JSON string, without its quotes.
std::size_t jsonLength(std::string_view text);

/// The number of leading bytes of `text`, whole code points, that take at most `bytes` bytes in JSON.
std::size_t jsonPrefix(std::string_view text, std::size_t bytes);

}  // namespace zelto
