#include "tests/support/Golden.hpp"

#include <cstdlib>
#include <fstream>

#include "foundation/Files.hpp"
#include "tests/support/Paths.hpp"

namespace zelto::test {
namespace {

void write(const std::filesystem::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary) << text;
}

/// The first line in which two texts differ.
std::string difference(const std::string& expected, const std::string& actual) {
    std::size_t begin = 0, line = 1;
    while (begin < expected.size() || begin < actual.size()) {
        const auto lineOf = [begin](const std::string& text) {
            return begin > text.size() ? std::string() : text.substr(begin, text.find('\n', begin) - begin);
        };
        const std::string want = lineOf(expected), got = lineOf(actual);
        if (want != got)
            return "line " + std::to_string(line) + "\n  expected: " + want + "\n  actual:   " + got;
        begin += want.size() + 1;
        ++line;
    }
    return "the end";
}

}  // namespace

testing::AssertionResult matchesGolden(
    const std::filesystem::path& folder, const std::string& name, const std::string& text, bool accept) {
    const auto path = folder / (name + ".txt"), fresh = folder / (name + ".new.txt");
    const auto expected = readFile(path);
    if (expected && *expected == text) {
        std::filesystem::remove(fresh);
        return testing::AssertionSuccess();
    }
    if (accept) {
        write(path, text);
        std::filesystem::remove(fresh);
        return testing::AssertionSuccess();
    }
    write(fresh, text);
    if (!expected) return testing::AssertionFailure() << "there is no " << path << "; see " << fresh;
    return testing::AssertionFailure() << path << " differs in " << difference(*expected, text);
}

testing::AssertionResult matchesGolden(const std::string& name, const std::string& text) {
    const char* accept = std::getenv("ZELTO_UPDATE_GOLDENS");
    return matchesGolden(goldenFolder(), name, text, accept && std::string(accept) == "1");
}

}  // namespace zelto::test
