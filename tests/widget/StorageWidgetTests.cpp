#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/StorageWidget.hpp"

namespace zelto::test {

using namespace shared;
using namespace widget;
namespace {

TEST(StorageWidget, IsNamedAfterTheVolume) {
    EXPECT_EQ(texts(outlineOf("ZeltoStorage", small, without()))[0], "Disco");
    EXPECT_EQ(texts(outlineOf("ZeltoStorage", small, sample()))[0], "Disco");
    const Look named = sample([](auto& s) { s.disk = WidgetSnapshot::Disk{"Dados", 1, 1}; }, 1e6);
    EXPECT_EQ(texts(outlineOf("ZeltoStorage", small, named))[0], "Dados");  // however old
}

TEST(StorageWidget, ShowsZeroForAFailedReading) {
    Look look;
    look.live = LiveData{};
    EXPECT_EQ(
        texts(outlineOf("ZeltoStorage", small, look)),
        (std::vector<std::string>{"Disco", "0%", "usado", "Zero KB livres", "de Zero KB"}));
    EXPECT_EQ(arcColor(outlineOf("ZeltoStorage", small, look)), "#40D9B2");
}

TEST(StorageWidget, ColoursItsUse) {
    const auto color = [](double disk) {
        Look look;
        look.live.disk = disk;
        return arcColor(outlineOf("ZeltoStorage", small, look));
    };
    EXPECT_EQ(color(0.8499), "#FFA640");
    EXPECT_EQ(color(0.85), "#FF6166");
}

}  // namespace
}  // namespace zelto::test
