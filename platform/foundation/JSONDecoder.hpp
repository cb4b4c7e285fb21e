#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Record.hpp"

namespace zelto {

/// The first fault of a document that was rejected.
struct DecodingError {
    /// Where the fault is: "battery.limit", "clips[1].id", or "line 1, column 214" for a fault of the syntax.
    std::string place;
    /// What it is: "missing", "expected an integer, found 80.5", "not a URL".
    std::string reason;

    std::string text() const { return place + ": " + reason; }
};

/// Decodes one JSON document into the blank value at `out`. Strict: a missing required key, a wrong type or a
/// fault of the syntax rejects all of it; unknown keys are skipped, the first of duplicate keys wins. Values
/// nested deeper than `maximumDepth` reject; under unknown keys any depth passes. Never raises.
bool decodeJSON(
    std::string_view document, const Schema& schema, void* out, DecodingError* error,
    std::size_t maximumDepth);

template <class T>
std::optional<T> decodeJSON(
    std::string_view document, DecodingError* error = nullptr, std::size_t maximumDepth = 256) {
    std::optional<T> value(blank<T>());
    if (!decodeJSON(document, schemaOf<T>(), &*value, error, maximumDepth)) value.reset();
    return value;
}

}  // namespace zelto
