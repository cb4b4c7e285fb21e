#pragma once

#include <chrono>
#include <filesystem>

namespace zelto::test {

/// A file as if it had been written a minute ago.
inline std::filesystem::path aged(const std::filesystem::path& file) {
    std::filesystem::last_write_time(
        file, std::filesystem::file_time_type::clock::now() - std::chrono::minutes(1));
    return file;
}

}  // namespace zelto::test
