// The batteries by the real power daemon, on a machine with batteries of the test's.

#include <gtest/gtest.h>

#include "sources/PowerWatch.hpp"
#include "tests/app/MainLoop.hpp"
#include "tests/app/MockService.hpp"
#include "tests/app/PowerMachine.hpp"
#include "tests/support/PrivateBus.hpp"

namespace zelto::sources {
namespace {

using test::PowerMachine;
using test::runUntil;

struct Batteries : testing::Test {
    test::PrivateBus bus;
    PowerMachine machine{bus.address()};
    bus::Client client{bus::Address::at(bus.address())};
    int changes = 0;
    PowerWatch watch{client, [this] { ++changes; }};

    std::optional<shared::WidgetSnapshot::Battery> battery() const {
        const auto reading = watch.reading();
        return reading ? batteryOf(*reading) : std::nullopt;
    }
    bool becomes(const std::function<bool(const shared::WidgetSnapshot::Battery&)>& condition) {
        return runUntil([&] { return battery() && condition(*battery()); });
    }
};

TEST_F(Batteries, AreToldWithAllThatTheWidgetsShow) {
    machine.battery("BAT0", PowerMachine::usual);
    EXPECT_FALSE(watch.reading());
    machine.startDaemon();
    ASSERT_TRUE(becomes([](const auto& each) { return each.percent == 70; }));
    const auto told = *battery();
    EXPECT_FALSE(told.charging);
    EXPECT_FALSE(told.pluggedIn);
    EXPECT_NEAR(told.health.value_or(-1), 0.8, 1e-9);
    EXPECT_EQ(told.cycles, 454);
    EXPECT_NEAR(told.temperature.value_or(-1), 31.2, 1e-9);
    EXPECT_NEAR(told.watts.value_or(-1), 12.5, 1e-9);
    EXPECT_EQ(told.minutesRemaining, 161);
}

TEST_F(Batteries, AreFollowedWhileTheyAreChargedFullAndHeld) {
    machine.battery("BAT0", PowerMachine::usual);
    machine.startDaemon();
    ASSERT_TRUE(becomes([](const auto& each) { return !each.pluggedIn; }));
    machine.adapter(true);
    machine.battery("BAT0", "status Charging energy_now 40000000 capacity 83");
    EXPECT_TRUE(
        becomes([](const auto& each) { return each.pluggedIn && each.charging && each.percent == 83; }));
    machine.battery("BAT0", "status Full energy_now 48000000 capacity 100 power_now 0");
    EXPECT_TRUE(becomes([](const auto& each) { return !each.charging && each.percent == 100; }));
    machine.battery("BAT0", "status Not_charging energy_now 38400000 capacity 80");
    EXPECT_TRUE(runUntil([&] {
        const auto reading = watch.reading();
        return reading && reading->packs.size() == 1 && reading->packs[0].state == Pack::State::held;
    }));
    auto reading = *watch.reading();
    reading.control.limit = 80;
    EXPECT_TRUE(batteryOf(reading)->chargingPaused);
    machine.adapter(false);
    machine.battery("BAT0", "status Discharging");
    EXPECT_TRUE(becomes([](const auto& each) { return !each.pluggedIn; }));
}

TEST_F(Batteries, TwoAreOneAndOneMayBeTakenOut) {
    machine.battery("BAT0", PowerMachine::usual);
    machine.battery("BAT1", std::string(PowerMachine::usual) + " energy_now 4800000 capacity 10");
    machine.startDaemon();
    EXPECT_TRUE(becomes([](const auto& each) { return each.percent == 40; }));
    machine.remove("BAT1");
    EXPECT_TRUE(becomes([](const auto& each) { return each.percent == 70; }));
    machine.battery("BAT1", std::string(PowerMachine::usual) + " energy_now 4800000 capacity 10");
    EXPECT_TRUE(becomes([](const auto& each) { return each.percent == 40; }));
}

TEST_F(Batteries, ADaemonThatDiesTellsNothingUntilItIsBack) {
    machine.battery("BAT0", PowerMachine::usual);
    machine.startDaemon();
    ASSERT_TRUE(becomes([](const auto& each) { return each.percent == 70; }));
    const int before = changes;
    machine.killDaemon();
    EXPECT_TRUE(runUntil([&] { return !watch.reading(); }));
    EXPECT_GT(changes, before);
    machine.battery("BAT0", "energy_now 24000000 capacity 50");
    machine.startDaemon();
    EXPECT_TRUE(becomes([](const auto& each) { return each.percent == 50; }));
}

TEST_F(Batteries, AMachineWithoutAnyIsKnownToHaveNone) {
    machine.startDaemon();
    EXPECT_TRUE(runUntil([&] { return watch.reading().has_value(); }));
    EXPECT_FALSE(battery());
}

TEST(BatteriesOfADaemonThatIsNotWell, AreNotTold) {
    constexpr const char* upower = "org.freedesktop.UPower";
    test::PrivateBus bus;
    const test::MockService daemon(bus.address(), upower, "/org/freedesktop/UPower", upower);
    const auto answers = [&](const char* code, const char* signature) {
        daemon.method(upower, "EnumerateDevices", "", signature, code);
        bus::Client client{bus::Address::at(bus.address())};
        PowerWatch watch(client, [] {});
        // What a later question is answered comes behind the answers to its own.
        bool isAnswered = false;
        const auto ask = [&] {
            isAnswered = false;
            client.call(
                {upower, "/org/freedesktop/UPower", "org.freedesktop.DBus.Peer", "Ping"},
                "()",
                {},
                [&](const auto&) { isAnswered = true; });
            return runUntil([&] { return isAnswered; });
        };
        const bool isPast = ask() && ask() && ask();
        return isPast && !watch.reading();
    };
    // Without the property that tells whether the adapter is in.
    EXPECT_TRUE(answers("ret = []", "ao"));
    daemon.property(upower, "OnBattery", "<'perhaps'>");
    EXPECT_TRUE(answers("ret = []", "ao"));
    EXPECT_TRUE(answers("ret = 'nonsense'", "s"));
    EXPECT_TRUE(answers("ret = [1, 2]", "ai"));
    EXPECT_TRUE(answers("raise dbus.exceptions.DBusException('broken')", "ao"));
}

}  // namespace
}  // namespace zelto::sources
