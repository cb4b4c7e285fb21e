#include <gtest/gtest.h>

#include "tests/support/Samples.hpp"
#include "widget/Widgets/BatteryWidget.hpp"

namespace zelto::test {

using namespace shared;
using namespace widget;
using namespace widgetkit;
namespace {

const LiveData onPower{.battery = 50, .charging = true}, onBattery{.battery = 50, .charging = false};

std::string batteryStatus(const std::function<void(WidgetSnapshot::Battery&)>& edit, bool charging) {
    WidgetSnapshot::Battery info;
    edit(info);
    return BatteryView::statusText(&info, charging ? onPower : onBattery);
}

TEST(BatteryStatusText, FollowsItsOrder) {
    EXPECT_EQ(BatteryView::statusText(nullptr, onPower), "Carregando");
    EXPECT_EQ(BatteryView::statusText(nullptr, onBattery), "Na bateria");
    EXPECT_EQ(
        batteryStatus([](auto& b) { b.adapterDisabled = b.chargingPaused = true; }, true),
        "Usando bateria (limite)");
    EXPECT_EQ(batteryStatus([](auto& b) { b.chargingPaused = true; }, true), "Pausada em 80%");
    EXPECT_EQ(batteryStatus([](auto& b) { b.minutesRemaining = 10; }, true), "Carregando");
    EXPECT_EQ(batteryStatus([](auto& b) { b.charging = true; }, false), "Na bateria");
}

TEST(BatteryStatusText, TellsTheTimeLeftWithoutPadding) {
    for (const auto& [minutes, text] : std::vector<std::pair<std::int64_t, const char*>>{
             {135, "2 h 15 min restantes"},
             {45, "0 h 45 min restantes"},
             {60, "1 h 0 min restantes"},
             {-1, "0 h -1 min restantes"},
             {-61, "-1 h -1 min restantes"}})
        EXPECT_EQ(batteryStatus([&](auto& b) { b.minutesRemaining = minutes; }, false), text);
}

std::string battery(WidgetFamily family, Look look, std::optional<std::int64_t> percent, bool charging) {
    look.live.battery = percent;
    look.live.charging = charging;
    return outlineOf("ZeltoBattery", family, look);
}

TEST(BatteryWidget, ShowsOnlyANoteWithoutALiveBattery) {
    for (const WidgetFamily family : {small, medium})
        EXPECT_EQ(
            texts(battery(family, sample(), {}, false)),
            std::vector<std::string>{"Este Mac não tem bateria."});
}

TEST(BatteryWidget, TurnsToDangerAtTwentyPercentUnlessCharging) {
    EXPECT_EQ(arcColor(battery(small, sample(), 20, false)), "#FF6166");
    EXPECT_EQ(arcColor(battery(small, sample(), 20, true)), "#40D9B2");
    EXPECT_EQ(arcColor(battery(medium, sample(), 21, false)), "#40D9B2");
    EXPECT_EQ(arcColor(battery(medium, sample(), 20, false)), "#FF6166");
}

TEST(BatteryWidget, ShowsTheChargingIconOnlyInTheSmallFamily) {
    EXPECT_TRUE(has(battery(small, sample(), 50, true), "Symbol \"bolt.fill\" .foreground(#FFA640)"));
    EXPECT_TRUE(
        has(battery(small, sample(), 50, false), "Symbol \"battery.75percent\" .foreground(#40D9B2)"));
    EXPECT_TRUE(
        has(battery(medium, sample(), 50, true), "Symbol \"battery.75percent\" .foreground(#40D9B2)"));
}

TEST(BatteryWidget, ShowsDetailsOfAFreshSnapshotOnly) {
    const std::string fresh = battery(medium, sample([](auto&) {}, 899), 50, false);
    EXPECT_TRUE(shows(fresh, "Saúde"));
    EXPECT_FALSE(shows(fresh, "Abra o Zelto para atualizar"));
    const std::string stale = battery(medium, sample([](auto&) {}, 900), 50, false);
    EXPECT_FALSE(shows(stale, "Saúde"));
    EXPECT_TRUE(shows(stale, "Abra o Zelto para atualizar"));
    EXPECT_TRUE(shows(stale, "50%"));
    EXPECT_TRUE(shows(battery(medium, sample([](auto&) {}, -5000), 50, false), "Saúde"));
    EXPECT_TRUE(shows(battery(medium, without(), 50, false), "Abra o Zelto para atualizar"));
}

TEST(BatteryWidget, FormatsItsDetails) {
    const auto details = [](const std::function<void(WidgetSnapshot::Battery&)>& edit) {
        return battery(medium, sample([&](auto& s) { edit(*s.battery); }), 50, false);
    };
    EXPECT_TRUE(shows(details([](auto& b) { b.health = 0.876; }), "88%"));
    EXPECT_TRUE(shows(details([](auto& b) { b.cycles = 12345; }), "12345"));
    EXPECT_TRUE(shows(details([](auto& b) { b.temperature = 31.4; }), "31 °C"));
    EXPECT_FALSE(shows(details([](auto& b) { b.watts = 0.5; }), "Carregador"));
    EXPECT_TRUE(shows(details([](auto& b) { b.watts = 60.4; }), "60 W"));
    EXPECT_TRUE(shows(details([](auto& b) { b.limitEnabled = false; }), "desligado"));
    EXPECT_FALSE(shows(
        details([](auto& b) {
            b.health = {};
            b.cycles = {};
            b.temperature = {};
        }),
        "Saúde"));
}

}  // namespace
}  // namespace zelto::test
