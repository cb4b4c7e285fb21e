#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto::texts {

/// A byte count in file style before it meets a locale: an exact decimal without padding ("1.23", "-4") and a
/// unit.
struct ByteCount {
    std::string number;
    std::string_view unit;

    /// Units of 1000; no digits behind the point up to KB, at most one for MB, two from GB up; halves away
    /// from zero; a value that would round to 1000 of a unit takes the next one.
    static ByteCount of(std::int64_t bytes);
};

}  // namespace zelto::texts
