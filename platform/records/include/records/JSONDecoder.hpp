#pragma once

#include <cstddef>
#include <string_view>
#include <utility>

#include "foundation/Result.hpp"
#include "records/Record.hpp"

namespace zelto::records {

/// Decodes one JSON document into a blank value of the schema's type. Strict: a missing required key, a wrong
/// type or a fault of the syntax rejects all of it; unknown keys are skipped, the first of duplicate keys
/// wins. Values nested deeper than `maximumDepth` reject; under unknown keys any depth passes. The fault is
/// the document's first; its path is "line 1, column 214" for one of the syntax. Never raises.
Result<void> decodeJSON(
    std::string_view document, const Schema& schema, void* value, std::size_t maximumDepth);

template <class T>
Result<T> decodeJSON(std::string_view document, std::size_t maximumDepth = 256) {
    Result<T> out(blank<T>());
    if (auto decoded = decodeJSON(document, schemaOf<T>(), &*out, maximumDepth); !decoded)
        out = std::move(decoded).fault();
    return out;
}

}  // namespace zelto::records
