#include <gtest/gtest.h>

#include "runloop/PathWatch.hpp"
#include "tests/support/Readable.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

namespace fs = std::filesystem;

struct PathWatching : testing::Test {
    test::TemporaryFolder root;
    fs::path folder = root.path() / "home/Library/Zelto";
    runloop::PathWatch watch;

    /// Whether there is news, without a wait.
    bool isOther() { return test::canBeRead(watch.fd(), 0) && watch.take().folders; }
};

TEST_F(PathWatching, SeesAFolderAppearThroughTheNearestThatExists) {
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

TEST_F(PathWatching, SeesAllFoldersAppearAtOnce) {
    watch.follow({folder});
    fs::create_directories(folder);
    EXPECT_TRUE(isOther());
    EXPECT_FALSE(isOther());
}

TEST_F(PathWatching, SeesItGoAndComeAgain) {
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

TEST_F(PathWatching, SeesItReplacedByAnother) {
    fs::create_directories(folder);
    fs::create_directories(root.path() / "other");
    watch.follow({folder});
    fs::rename(folder, root.path() / "old");
    fs::rename(root.path() / "other", folder);
    EXPECT_TRUE(isOther());
}

TEST_F(PathWatching, SeesAFolderAboveItGo) {
    fs::create_directories(folder);
    watch.follow({folder});
    fs::rename(root.path() / "home", root.path() / "old");
    EXPECT_TRUE(isOther());
    fs::rename(root.path() / "old", root.path() / "home");
    EXPECT_TRUE(isOther());
}

TEST_F(PathWatching, IsNotInterestedInWhatHappensInside) {
    fs::create_directories(folder);
    watch.follow({folder});
    root.write("home/Library/Zelto/widget.json", "{}");
    root.write("home/Library/other", "");
    EXPECT_FALSE(test::canBeRead(watch.fd(), 0));
}

TEST_F(PathWatching, FollowsOthersFromThenOn) {
    watch.follow({folder});
    watch.follow({root.path() / "other"});
    fs::create_directories(folder);
    EXPECT_FALSE(isOther());
    fs::create_directory(root.path() / "other");
    EXPECT_TRUE(isOther());
}

TEST_F(PathWatching, SeesAFileChangeGoAndComeAgain) {
    const fs::path file = folder / "widget.json", other = folder / "other.json";
    const auto changed = [this] {
        return test::canBeRead(watch.fd(), 0) ? watch.take().files : std::set<std::string>{};
    };
    const std::set<std::string> none, one{file.string()};
    watch.follow({folder}, {file, other});
    root.write("home/Library/Zelto/widget.json", "1");
    {
        const auto changes = watch.take();
        EXPECT_TRUE(changes.folders);
        EXPECT_EQ(changes.files, one);
    }
    EXPECT_EQ(changed(), none);
    // Written in place, and put in its place.
    root.write("home/Library/Zelto/widget.json", "22");
    EXPECT_EQ(changed(), one);
    root.write("home/Library/Zelto/new", "333");
    EXPECT_EQ(changed(), none);
    fs::rename(folder / "new", file);
    EXPECT_EQ(changed(), one);
    fs::remove(file);
    EXPECT_EQ(changed(), one);
    root.write("home/Library/Zelto/widget.json", "333");
    EXPECT_EQ(changed(), one);
    root.write("home/Library/Zelto/other.json", "333");
    EXPECT_EQ(changed(), std::set<std::string>{other.string()});
    // With its folder.
    fs::rename(root.path() / "home", root.path() / "old");
    EXPECT_EQ(changed(), (std::set<std::string>{file.string(), other.string()}));
    fs::rename(root.path() / "old", root.path() / "home");
    EXPECT_EQ(changed(), (std::set<std::string>{file.string(), other.string()}));
    root.write("home/Library/Zelto/widget.json", "4444");
    EXPECT_EQ(changed(), one);
}

TEST_F(PathWatching, AFolderIsNoFile) {
    watch.follow({}, {folder});
    fs::create_directories(folder);
    EXPECT_TRUE(watch.take().files.empty());
}

}  // namespace
}  // namespace zelto::host
