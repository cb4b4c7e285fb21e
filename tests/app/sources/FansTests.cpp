#include <gtest/gtest.h>

#include "sources/Fans.hpp"
#include "tests/app/MachineTree.hpp"

namespace zelto::sources {
namespace {

using test::MachineTree;

const std::string board = "sys/class/hwmon/hwmon3/";

TEST(Fans, AreReadWithWhatTheirChipTells) {
    const MachineTree machine(
        {{board + "name", "nct6775\n"},
         {board + "fan1_input", "1180\n"},
         {board + "fan1_min", "300\n"},
         {board + "fan2_input", "0\n"},
         {board + "fan3_input", "65535\n"},
         {board + "fan4_input", "none\n"},
         {board + "pwm1_enable", "5\n"},
         {"sys/class/hwmon/hwmon7/name", "applesmc\n"},
         {"sys/class/hwmon/hwmon7/fan1_input", "2400\n"},
         {"sys/class/hwmon/hwmon7/fan1_min", "1200\n"},
         {"sys/class/hwmon/hwmon7/fan1_max", "7200\n"},
         {"sys/class/hwmon/hwmon7/pwm1_enable", "1\n"}});
    machine.link(board + "device", "../../../nct6775.656");
    const auto fans = readFans(machine.root());
    ASSERT_EQ(fans.size(), 3U);
    EXPECT_EQ(fans[0].key, "applesmc//fan1");
    EXPECT_EQ(fans[0].minimum, 1200);
    EXPECT_EQ(fans[0].maximum, 7200);
    EXPECT_TRUE(fans[0].manual);
    EXPECT_EQ(fans[1].key, "nct6775/nct6775.656/fan1");
    EXPECT_EQ(fans[1].actual, 1180);
    // An alarm's limit is no lowest speed.
    EXPECT_EQ(fans[1].minimum, std::nullopt);
    EXPECT_FALSE(fans[1].manual);
    EXPECT_EQ(fans[2].actual, 0);
}

TEST(Fans, OfASleepingDeviceAreLeftAlone) {
    const MachineTree machine({{board + "name", "amdgpu\n"}, {board + "fan1_input", "900\n"}});
    machine.add({{board + "device/power/runtime_status", "suspended\n"}});
    EXPECT_TRUE(readFans(machine.root()).empty());
    machine.add({{board + "device/power/runtime_status", "active\n"}});
    EXPECT_EQ(readFans(machine.root()).size(), 1U);
}

TEST(FanMemory, AFanWithoutAHighestSpeedGoesAsFarAsItWasEverSeen) {
    FanMemory memory({{"a", 6100}});
    const auto fans = memory.fans({{.key = "a", .actual = 900}, {.key = "b", .actual = 1000}});
    ASSERT_EQ(fans.size(), 2U);
    EXPECT_EQ(fans[0].maximum, 6100);
    EXPECT_EQ(fans[1].maximum, FanMemory::usualMaximum);
    EXPECT_EQ(memory.fans({{.key = "b", .actual = 5600}}).front().maximum, 5600);
    EXPECT_EQ(memory.fans({{.key = "b", .actual = 10}}).front().maximum, 5600);
    EXPECT_EQ(memory.highest().at("b"), 5600);
}

TEST(FanMemory, AConnectorWithoutAFanIsLeftOutAndAFanThatStandsIsNot) {
    FanMemory memory;
    EXPECT_TRUE(memory.fans({{.key = "a", .actual = 0}}).empty());
    EXPECT_EQ(memory.fans({{.key = "a", .actual = 700}}).size(), 1U);
    EXPECT_EQ(memory.fans({{.key = "a", .actual = 0}}).size(), 1U);
}

TEST(FanMemory, LimitsThatLeaveNoRangeCountAsNone) {
    FanMemory memory;
    const auto fans =
        memory.fans({{.key = "a", .actual = 700, .minimum = 3000, .maximum = 3000, .manual = true}});
    EXPECT_EQ(fans.front().minimum, 0);
    EXPECT_EQ(fans.front().maximum, FanMemory::usualMaximum);
    EXPECT_TRUE(fans.front().manual);
}

}  // namespace
}  // namespace zelto::sources
