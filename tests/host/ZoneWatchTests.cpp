#include <gtest/gtest.h>

#include "host/ZoneWatch.hpp"
#include "tests/support/Readable.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

TEST(ZoneWatch, NoticesThatTheSettingWasReplaced) {
    const test::TemporaryFolder folder;
    const auto setting = folder.path() / "localtime";
    std::filesystem::create_symlink("/usr/share/zoneinfo/Asia/Tokyo", setting);
    const test::TemporaryFolder data;
    ZoneWatch watch(setting, data.path());
    EXPECT_FALSE(watch.take().setting);
    folder.write("hosts", "");
    EXPECT_TRUE(test::canBeRead(watch.fd(), 0));
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
    EXPECT_TRUE(test::canBeRead(watch.fd(), 0));
    const auto changes = watch.take();
    EXPECT_TRUE(changes.data);
    EXPECT_FALSE(changes.setting);
    EXPECT_FALSE(watch.take().data);
}

}  // namespace
}  // namespace zelto::host
