// The picture process, as one.

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/Files.hpp"
#include "pictures/PictureProcess.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Pictures.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

using namespace pictures;
namespace {

struct Pictures : testing::Test {
    TemporaryFolder folder;
    PictureProcess process = PictureProcess::standBy(programFolder() / "zelto-pictures");

    std::optional<ui::node::Image> picture(const std::filesystem::path& path) const {
        return process.thumbnail(path, PictureProcess::Clock::now() + std::chrono::seconds(30));
    }
    /// Those whose parent is `parent`.
    static std::vector<pid_t> childrenOf(pid_t parent) {
        std::vector<pid_t> out;
        for (const auto& task :
             std::filesystem::directory_iterator("/proc/" + std::to_string(parent) + "/task")) {
            std::ifstream children(task.path() / "children");
            for (pid_t child = 0; children >> child;) out.push_back(child);
        }
        return out;
    }
    /// The picture process's own id: of the children that are this program or that one, the newest.
    static pid_t newestChild() {
        const auto children = childrenOf(getpid());
        return children.empty() ? -1 : *std::ranges::max_element(children);
    }
    static std::string programOf(pid_t process) {
        std::error_code error;
        return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", error).filename();
    }
};

TEST_F(Pictures, AreSquaresOfFiles) {
    const auto image = picture(folder.write("a", png(300, 200, 0xFF0000FF)));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->width, 66);
    EXPECT_EQ(image->pixels.bytes.size(), 66U * 66 * 4);
    EXPECT_EQ(image->pixels.bytes[2], 255);
}

TEST_F(Pictures, StartNoProgramBeforeOneIsWanted) {
    const pid_t child = newestChild();
    EXPECT_EQ(programOf(child), programOf(getpid()));
    picture("/no/such/file");
    EXPECT_EQ(programOf(child), "zelto-pictures");
}

TEST_F(Pictures, AreAbsentForWhatIsNoRegularFileAtOnce) {
    ASSERT_EQ(mkfifo((folder.path() / "fifo").c_str(), 0600), 0);
    const auto sparse = folder.write("sparse.png", png(9, 9, 0xFF0000FF));
    ASSERT_EQ(truncate(sparse.c_str(), (off_t{128} << 20) + 1), 0);
    for (const std::filesystem::path& path :
         {folder.path() / "missing",
          folder.path(),
          folder.path() / "fifo",
          std::filesystem::path("/dev/zero"),
          sparse,
          std::filesystem::path(std::string(5000, 'x')),
          std::filesystem::path("")})
        EXPECT_FALSE(picture(path)) << path.native().substr(0, 100);
    EXPECT_TRUE(picture(folder.write("sound.png", png(9, 9, 0xFF0000FF))));
}

TEST_F(Pictures, ThatAreReplacedAreReadAnew) {
    const auto path = folder.write("a.png", png(9, 9, 0xFF0000FF));
    EXPECT_EQ(picture(path)->pixels.bytes[0], 0);
    EXPECT_EQ(picture(path)->pixels.bytes[0], 0);
    ASSERT_TRUE(writeFileAtomically(path, png(9, 9, 0xFFFF0000)));
    EXPECT_EQ(picture(path)->pixels.bytes[0], 255);
}

TEST_F(Pictures, ComeToEveryThreadThatAsks) {
    std::vector<std::thread> threads;
    std::array<int, 24> reds{};
    for (std::size_t i = 0; i < reds.size(); ++i)
        threads.emplace_back([&, i] {
            const auto red = static_cast<std::uint32_t>(i);
            const auto image = picture(folder.write(std::to_string(i), png(70, 70, 0xFF000000 | red << 16)));
            reds[i] = image ? image->pixels.bytes[0] : -1;
        });
    for (auto& thread : threads) thread.join();
    for (std::size_t i = 0; i < reds.size(); ++i) EXPECT_EQ(reds[i], static_cast<int>(i));
}

TEST_F(Pictures, ThatAreNotThereInTimeAreThereLater) {
    const auto path = folder.write("a.png", png(3000, 3000, 0xFF0000FF));
    EXPECT_FALSE(process.thumbnail(path, PictureProcess::Clock::now()));
    EXPECT_TRUE(picture(path));
}

TEST_F(Pictures, AreAbsentOnceTheProcessHasDied) {
    const auto path = folder.write("a.png", png(9, 9, 0xFF0000FF));
    EXPECT_TRUE(picture(path));
    const pid_t child = newestChild();
    ASSERT_EQ(programOf(child), "zelto-pictures");
    kill(child, SIGKILL);
    EXPECT_FALSE(picture(folder.write("b.png", png(9, 9, 0xFF0000FF))));
    EXPECT_FALSE(picture(path));
}

TEST(PictureProcess, WithoutItsProgramThereAreNoPictures) {
    const auto process = PictureProcess::standBy("/no/such/program");
    EXPECT_FALSE(process.thumbnail("/etc/passwd", PictureProcess::Clock::now() + std::chrono::seconds(30)));
}

}  // namespace
}  // namespace zelto::test
