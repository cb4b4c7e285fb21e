#include <condition_variable>
#include <mutex>

#include <gtest/gtest.h>

#include "agent/Measuring.hpp"
#include "tests/app/MainLoop.hpp"

namespace zelto::agent {
namespace {

using shared::WidgetSnapshot;
using test::runUntil;

/// What hangs until it is let go.
class Gate {
  public:
    ~Gate() { open(); }
    void open() {
        const std::lock_guard lock(mutex_);
        isOpen_ = true;
        changed_.notify_all();
    }
    void pass() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isOpen_; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isOpen_ = false;
};

struct Parts : testing::Test {
    WidgetSnapshot snapshot;
    std::vector<std::string> log;
    std::shared_ptr<Gate> gate = std::make_shared<Gate>();
    int begun = 0;

    Measuring measuring() {
        const auto sets = [](double WidgetSnapshot::*member) {
            return [member]() -> sources::Change {
                return [member](WidgetSnapshot& changed) { changed.*member += 1; };
            };
        };
        return Measuring(
            {.parts =
                 {{"quick", [=] { return sets(&WidgetSnapshot::cpu); }},
                  {"stuck",
                   [this, sets] {
                       ++begun;
                       return [gate = gate, read = sets(&WidgetSnapshot::memory)] {
                           gate->pass();
                           return read();
                       };
                   },
                   [](WidgetSnapshot& changed) { changed.memory = 100; }}},
             .change = [this](const sources::Change& change) { change(snapshot); },
             .log = [this](runloop::LogLevel, const std::string& line) { log.push_back(line); }});
    }
};

TEST_F(Parts, AreAllReadBeforeTheRoundIsDone) {
    auto measuring = this->measuring();
    gate->open();
    bool isDone = false;
    measuring.refresh([&] { isDone = true; });
    EXPECT_TRUE(runUntil([&] { return isDone; }));
    EXPECT_EQ(snapshot.cpu, 1);
    EXPECT_EQ(snapshot.memory, 1);
    EXPECT_TRUE(log.empty());
}

TEST_F(Parts, ThatHangHoldUpNoOthersAndAreReadOnceAtATime) {
    auto measuring = this->measuring();
    int rounds = 0;
    measuring.refresh([&] { ++rounds; });
    EXPECT_TRUE(runUntil([&] { return rounds == 1; }));
    EXPECT_EQ(snapshot.cpu, 1);
    // What it was is not so any more.
    EXPECT_EQ(snapshot.memory, 100);
    EXPECT_EQ(measuring.slow(), std::vector<std::string>{"stuck"});
    measuring.refresh([&] { ++rounds; });
    EXPECT_TRUE(runUntil([&] { return rounds == 2; }));
    EXPECT_EQ(snapshot.cpu, 2);
    EXPECT_EQ(begun, 1);
    // Told once.
    EXPECT_EQ(log, std::vector<std::string>{"reading the stuck takes long; the rest goes on without it"});
    gate->open();
    EXPECT_TRUE(runUntil([&] { return snapshot.memory == 101; }));
    EXPECT_TRUE(measuring.slow().empty());
    measuring.refresh("stuck");
    EXPECT_TRUE(runUntil([&] { return snapshot.memory == 102; }));
}

TEST_F(Parts, ThatAreBeingReadAnswerTheNextRoundToo) {
    auto measuring = this->measuring();
    measuring.refresh("stuck");
    std::vector<double> known;
    measuring.refresh([&] { known.push_back(snapshot.memory); });
    test::runWhatWaits();
    EXPECT_TRUE(known.empty());
    gate->open();
    EXPECT_TRUE(runUntil([&] { return !known.empty(); }));
    EXPECT_EQ(known, std::vector{1.0});
    EXPECT_EQ(begun, 1);
}

TEST_F(Parts, ThatHangAreNamedAlsoWhenRoundsFollowEachOther) {
    auto measuring = this->measuring();
    int rounds = 0;
    for (int i = 0; i < 3; ++i) measuring.refresh([&] { ++rounds; });
    EXPECT_TRUE(runUntil([&] { return rounds == 3; }));
    EXPECT_TRUE(runUntil([&] { return !measuring.slow().empty(); }));
}

TEST_F(Parts, AskedForWhileTheyAreReadAreReadOnceMore) {
    auto measuring = this->measuring();
    measuring.refresh("stuck");
    measuring.refresh("stuck");
    measuring.refresh("stuck");
    gate->open();
    EXPECT_TRUE(runUntil([&] { return snapshot.memory == 2; }));
    EXPECT_EQ(begun, 2);
}

TEST_F(Parts, ThatHangWhenAllOfItEndsFindNobody) {
    {
        auto measuring = this->measuring();
        measuring.refresh([] { FAIL(); });
        test::runWhatWaits();
    }
    gate->open();
    test::runWhatWaits();
    EXPECT_EQ(snapshot.memory, 0);
}

}  // namespace
}  // namespace zelto::agent
