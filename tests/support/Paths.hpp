#pragma once

#include <filesystem>

namespace zelto::test {

/// Checked-in files that tests read.
inline std::filesystem::path dataFolder() {
    return std::filesystem::path(ZELTO_TESTS_FOLDER) / "data";
}
inline std::filesystem::path goldenFolder() {
    return std::filesystem::path(ZELTO_TESTS_FOLDER) / "goldens";
}
/// Where the programs were built.
inline std::filesystem::path programFolder() {
    return ZELTO_PROGRAM_FOLDER;
}

}  // namespace zelto::test
