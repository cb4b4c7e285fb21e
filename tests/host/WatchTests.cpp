#include <gtest/gtest.h>
#include <poll.h>

#include "host/LinkOpener.hpp"
#include "host/WallTimer.hpp"
#include "host/ZoneWatch.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

bool canBeRead(int fd, int milliseconds) {
    pollfd waiting{fd, POLLIN, 0};
    return poll(&waiting, 1, milliseconds) == 1;
}

TEST(WallTimer, GoesOffAtItsInstantAndNotWithoutOne) {
    WallTimer timer;
    EXPECT_EQ(timer.take(), WallTimer::Event::none);
    timer.arm(std::nullopt);
    EXPECT_FALSE(canBeRead(timer.fd(), 0));
    const Date instant = Date::now() + 0.02;
    timer.arm(instant);
    EXPECT_TRUE(canBeRead(timer.fd(), 30'000));
    EXPECT_GE(Date::now(), instant);
    EXPECT_EQ(timer.take(), WallTimer::Event::expired);
    EXPECT_FALSE(canBeRead(timer.fd(), 0));
}

TEST(WallTimer, AnInstantThatHasPassedGoesOffAtOnce) {
    WallTimer timer;
    for (const double instant : {-1e300, 0.0, -978307200.0}) {
        timer.arm(Date{instant});
        EXPECT_TRUE(canBeRead(timer.fd(), 30'000)) << instant;
        EXPECT_EQ(timer.take(), WallTimer::Event::expired);
    }
    // Later than any clock goes.
    timer.arm(Date{1e300});
    EXPECT_FALSE(canBeRead(timer.fd(), 0));
    // Its replacement holds.
    timer.arm(Date{0});
    timer.arm(std::nullopt);
    EXPECT_FALSE(canBeRead(timer.fd(), 0));
}

TEST(ZoneWatch, NoticesThatTheSettingWasReplaced) {
    const test::TemporaryFolder folder;
    const auto setting = folder.path() / "localtime";
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", setting);
    const test::TemporaryFolder data;
    ZoneWatch watch(setting, data.path());
    EXPECT_FALSE(watch.take().setting);
    folder.write("hosts", "");
    EXPECT_TRUE(canBeRead(watch.fd(), 0));
    EXPECT_FALSE(watch.take().setting);
    std::filesystem::create_symlink("/usr/share/zoneinfo/America/Sao_Paulo", folder.path() / "new");
    std::filesystem::rename(folder.path() / "new", setting);
    EXPECT_TRUE(watch.take().setting);
    EXPECT_FALSE(watch.take().setting);
}

TEST(ZoneWatch, NoticesAnUpgradeOfTheData) {
    const test::TemporaryFolder folder, data;
    ZoneWatch watch(folder.path() / "localtime", data.path());
    EXPECT_FALSE(watch.take().data);
    data.write("zone.tab.new", "");
    std::filesystem::rename(data.path() / "zone.tab.new", data.path() / "zone.tab");
    EXPECT_TRUE(canBeRead(watch.fd(), 0));
    const auto changes = watch.take();
    EXPECT_TRUE(changes.data);
    EXPECT_FALSE(changes.setting);
    EXPECT_FALSE(watch.take().data);
}

TEST(LinkOpener, RunsACommandWithTheLinkAsItIs) {
    const test::TemporaryFolder folder;
    const auto fifo = folder.path() / "fifo";
    test::run({"/usr/bin/mkfifo", fifo});
    test::Child reader({"/bin/cat", fifo});
    const std::string link = "zelto://join?url=$(echo no)'\"; `x` &";
    EXPECT_TRUE(LinkOpener("exec > '" + fifo.string() + "'; printf '%s-%s\\n' first").open(link));
    EXPECT_EQ(reader.line(), "first-" + link);
}

TEST(LinkOpener, OpensTheAppsLinksOnly) {
    for (const char* link : {"file:///etc/passwd", "https://example.org", "zelto:x", ""})
        EXPECT_EQ(
            LinkOpener("false").open(link).fault().text(),
            std::string("a link that is not the app's is not opened: ") + link);
}

}  // namespace
}  // namespace zelto::host
