#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/SystemWidget.hpp"

namespace zelto::test {

using namespace widget;
namespace {

TEST(SystemWidget, LeavesOutWhatOnlyAFreshSnapshotTells) {
    for (const Look& look : {without(), sample([](auto&) {}, 900)}) {
        const std::string mediumText = outlineOf("ZeltoSystem", medium, look),
                          smallText = outlineOf("ZeltoSystem", small, look);
        EXPECT_EQ(texts(mediumText), (std::vector<std::string>{"Sistema", "22%", "CPU", "55%", "Memória"}));
        EXPECT_FALSE(has(mediumText, "polyline"));
        EXPECT_EQ(texts(smallText), (std::vector<std::string>{"Sistema", "22%", "CPU", "55%"}));
        EXPECT_FALSE(has(smallText, "thermometer.medium"));
    }
}

TEST(SystemWidget, ShowsTwoRingsWithoutAGPU) {
    EXPECT_EQ(count(outlineOf("ZeltoSystem", medium, sample([](auto& s) { s.gpu = {}; })), "ZStack"), 2);
    EXPECT_EQ(count(outlineOf("ZeltoSystem", medium, sample()), "ZStack"), 3);
}

TEST(SystemWidget, DrawsTheHistoryFromThreeValuesOn) {
    const auto look = [](std::vector<double> values) {
        return sample([&](auto& s) { s.cpuHistory = std::move(values); });
    };
    EXPECT_FALSE(has(outlineOf("ZeltoSystem", medium, look({0.1, 0.2})), "polyline"));
    EXPECT_TRUE(has(outlineOf("ZeltoSystem", medium, look({0.1, 0.2, 0.3})), "polyline([0.1 0.2 0.3])"));
}

TEST(SystemWidget, RoundsTheTemperature) {
    const Look look = sample([](auto& s) { s.chipTemperature = 51.5; });
    EXPECT_TRUE(shows(outlineOf("ZeltoSystem", small, look), "52°"));
    EXPECT_TRUE(shows(outlineOf("ZeltoSystem", medium, look), "chip 52°"));
}

TEST(SystemWidget, ColoursTheLoad) {
    const auto color = [](double cpu) {
        Look look;
        look.live.cpu = cpu;
        return arcColor(outlineOf("ZeltoSystem", small, look));
    };
    EXPECT_EQ(color(0.59), "#40D9B2");
    EXPECT_EQ(color(0.6), "#FFA640");
    EXPECT_EQ(color(0.85), "#FF6166");
}

}  // namespace
}  // namespace zelto::test
