#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/DrawingMark.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

struct Mark : testing::Test {
    test::TemporaryFolder folder;
    const std::filesystem::path file = folder.path() / "drawing";
    double now = 1000;

    std::shared_ptr<DrawingMark> mark() {
        auto made = DrawingMark::at(file, [this] { return now; });
        EXPECT_TRUE(made);
        return made;
    }
    /// What the next process finds after one that died while it drew `name`, and the next started `after`
    /// seconds.
    std::optional<std::string> afterDeath(const std::string& name, int signal, double after) {
        const pid_t child = fork();
        if (child == 0) {
            const auto own = DrawingMark::at(file, [this] { return now; });
            own->during(name, [&] { kill(getpid(), signal); });
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_NE(status, 0);
        now += after;
        return mark()->cause();
    }
};

TEST_F(Mark, ACrashTellsAtOnceWhatWasDrawn) {
    for (const int signal : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT}) {
        EXPECT_EQ(afterDeath("a.json", signal, 0), "a.json") << signal;
        EXPECT_EQ(mark()->cause(), std::nullopt) << signal;
    }
}

TEST_F(Mark, ThreeKillsInARowLongAfterItBeganTellIt) {
    struct Death {
        std::string name;
        double after;
        std::optional<std::string> cause;
    };
    const auto none = std::nullopt;
    for (const auto& deaths : std::vector<std::vector<Death>>{
             {{"a", 2, none}, {"a", 9, none}, {"a", 2, "a"}, {"a", 2, none}, {"a", 2, none}, {"a", 2, "a"}},
             // Another one, and it counts from the start.
             {{"a", 2, none}, {"a", 2, none}, {"b", 2, none}, {"a", 2, none}, {"a", 2, none}},
             // Not for long, or the computer was started anew: they say nothing.
             {{"a", 1.9, none}, {"a", 0.1, none}, {"a", -500, none}, {"a", 0, none}},
             {{"a", 2, none}, {"a", 1, none}, {"a", 2, none}, {"a", 1, none}, {"a", 2, "a"}}}) {
        std::filesystem::remove(file);
        for (const auto& death : deaths)
            EXPECT_EQ(afterDeath(death.name, SIGKILL, death.after), death.cause) << death.name << death.after;
    }
}

TEST_F(Mark, WhatIsDrawnAfterAllIsNoSuspect) {
    EXPECT_EQ(afterDeath("a", SIGKILL, 5), std::nullopt);
    EXPECT_EQ(afterDeath("a", SIGKILL, 5), std::nullopt);
    mark()->during("a", [] {});
    EXPECT_EQ(afterDeath("a", SIGKILL, 5), std::nullopt);
    EXPECT_EQ(afterDeath("a", SIGKILL, 5), std::nullopt);
}

TEST_F(Mark, OfNothingOrOfTooLongANameIsNone) {
    EXPECT_EQ(mark()->cause(), std::nullopt);
    EXPECT_EQ(afterDeath("", SIGABRT, 5), std::nullopt);
    EXPECT_EQ(afterDeath(std::string(1024, 'x'), SIGABRT, 5), std::nullopt);
    const std::string longest(1023, 'x');
    EXPECT_EQ(afterDeath(longest, SIGABRT, 5), longest);
}

TEST_F(Mark, ACrashWhileNothingIsDrawnTellsNothing) {
    const pid_t child = fork();
    if (child == 0) {
        DrawingMark::at(file)->during("a", [] {});
        std::abort();
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGABRT);
    EXPECT_EQ(mark()->cause(), std::nullopt);
}

TEST_F(Mark, WithoutAFolderThereIsNone) {
    EXPECT_EQ(DrawingMark::at(folder.path() / "missing/drawing"), nullptr);
}

}  // namespace
}  // namespace zelto::host
