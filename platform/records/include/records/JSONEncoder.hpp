#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "records/Record.hpp"

namespace zelto::records {

/// A value as compact JSON, keys in table order, absent optionals left out, slashes escaped; absent when a
/// number is not finite or a string is not UTF-8.
std::optional<std::string> encodeJSON(const Schema& schema, const void* value);

template <class T>
std::optional<std::string> encodeJSON(const T& value) {
    return encodeJSON(schemaOf<T>(), &value);
}

/// Appends `text` as a JSON string; false when it is not UTF-8.
bool appendJSONString(std::string& out, std::string_view text);

/// How many bytes a text takes as a JSON string, without its quotes.
std::size_t jsonLength(std::string_view text);

/// The number of leading bytes of `text`, whole code points, that take at most `bytes` bytes in JSON.
std::size_t jsonPrefix(std::string_view text, std::size_t bytes);

}  // namespace zelto::records
