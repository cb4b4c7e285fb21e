#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/foundation/Files.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {
namespace {

namespace fs = std::filesystem;

std::size_t entries(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(ReadFile, GivesTheBytesOfARegularFile) {
    const TemporaryFolder folder;
    EXPECT_EQ(readFile(folder.write("a", std::string("x\0y", 3))), std::string("x\0y", 3));
    EXPECT_EQ(readFile(folder.write("empty", "")), "");
}

TEST(ReadFile, ReadsKernelFilesThatTellNoSize) {
    EXPECT_GT(readFile("/proc/self/status").value_or("").size(), 100U);
}

TEST(ReadFile, IsAbsentForFoldersAndFIFOsAndMissingFiles) {
    const TemporaryFolder folder;
    ASSERT_EQ(mkfifo((folder.path() / "fifo").c_str(), 0600), 0);
    EXPECT_FALSE(readFile(folder.path()));
    EXPECT_FALSE(readFile(folder.path() / "fifo"));
    EXPECT_FALSE(readFile(folder.path() / "missing"));
    EXPECT_FALSE(readFile("/dev/zero"));
}

TEST(WriteFileAtomically, ReplacesTheFileAndLeavesNothingElse) {
    const TemporaryFolder folder;
    const auto file = folder.write("a", "old");
    EXPECT_TRUE(writeFileAtomically(file, "new"));
    EXPECT_EQ(readFile(file), "new");
    EXPECT_EQ(entries(folder.path()), 1U);
}

TEST(WriteFileAtomically, LeavesNoLitterWhenItFails) {
    const TemporaryFolder folder;
    fs::create_directories(folder.path() / "taken/inside");
    EXPECT_FALSE(
        writeFileAtomically(folder.path() / "taken", "new"));  // a folder cannot be replaced by a file
    EXPECT_EQ(entries(folder.path()), 1U);
    EXPECT_FALSE(writeFileAtomically(folder.path() / "missing/a", "new"));
}

TEST(WriteFileAtomically, ReplacesALinkInsteadOfFollowingIt) {
    const TemporaryFolder folder;
    const auto victim = folder.write("victim", "precious");
    fs::create_symlink(victim, folder.path() / "a");
    EXPECT_TRUE(writeFileAtomically(folder.path() / "a", "new"));
    EXPECT_EQ(readFile(victim), "precious");
    EXPECT_FALSE(fs::is_symlink(folder.path() / "a"));
}

TEST(HomeLookup, PrefersTheUserDatabaseThenTheEnvironment) {
    const auto some = [](std::string text) {
        return [text]() -> std::optional<std::string> { return text; };
    };
    const auto none = []() -> std::optional<std::string> { return std::nullopt; };
    EXPECT_EQ((HomeLookup{some("/db"), some("/env")}.home()), "/db");
    EXPECT_EQ((HomeLookup{none, some("/env")}.home()), "/env");
    EXPECT_EQ((HomeLookup{none, none}.home()), "/");
    EXPECT_FALSE(HomeLookup::system().home().empty());
}

}  // namespace
}  // namespace zelto::test
