#pragma once

// Conversions at the border to ICU. Only for this room's sources: ICU stays behind foundation's own headers.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <unicode/ustring.h>

#include "foundation/Date.hpp"

namespace zelto::texts::icuText {

std::u16string utf16(std::string_view text);
std::string utf8(std::u16string_view text);

/// An instant as ICU wants it: milliseconds since 1970.
inline double milliseconds(Date date) {
    return date.since1970() * 1000;
}

/// Calls an ICU function that fills a UTF-16 buffer and tells the length that it wants; empty when it fails.
template <class Fill>
std::u16string filled(Fill fill) {
    std::u16string buffer(64, u'\0');
    for (int attempt = 0; attempt < 2; ++attempt) {
        UErrorCode status = U_ZERO_ERROR;
        const std::int32_t length = fill(buffer.data(), static_cast<std::int32_t>(buffer.size()), &status);
        if (status == U_BUFFER_OVERFLOW_ERROR) {
            buffer.resize(static_cast<std::size_t>(length) + 1);
            continue;
        }
        if (U_FAILURE(status)) break;
        buffer.resize(static_cast<std::size_t>(length));
        return buffer;
    }
    return {};
}

}  // namespace zelto::texts::icuText
