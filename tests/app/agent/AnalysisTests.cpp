#include <future>

#include <gtest/gtest.h>

#include "agent/Analysis.hpp"
#include "foundation/Files.hpp"
#include "tests/app/MainLoop.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::agent {
namespace {

using shared::WidgetSnapshot;
using sources::CareFacts;

struct Analysing : testing::Test {
    test::TemporaryFolder folder;
    Date now{800'000'000};
    std::optional<WidgetSnapshot::Battery> battery;
    CareFacts files{.memoryAvailable = 0.5}, daemons;
    std::vector<bool> asked;  // with updates or not
    std::vector<std::string> log;
    int reports = 0;
    double longestWait = 10;

    Analysis analysis() {
        return Analysis(
            {.file = folder.path() / "state/care.json",
             .now = [this] { return now; },
             .log = [this](runloop::LogLevel, const std::string& line) { log.push_back(line); },
             .readFiles = [this] { return files; },
             .ask =
                 [this](bool updates, const std::function<void(CareFacts)>& answered) {
                     asked.push_back(updates);
                     answered(daemons);
                 },
             .battery = [this] { return battery; },
             .reported = [this](const CareReport&) { ++reports; },
             .longestWait = longestWait});
    }
    static std::string run(Analysis& analysis) {
        std::optional<std::string> out;
        analysis.run([&](const CareReport& report) {
            out.emplace();
            for (const auto& item : report.items) *out += item.level + " " + item.title + "\n";
        });
        EXPECT_TRUE(test::runUntil([&] { return out.has_value(); }));
        return out.value_or("nothing");
    }
};

TEST_F(Analysing, PutsTogetherWhatFilesDaemonsAndTheBatteryTell) {
    daemons.failedSystemServices = std::vector<std::string>{"cups"};
    battery.emplace().pluggedIn = true;
    battery->health = 0.7;
    auto analysis = this->analysis();
    EXPECT_FALSE(analysis.last());
    EXPECT_EQ(run(analysis), "ok Memória\ninfo Bateria\nattention Serviços\n");
    EXPECT_EQ(analysis.last()->date, now);
    EXPECT_EQ(reports, 1);
}

TEST_F(Analysing, AsksForUpdatesOnceADayAndOnMains) {
    daemons.updates = CareFacts::Updates{2, 0};
    auto analysis = this->analysis();
    battery.emplace().pluggedIn = false;
    run(analysis);
    battery->pluggedIn = true;
    EXPECT_EQ(run(analysis), "ok Memória\nattention Segurança\n");
    // What was told counts until it is asked again.
    daemons.updates.reset();
    now = now + 86'000;
    EXPECT_EQ(run(analysis), "ok Memória\nattention Segurança\n");
    // Also where asking once more told nothing.
    now = now + 500;
    EXPECT_EQ(run(analysis), "ok Memória\nattention Segurança\n");
    EXPECT_EQ(asked, (std::vector{false, true, false, true}));
}

TEST_F(Analysing, RunsByItselfOnceADay) {
    auto analysis = this->analysis();
    analysis.daily();
    EXPECT_TRUE(test::runUntil([&] { return reports == 1; }));
    now = now + 86'399;
    analysis.daily();
    now = now + 1;
    analysis.daily();
    analysis.daily();
    EXPECT_TRUE(test::runUntil([&] { return reports == 2; }));
    // A clock that was set back makes everything old.
    now = now - 200'000;
    analysis.daily();
    EXPECT_TRUE(test::runUntil([&] { return reports == 3; }));
}

TEST_F(Analysing, GoesOnWithoutFilesThatHang) {
    daemons.startSeconds = 10;
    longestWait = 0.05;
    std::promise<void> gate;
    const auto isOpen = gate.get_future().share();
    Analysis analysis(
        {.file = folder.path() / "state/care.json",
         .log = [this](runloop::LogLevel, const std::string& line) { log.push_back(line); },
         .readFiles =
             [isOpen] {
                 isOpen.wait();
                 return CareFacts{.memoryAvailable = 0.5};
             },
         .ask = [this](bool, const std::function<void(CareFacts)>& answered) { answered(daemons); },
         .battery = [] { return std::nullopt; },
         .reported = [](const CareReport&) {},
         .longestWait = longestWait});
    EXPECT_EQ(run(analysis), "ok Inicialização\n");
    ASSERT_EQ(log.size(), 1U);
    gate.set_value();
    EXPECT_EQ(run(analysis), "ok Memória\nok Inicialização\n");
}

TEST_F(Analysing, IsKnownAfterARestart) {
    {
        auto first = analysis();
        run(first);
    }
    auto second = analysis();
    ASSERT_TRUE(second.last());
    EXPECT_EQ(second.last()->date, now);
    EXPECT_EQ(second.last()->items.size(), 1U);
}

TEST_F(Analysing, AReportThatIsNoneIsToldAndMadeAnew) {
    folder.write("state/care.json", "{\"date\":1}");
    auto analysis = this->analysis();
    EXPECT_FALSE(analysis.last());
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log.front().find("care.json: items: missing"), std::string::npos);
    run(analysis);
    EXPECT_TRUE(analysis.last());
}

}  // namespace
}  // namespace zelto::agent
