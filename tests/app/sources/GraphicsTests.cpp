#include <gtest/gtest.h>
#include <unistd.h>

#include "sources/Graphics.hpp"
#include "tests/app/MachineTree.hpp"
#include "tests/support/Paths.hpp"

namespace zelto::sources {
namespace {

using namespace std::chrono_literals;
using test::MachineTree;

/// A machine with one card at a PCI address of its own.
struct Cards : testing::Test {
    MachineTree machine;
    std::chrono::nanoseconds now = 10s;
    int vendorCalls = 0;
    std::optional<double> vendor;
    Graphics graphics{Graphics::Seams{
        .root = machine.root(),
        .user = getuid(),
        .clock = [this] { return now; },
        .vendorLoad =
            [this](const std::string&) {
                ++vendorCalls;
                return vendor;
            }}};

    void card(int number, const std::string& driver, const MachineTree::Files& files = {}) const {
        const std::string device = "sys/devices/pci0000:00/0000:0" + std::to_string(number) + ":00.0/";
        machine.add({{device + "vendor", "0x1\n"}});
        machine.link(device + "driver", "../../../bus/pci/drivers/" + driver);
        machine.link(
            "sys/class/drm/card" + std::to_string(number) + "/device",
            "../../../devices/pci0000:00/0000:0" + std::to_string(number) + ":00.0");
        for (const auto& [name, text] : files) machine.add({{device + name, text}});
    }
    /// A program that has the card open.
    void program(int process, const std::string& information) const {
        const std::string folder = "proc/" + std::to_string(process) + "/";
        machine.add({{folder + "fdinfo/7", information}, {folder + "fdinfo/3", "pos:\t0\n"}});
        machine.remove(folder + "fd/7");
        machine.link(folder + "fd/7", "/dev/dri/renderD128");
        machine.remove(folder + "fd/3");
        machine.link(folder + "fd/3", "/dev/null");
    }
};

std::string engines(const std::string& client, std::int64_t render, std::int64_t video) {
    return "pos:\t0\ndrm-driver:\ti915\ndrm-pdev:\t0000:00:00.0\ndrm-client-id:\t" + client +
           "\ndrm-engine-render:\t" + std::to_string(render) + " ns\ndrm-engine-video:\t" +
           std::to_string(video) + " ns\ndrm-engine-capacity-video:\t2\n";
}

TEST_F(Cards, WithoutOneThereIsNoLoad) {
    EXPECT_EQ(graphics.read(), std::nullopt);
}

TEST_F(Cards, OneThatTellsItsLoadIsBelieved) {
    card(0, "amdgpu", {{"gpu_busy_percent", "23\n"}});
    EXPECT_EQ(graphics.read(), 0.23);
    machine.add({{"sys/devices/pci0000:00/0000:00:00.0/gpu_busy_percent", "nonsense\n"}});
    EXPECT_EQ(graphics.read(), std::nullopt);
}

TEST_F(Cards, OfTwoTheBusierCounts) {
    card(0, "amdgpu", {{"gpu_busy_percent", "23\n"}});
    card(1, "amdgpu", {{"gpu_busy_percent", "61\n"}});
    EXPECT_EQ(graphics.read(), 0.61);
}

TEST_F(Cards, OneThatSleepsIsLeftAsleep) {
    vendor = 0.4;
    card(0, "nvidia", {{"power/runtime_status", "suspended\n"}});
    EXPECT_EQ(graphics.read(), std::nullopt);
    EXPECT_EQ(vendorCalls, 0);
    machine.add({{"sys/devices/pci0000:00/0000:00:00.0/power/runtime_status", "active\n"}});
    EXPECT_EQ(graphics.read(), 0.4);
    EXPECT_EQ(vendorCalls, 1);
}

TEST_F(Cards, WhatProgramsUsedOfTheEnginesBetweenTwoReadingsIsTheLoad) {
    card(0, "i915");
    program(100, engines("1", 1'000'000'000, 0));
    EXPECT_EQ(graphics.read(), std::nullopt);
    now += 10s;
    program(100, engines("1", 3'000'000'000, 8'000'000'000));
    // A second descriptor of the same client tells the same once more.
    program(101, engines("1", 3'000'000'000, 8'000'000'000));
    // One that has come since.
    program(102, engines("2", 1'000'000'000, 0));
    // Rendering: 2 and 1 of 10 seconds; video: 8 of the 20 that two engines have.
    EXPECT_DOUBLE_EQ(graphics.read().value_or(-1), 0.4);
    now += 10s;
    machine.remove("proc/102");
    EXPECT_DOUBLE_EQ(graphics.read().value_or(-1), 0);
}

TEST_F(Cards, DriversThatCountCyclesTellOfHowMany) {
    card(0, "xe");
    const auto cycles = [](int used, int all) {
        return "drm-pdev:\t0000:00:00.0\ndrm-client-id:\t9\ndrm-cycles-rcs:\t" + std::to_string(used) +
               "\ndrm-total-cycles-rcs:\t" + std::to_string(all) + "\n";
    };
    program(100, cycles(1000, 50'000));
    graphics.read();
    now += 10s;
    program(100, cycles(4000, 60'000));
    EXPECT_DOUBLE_EQ(graphics.read().value_or(-1), 0.3);
    // One that has come since: the engine counts from the machine's start all the same.
    now += 10s;
    program(100, cycles(4000, 70'000));
    machine.add(
        {{"proc/200/fdinfo/7",
          "drm-pdev:\t0000:00:00.0\ndrm-client-id:\t10\ndrm-cycles-rcs:\t5000\n"
          "drm-total-cycles-rcs:\t70000\n"}});
    machine.link("proc/200/fd/7", "/dev/dri/renderD128");
    EXPECT_DOUBLE_EQ(graphics.read().value_or(-1), 0.5);
}

TEST_F(Cards, WhatWasUsedWhileNobodyLookedIsNoLoadOfNow) {
    card(0, "i915");
    program(100, engines("1", 0, 0));
    graphics.read();
    now += 3600s;
    program(100, engines("1", 3'000'000'000'000, 0));
    EXPECT_EQ(graphics.read(), std::nullopt);
    // Nor what was used before the card slept.
    machine.add({{"sys/devices/pci0000:00/0000:00:00.0/power/runtime_status", "suspended\n"}});
    now += 10s;
    EXPECT_EQ(graphics.read(), std::nullopt);
    machine.add({{"sys/devices/pci0000:00/0000:00:00.0/power/runtime_status", "active\n"}});
    now += 10s;
    EXPECT_EQ(graphics.read(), std::nullopt);
}

TEST(VendorLibrary, IsOpenedAskedAndClosedAgain) {
    const std::string library = test::programFolder() / "libvendor-graphics.so";
    EXPECT_EQ(vendorLibraryLoad(library, "0000:01:00.0"), 0.42);
    EXPECT_EQ(vendorLibraryLoad(library, "0000:02:00.0"), std::nullopt);
    // The stand-in refuses a second beginning without an end in between.
    EXPECT_EQ(vendorLibraryLoad(library, "0000:01:00.0"), 0.42);
    EXPECT_EQ(vendorLibraryLoad("libmissing-graphics.so.9", "0000:01:00.0"), std::nullopt);
}

}  // namespace
}  // namespace zelto::sources
