#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

/// A fuzzer's bytes, taken from the front.
struct FuzzBytes {
    const std::uint8_t* data;
    std::size_t size;

    std::uint8_t byte() {
        if (size == 0) return 0;
        --size;
        return *data++;
    }
    std::string take(std::size_t count) {
        count = std::min(count, size);
        std::string out(reinterpret_cast<const char*>(data), count);
        data += count;
        size -= count;
        return out;
    }
    std::string rest() { return take(size); }
};
