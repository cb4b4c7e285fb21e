#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The kernel tells most things as one value in a file of its own.

namespace zelto::system {

/// A file's first line, without its end; absent when it cannot be read.
std::optional<std::string> kernelLine(const std::filesystem::path& file);
/// An integer that is all of the first line.
std::optional<std::int64_t> kernelInteger(const std::filesystem::path& file);
/// What a text begins with, blanks before it aside; absent when that is no finite number.
std::optional<double> leadingNumber(std::string_view text);
/// What a folder holds, ordered by name; empty when it cannot be read.
std::vector<std::filesystem::path> entriesOf(const std::filesystem::path& folder);

}  // namespace zelto::system
