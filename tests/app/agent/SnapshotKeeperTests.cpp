#include <gtest/gtest.h>
#include <sys/stat.h>

#include "agent/SnapshotKeeper.hpp"
#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::agent {
namespace {

using shared::WidgetSnapshot;

struct Keeping : testing::Test {
    test::TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "home/Zelto/widget.json";
    Date now{800'000'000};
    std::vector<std::string> log;
    int written = 0;

    SnapshotKeeper keeper() {
        return SnapshotKeeper(
            {.file = file,
             .mark = folder.path() / "state/published.json",
             .now = [this] { return now; },
             .log = [this](runloop::LogLevel, const std::string& line) { log.push_back(line); },
             .written = [this] { ++written; }});
    }
    std::optional<WidgetSnapshot> stored() const {
        auto snapshot = records::decodeJSON<WidgetSnapshot>(readFile(file).value_or(""));
        return snapshot ? std::optional(*std::move(snapshot)) : std::nullopt;
    }
    /// What another program writes.
    void another(Date date) const {
        WidgetSnapshot snapshot;
        snapshot.date = date;
        snapshot.cpu = 0.75;
        folder.write("home/Zelto/widget.json", records::encodeJSON(snapshot).value());
    }
    static void setCPU(SnapshotKeeper& keeper, double cpu) {
        keeper.change([cpu](WidgetSnapshot& snapshot) { snapshot.cpu = cpu; });
    }
    int mode(const std::filesystem::path& path) const {
        struct stat status {};
        return stat(path.c_str(), &status) == 0 ? static_cast<int>(status.st_mode & 0777) : -1;
    }
};

TEST_F(Keeping, WritesAtOnceWhatChangedForItsOwnerAlone) {
    auto keeper = this->keeper();
    EXPECT_FALSE(stored());
    setCPU(keeper, 0.5);
    EXPECT_EQ(stored()->cpu, 0.5);
    EXPECT_EQ(stored()->date, now);
    EXPECT_EQ(written, 1);
    EXPECT_EQ(mode(file), 0600);
    EXPECT_EQ(mode(file.parent_path()), 0700);
}

TEST_F(Keeping, WritesNothingWhenNothingChanged) {
    auto keeper = this->keeper();
    setCPU(keeper, 0.5);
    now = now + 10;
    setCPU(keeper, 0.5);
    EXPECT_EQ(written, 1);
    keeper.note([](WidgetSnapshot& snapshot) { snapshot.cpu = 0.6; });
    EXPECT_EQ(written, 1);
    keeper.renew();
    EXPECT_EQ(written, 2);
    EXPECT_EQ(stored()->cpu, 0.6);
    EXPECT_EQ(stored()->date, now);
}

TEST_F(Keeping, WritesAtMostFiveTimesASecondAndTheLastOfIt) {
    auto keeper = this->keeper();
    setCPU(keeper, 0.1);
    now = now + 0.1;
    setCPU(keeper, 0.2);
    setCPU(keeper, 0.3);
    EXPECT_EQ(written, 1);
    bool isLate = false;
    const auto limit = runloop::MainSource::after(20, [&] { isLate = true; });
    runloop::runMainLoopUntil([&] { return written == 2 || isLate; });
    EXPECT_EQ(stored()->cpu, 0.3);
    EXPECT_EQ(written, 2);
}

TEST_F(Keeping, WritesWhatWaitsWhenItIsFlushed) {
    auto keeper = this->keeper();
    setCPU(keeper, 0.1);
    now = now + 0.1;
    setCPU(keeper, 0.2);
    keeper.flush();
    EXPECT_EQ(stored()->cpu, 0.2);
    keeper.flush();
    EXPECT_EQ(written, 2);
}

TEST_F(Keeping, LeavesAnotherProgramsSnapshotAloneAndSaysSoOnce) {
    another(now - 899);
    auto keeper = this->keeper();
    setCPU(keeper, 0.5);
    setCPU(keeper, 0.6);
    EXPECT_EQ(stored()->cpu, 0.75);
    EXPECT_EQ(keeper.leftAloneUntil(), now + 1);
    EXPECT_EQ(log.size(), 1U);
    now = now + 1;
    keeper.renew();
    EXPECT_EQ(stored()->cpu, 0.6);
    EXPECT_EQ(keeper.leftAloneUntil(), std::nullopt);
}

TEST_F(Keeping, LeavesItAloneAlsoWhenItComesLater) {
    auto keeper = this->keeper();
    setCPU(keeper, 0.5);
    now = now + 5;
    another(now);
    now = now + 5;
    setCPU(keeper, 0.6);
    EXPECT_EQ(stored()->cpu, 0.75);
}

TEST_F(Keeping, ReplacesWhatIsOldAndWhatIsNoSnapshot) {
    another(now - 900);
    auto keeper = this->keeper();
    setCPU(keeper, 0.5);
    EXPECT_EQ(stored()->cpu, 0.5);
    folder.write("home/Zelto/widget.json", "{\"date\":");
    now = now + 1;
    setCPU(keeper, 0.6);
    EXPECT_EQ(stored()->cpu, 0.6);
}

TEST_F(Keeping, KnowsItsOwnAtTheNextStartAndGoesOnWithIt) {
    {
        auto first = keeper();
        setCPU(first, 0.4);
        now = now + 1;
        setCPU(first, 0.5);
    }
    now = now + 5;
    auto second = keeper();
    EXPECT_EQ(second.snapshot().cpu, 0.5);
    setCPU(second, 0.6);
    EXPECT_EQ(stored()->cpu, 0.6);
    EXPECT_TRUE(log.empty());
}

TEST_F(Keeping, ADeathBetweenItsTwoFilesLosesNothing) {
    {
        auto first = keeper();
        setCPU(first, 0.4);
        now = now + 1;
        setCPU(first, 0.5);
    }
    // Announced, and not written.
    const auto kept = readFile(folder.path() / "state/published.json").value();
    folder.write(
        "state/published.json",
        "[" + std::to_string(now.sinceReference + 1) + "," + kept.substr(1, kept.find(',') - 1) + "]");
    now = now + 5;
    auto second = keeper();
    setCPU(second, 0.6);
    EXPECT_EQ(stored()->cpu, 0.6);
}

TEST_F(Keeping, MakesPrivateWhatIsOpenToOthers) {
    another(now - 2000);
    std::filesystem::permissions(file, static_cast<std::filesystem::perms>(0644));
    std::filesystem::permissions(file.parent_path(), static_cast<std::filesystem::perms>(0755));
    auto keeper = this->keeper();
    EXPECT_EQ(mode(file), 0600);
    EXPECT_EQ(mode(file.parent_path()), 0700);
}

TEST_F(Keeping, StaysPrivateAndComesBackWhateverOthersDo) {
    auto keeper = this->keeper();
    setCPU(keeper, 0.5);
    std::filesystem::remove_all(file.parent_path());
    now = now + 1;
    setCPU(keeper, 0.6);
    EXPECT_EQ(stored()->cpu, 0.6);
    another(now - 1000);
    std::filesystem::permissions(file, static_cast<std::filesystem::perms>(0644));
    now = now + 1;
    setCPU(keeper, 0.7);
    EXPECT_EQ(stored()->cpu, 0.7);
    EXPECT_EQ(mode(file), 0600);
}

TEST_F(Keeping, WhatWasReadLongAgoIsNotTheBeginning) {
    {
        auto first = keeper();
        setCPU(first, 0.4);
    }
    now = now + 900;
    EXPECT_EQ(keeper().snapshot().cpu, 0);
}

TEST_F(Keeping, SaysWhyItCannotWriteAndGoesOn) {
    std::filesystem::create_directories(file);
    auto keeper = this->keeper();
    setCPU(keeper, 0.5);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log.front().find("cannot be written: "), std::string::npos);
    std::filesystem::remove_all(file);
    now = now + 1;
    setCPU(keeper, 0.6);
    EXPECT_EQ(stored()->cpu, 0.6);
}

}  // namespace
}  // namespace zelto::agent
