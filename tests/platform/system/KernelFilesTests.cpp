#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include "platform/system/KernelFiles.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

using namespace system;
namespace {

TEST(CPUTicks, CountsGuestsOnceAndWaitingAsIdle) {
    const TemporaryFolder folder;
    const auto ticks =
        readCPUTicks(folder.write("stat", "cpu  100 20 30 4000 500 6 7 80 90 10\ncpu0 1 2 3 4\n"));
    ASSERT_TRUE(ticks);
    EXPECT_EQ(ticks->user, 100U);
    EXPECT_EQ(ticks->nice, 20U);
    EXPECT_EQ(ticks->system, 43U);
    EXPECT_EQ(ticks->idle, 4500U);
}

TEST(CPUTicks, ReadsOldKernelsAndRefusesGarbage) {
    const TemporaryFolder folder;
    EXPECT_EQ(readCPUTicks(folder.write("old", "cpu 1 2 3 4\n"))->idle, 4U);
    for (const char* bad : {"", "cpu\n", "cpu 1 2 3\n", "cpu a b c d\n", "intr 1 2 3 4\n", "cpu -1 2 3 4\n"})
        EXPECT_FALSE(readCPUTicks(folder.write("bad", bad))) << bad;
    EXPECT_FALSE(readCPUTicks(folder.path() / "missing"));
}

constexpr const char* meminfo =
    "MemTotal:       16384000 kB\n"
    "AnonPages:         40000 kB\n"
    "Shmem:              8000 kB\n"
    "SUnreclaim:         4000 kB\n"
    "KernelStack:         400 kB\n"
    "PageTables:          400 kB\n"
    "SecPageTables:        40 kB\n"
    "Percpu:               40 kB\n"
    "HugePages_Total:       7\n"
    "Hugetlb:            2048 kB\n"
    "LazyFree:            800 kB\n"
    "Zswap:              1000 kB\n";

TEST(VirtualMemory, MapsTheKernelsFiguresToPages) {
    const TemporaryFolder folder;
    folder.write("block/zram0/mm_stat", "  4096 2000 3072000 0 0 0 0 0 0\n");
    folder.write("block/sda/mm_stat", "1 1 999999999 0\n");
    const auto pages = readVirtualMemory(folder.write("meminfo", meminfo), folder.path() / "block", 4096);
    ASSERT_TRUE(pages);
    EXPECT_EQ(pages->internal, 12000U);
    EXPECT_EQ(pages->purgeable, 200U);
    EXPECT_EQ(pages->wired, 1732U);
    EXPECT_EQ(pages->compressor, 1000U);
    EXPECT_EQ(readPhysicalMemory(folder.path() / "meminfo"), std::uint64_t{16384000} * 1024);
}

TEST(VirtualMemory, IsAbsentWithoutTheLinesThatEveryKernelWrites) {
    const TemporaryFolder folder;
    EXPECT_FALSE(readVirtualMemory(folder.path() / "missing", folder.path(), 4096));
    EXPECT_FALSE(readVirtualMemory(
        folder.write("m", "AnonPages: 1 kB\nShmem: x kB\nSUnreclaim: 1 kB\n"), folder.path(), 4096));
    EXPECT_EQ(readPhysicalMemory(folder.path() / "missing"), 0U);
    EXPECT_EQ(readPhysicalMemory(folder.write("n", "MemTotal: 12 MB\n")), 0U);
}

TEST(Volume, HasForImportantUseWhatAnOrdinaryUserMayWrite) {
    struct statvfs status {};
    status.f_frsize = 4096;
    status.f_bsize = 1;
    status.f_blocks = 1000;
    status.f_bfree = 500;
    status.f_bavail = 200;
    const auto volume = capacitiesOf(status);
    EXPECT_EQ(volume.total, 4'096'000U);
    EXPECT_EQ(volume.availableForImportantUsage, 819'200U);
}

TEST(Volume, TellsTheRootsCapacities) {
    const auto volume = readVolume("/");
    ASSERT_TRUE(volume && volume->total && volume->availableForImportantUsage);
    EXPECT_GT(*volume->total, 0U);
    EXPECT_LE(*volume->availableForImportantUsage, *volume->total);
    EXPECT_FALSE(readVolume("/no/such/folder"));
}

}  // namespace
}  // namespace zelto::test
