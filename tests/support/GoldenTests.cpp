#include "foundation/Files.hpp"
#include "tests/support/Golden.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {
namespace {

TEST(Golden, FailsOnDifferenceAndOnAbsenceAndLeavesTheNewText) {
    const TemporaryFolder folder;
    folder.write("a.txt", "one\ntwo\n");
    EXPECT_TRUE(matchesGolden(folder.path(), "a", "one\ntwo\n", false));
    EXPECT_FALSE(matchesGolden(folder.path(), "a", "one\nthree\n", false));
    EXPECT_EQ(readFile(folder.path() / "a.new.txt"), "one\nthree\n");
    EXPECT_FALSE(matchesGolden(folder.path(), "b", "x", false));
    EXPECT_EQ(readFile(folder.path() / "b.new.txt"), "x");
}

TEST(Golden, AcceptsWhenToldTo) {
    const TemporaryFolder folder;
    EXPECT_TRUE(matchesGolden(folder.path(), "a", "new\n", true));
    EXPECT_TRUE(matchesGolden(folder.path(), "a", "new\n", false));
}

}  // namespace
}  // namespace zelto::test
