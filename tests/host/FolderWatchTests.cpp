#include <gtest/gtest.h>

#include "host/FolderWatch.hpp"
#include "tests/support/Readable.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

namespace fs = std::filesystem;

struct FolderWatching : testing::Test {
    test::TemporaryFolder root;
    fs::path folder = root.path() / "home/Library/Zelto";
    FolderWatch watch;

    /// Whether there is news, without a wait.
    bool isOther() { return test::canBeRead(watch.fd(), 0) && watch.take(); }
};

TEST_F(FolderWatching, SeesAFolderAppearThroughTheNearestThatExists) {
    watch.follow({folder});
    EXPECT_FALSE(isOther());
    fs::create_directory(root.path() / "home");
    EXPECT_FALSE(isOther());
    fs::create_directory(root.path() / "home/Library");
    EXPECT_FALSE(isOther());
    fs::create_directory(folder);
    EXPECT_TRUE(isOther());
    EXPECT_FALSE(isOther());
}

TEST_F(FolderWatching, SeesAllFoldersAppearAtOnce) {
    watch.follow({folder});
    fs::create_directories(folder);
    EXPECT_TRUE(isOther());
    EXPECT_FALSE(isOther());
}

TEST_F(FolderWatching, SeesItGoAndComeAgain) {
    fs::create_directories(folder);
    watch.follow({folder});
    EXPECT_FALSE(isOther());
    fs::remove_all(folder);
    EXPECT_TRUE(isOther());
    fs::create_directory(folder);
    EXPECT_TRUE(isOther());
    fs::remove_all(folder);
    fs::create_directory(folder);
    EXPECT_TRUE(isOther());
}

TEST_F(FolderWatching, SeesItReplacedByAnother) {
    fs::create_directories(folder);
    fs::create_directories(root.path() / "other");
    watch.follow({folder});
    fs::rename(folder, root.path() / "old");
    fs::rename(root.path() / "other", folder);
    EXPECT_TRUE(isOther());
}

TEST_F(FolderWatching, SeesAFolderAboveItGo) {
    fs::create_directories(folder);
    watch.follow({folder});
    fs::rename(root.path() / "home", root.path() / "old");
    EXPECT_TRUE(isOther());
    fs::rename(root.path() / "old", root.path() / "home");
    EXPECT_TRUE(isOther());
}

TEST_F(FolderWatching, IsNotInterestedInWhatHappensInside) {
    fs::create_directories(folder);
    watch.follow({folder});
    root.write("home/Library/Zelto/widget.json", "{}");
    root.write("home/Library/other", "");
    EXPECT_FALSE(test::canBeRead(watch.fd(), 0));
}

TEST_F(FolderWatching, FollowsOthersFromThenOn) {
    watch.follow({folder});
    watch.follow({root.path() / "other"});
    fs::create_directories(folder);
    EXPECT_FALSE(isOther());
    fs::create_directory(root.path() / "other");
    EXPECT_TRUE(isOther());
}

}  // namespace
}  // namespace zelto::host
