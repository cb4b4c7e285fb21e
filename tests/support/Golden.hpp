#pragma once

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace zelto::test {

/// Compares a text with the checked-in file of that name. A missing file fails; a text that differs is left
/// beside it as NAME.new.txt; ZELTO_UPDATE_GOLDENS=1 accepts what came out.
testing::AssertionResult matchesGolden(const std::string& name, const std::string& text);

/// The same with everything that matters passed in.
testing::AssertionResult matchesGolden(
    const std::filesystem::path& folder, const std::string& name, const std::string& text, bool accept);

}  // namespace zelto::test
