#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "foundation/FileDescriptor.hpp"
#include "foundation/Files.hpp"
#include "tests/platform/foundation/SystemCalls.hpp"
#include "tests/support/Ages.hpp"
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

TEST(ReadFile, IsAbsentForMoreBytesThanWanted) {
    const TemporaryFolder folder;
    const auto file = folder.write("a", std::string(100, 'x'));
    EXPECT_TRUE(readFile(file, 100));
    EXPECT_FALSE(readFile(file, 99));
    // Also where the size is not told beforehand.
    EXPECT_FALSE(readFile("/proc/self/status", 100));
    EXPECT_TRUE(readFile("/proc/self/status", 100'000));
}

TEST(WriteFileAtomically, LeavesTheOldBytesToWhoeverHoldsTheOldFile) {
    const TemporaryFolder folder;
    const auto file = folder.write("a", "old");
    fs::create_hard_link(file, folder.path() / "b");
    std::ifstream open(file);
    EXPECT_TRUE(writeFileAtomically(file, "new"));
    EXPECT_EQ(readFile(folder.path() / "b"), "old");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(open), {}), "old");
}

TEST(WriteFileAtomically, WaitsForTheDiskBeforeAndAfterTheRenameUnlessToldNotTo) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "a";
    SystemCalls::synced.clear();
    EXPECT_TRUE(writeFileAtomically(file, "new", {.durability = Durability::processDeath}));
    EXPECT_TRUE(SystemCalls::synced.empty());
    EXPECT_TRUE(writeFileAtomically(file, "new"));
    // The file while it has its temporary name, then the folder.
    ASSERT_EQ(SystemCalls::synced.size(), 2U);
    EXPECT_TRUE(SystemCalls::synced[0].starts_with((folder.path() / ".a.").string()))
        << SystemCalls::synced[0];
    EXPECT_EQ(SystemCalls::synced[1], folder.path());
}

TEST(RemoveLeftovers, SparesWhatIsBeingWritten) {
    const TemporaryFolder folder;
    const std::string dead = ".a.6F9619FF-8B86-D011-B42D-00CF4FC964FF";
    const std::string live = ".a.6F9619FF-8B86-D011-B42D-00CF4FC964AA";
    const std::string fresh = ".a.6F9619FF-8B86-D011-B42D-00CF4FC964BB";
    aged(folder.write(dead, ""));
    folder.write(fresh, "");  // its writer has not locked it yet
    const FileDescriptor fd(open(aged(folder.write(live, "")).c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(fd.get(), LOCK_EX | LOCK_NB), 0);
    removeLeftovers(folder.path() / "a");
    EXPECT_FALSE(fs::exists(folder.path() / dead));
    EXPECT_TRUE(fs::exists(folder.path() / fresh));
    EXPECT_TRUE(fs::exists(folder.path() / live));
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

TEST(HomeLookup, AsksForTheRealUserAndReadsAnEntryOfAnyLength) {
    SystemCalls::user = 4242;
    SystemCalls::entryBytes = 300'000;
    EXPECT_EQ(HomeLookup::system().userDatabase(), "/home/of/4242");
    SystemCalls::user.reset();
    SystemCalls::entryBytes = 0;
}

}  // namespace
}  // namespace zelto::test
