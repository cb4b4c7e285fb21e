#include <gtest/gtest.h>

#include "sources/StartupDisk.hpp"
#include "tests/app/MachineTree.hpp"

namespace zelto::sources {
namespace {

using test::MachineTree;

const std::string mounts =
    "22 1 0:20 / /proc rw - proc proc rw\n24 1 8:2 / / rw,noatime shared:1 - ext4 /dev/sda2 rw\n";

std::optional<std::string> nameOf(const MachineTree& machine) {
    auto readings = system::SystemReadings::ofLinux(machine.root());
    readings.volume = [](const auto&) {
        return system::VolumeCapacities{.total = 1000, .availableForImportantUsage = 250};
    };
    const auto disk = readStartupDisk(machine.root(), readings);
    if (disk) {
        EXPECT_EQ(disk->total, 1000U);
        EXPECT_EQ(disk->available, 250U);
    }
    return disk ? std::optional(disk->name) : std::nullopt;
}

struct Drive : testing::Test {
    MachineTree machine{MachineTree::Files{{"proc/self/mountinfo", mounts}}};

    void SetUp() override {
        machine.add({{"sys/devices/ata1/block/sda/sda2/partition", "2\n"}});
        machine.link("sys/dev/block/8:2", "../../devices/ata1/block/sda/sda2");
        machine.link("sys/class/block/sda2", "../../devices/ata1/block/sda/sda2");
    }
};

TEST_F(Drive, HasItsLabelsName) {
    machine.link("dev/disk/by-label/Meus\\x20dados", "../../sda2");
    machine.link("dev/disk/by-label/Outro", "../../sda1");
    machine.add({{"sys/devices/ata1/block/sda/device/model", "Samsung SSD 870   \n"}});
    EXPECT_EQ(nameOf(machine), "Meus dados");
}

TEST_F(Drive, HasItsModelsNameWithoutALabel) {
    machine.add({{"sys/devices/ata1/block/sda/device/model", "Samsung SSD 870   \n"}});
    EXPECT_EQ(nameOf(machine), "Samsung SSD 870");
}

TEST_F(Drive, WithoutANameIsLeftOut) {
    EXPECT_EQ(nameOf(machine), std::nullopt);
    machine.add({{"sys/devices/ata1/block/sda/device/model", "\xFF\xFE\n"}});
    EXPECT_EQ(nameOf(machine), std::nullopt);
}

TEST(StartupDisk, ThatIsEncryptedHasTheNameOfWhatItLiesOn) {
    const MachineTree machine(
        {{"proc/self/mountinfo", "24 1 0:31 /@ / rw - btrfs /dev/mapper/root rw\n"},
         {"sys/devices/virtual/block/dm-0/dm/name", "root\n"},
         {"sys/devices/nvme0/nvme0n1/nvme0n1p3/partition", "3\n"},
         {"sys/devices/nvme0/nvme0n1/device/model", "WD Black\n"}});
    machine.link("dev/mapper/root", "../dm-0");
    machine.link("sys/class/block/dm-0", "../../devices/virtual/block/dm-0");
    machine.link("sys/class/block/nvme0n1p3", "../../devices/nvme0/nvme0n1/nvme0n1p3");
    machine.link("sys/devices/virtual/block/dm-0/slaves/nvme0n1p3", "../../../../nvme0/nvme0n1/nvme0n1p3");
    EXPECT_EQ(nameOf(machine), "WD Black");
}

TEST(StartupDisk, OfAContainerHasNoName) {
    const MachineTree machine(
        MachineTree::Files{{"proc/self/mountinfo", "24 1 0:31 / / rw - overlay overlay rw\n"}});
    EXPECT_EQ(nameOf(machine), std::nullopt);
    EXPECT_EQ(nameOf(MachineTree()), std::nullopt);
}

}  // namespace
}  // namespace zelto::sources
