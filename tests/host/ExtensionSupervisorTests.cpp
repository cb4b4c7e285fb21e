// The extension's keeper with real processes: the extension itself, and programs that misbehave.

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "foundation/Files.hpp"
#include "host/ExtensionSupervisor.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {

using namespace widgetkit;
namespace {

using namespace std::chrono_literals;
using test::programFolder;

struct Supervisor : testing::Test {
    test::TemporaryFolder folder;
    std::vector<std::string> log;
    ExtensionOptions options{
        .program = {.path = programFolder() / "zelto-widgets", .arguments = {"--home", "/no/such/home"}},
        .firstPause = 0.001,
        .longestPause = 0.008};
    std::unique_ptr<ExtensionSupervisor> supervisor;

    void make() {
        supervisor = std::make_unique<ExtensionSupervisor>(
            options, [this](runloop::LogLevel, const std::string& line) { log.push_back(line); });
    }
    /// A program in the extension's place.
    void standIn(const std::string& script) {
        options.program.path = folder.write("extension", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(options.program.path, std::filesystem::perms(0755));
        make();
    }
    Outcomes ask(std::vector<Request> requests) {
        const std::size_t count = requests.size();
        Outcomes got;
        supervisor->ask(std::move(requests), [&](Outcomes outcomes) { got.merge(outcomes); });
        runloop::runMainLoopUntil([&] { return got.size() == count; });
        return got;
    }
    std::string errorOf(std::vector<Request> requests = {{.request = RequestKind::bundle}}) {
        const auto outcomes = ask(std::move(requests));
        return outcomes.at(0) ? "" : outcomes.at(0).fault().reason;
    }
};

const Request bundle{.request = RequestKind::bundle};
Request placeholder(const std::string& kind) {
    return {.request = RequestKind::placeholder, .kind = kind, .family = WidgetFamily::systemSmall};
}

/// Of which no single one is to blame when all of them fail.
const std::vector<Request> several{bundle, placeholder("ZeltoFans")};

TEST_F(Supervisor, AsksTheRealExtensionSideBySide) {
    make();
    const auto outcomes = ask({bundle, placeholder("ZeltoFans"), placeholder("ZeltoNothing")});
    ASSERT_EQ(outcomes.size(), 3U);
    EXPECT_EQ(outcomes.at(0)->reply.widgets->size(), 11U);
    EXPECT_TRUE(outcomes.at(1)->reply.entry);
    EXPECT_FALSE(outcomes.at(2));
    EXPECT_NE(outcomes.at(2).fault().reason, "");
    EXPECT_TRUE(log.empty());
}

TEST_F(Supervisor, GivesEachAskerItsOwn) {
    make();
    std::vector<std::size_t> sizes;
    for (const std::size_t count : {1U, 3U, 2U})
        supervisor->ask(std::vector<Request>(count, bundle), [&](const Outcomes& outcomes) {
            sizes.push_back(outcomes.size());
        });
    runloop::runMainLoopUntil([&] { return sizes.size() == 3; });
    EXPECT_EQ(sizes, (std::vector<std::size_t>{1, 3, 2}));
}

TEST_F(Supervisor, EndsAProcessThatNobodyNeeds) {
    options.idle = 1ms;
    // The process marks its end.
    const auto mark = folder.path() / "ended";
    ASSERT_EQ(mkfifo(mark.c_str(), 0600), 0);
    const FileDescriptor reader(open(mark.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    standIn(
        "'" + (programFolder() / "zelto-widgets").string() + "' --home /no/such/home; echo over > '" +
        mark.string() + "'");
    EXPECT_EQ(errorOf(), "");
    std::string said;
    const auto source = runloop::MainSource::whenReadable(reader.get(), [&] {
        std::array<char, 16> buffer;
        if (const auto count = read(reader.get(), buffer.data(), buffer.size()); count > 0)
            said.append(buffer.data(), static_cast<std::size_t>(count));
    });
    runloop::runMainLoopUntil([&] { return said == "over\n"; });
    EXPECT_EQ(errorOf(), "");
    EXPECT_TRUE(log.empty());
}

TEST_F(Supervisor, AHangIsEndedByTheDeadline) {
    options.program.deadline = 20ms;
    standIn("while read line; do :; done");
    EXPECT_EQ(errorOf(), "the widget extension did not answer in time");
    // One request's own outcome tells all there is to tell.
    EXPECT_TRUE(log.empty());
}

TEST_F(Supervisor, AnOutputThatIsClosedIsAnEnd) {
    standIn("exec cat > /dev/null");
    EXPECT_EQ(errorOf(), "the widget extension ended by itself (status 0)");
}

TEST_F(Supervisor, NonsenseEndsTheProcess) {
    standIn("read line; echo hello; exec cat > /dev/null");
    EXPECT_TRUE(errorOf().starts_with("the widget extension sent an invalid reply: ")) << log.back();
}

TEST_F(Supervisor, ALineWithoutAnEndIsNonsense) {
    standIn("read line; exec cat /dev/zero");
    EXPECT_EQ(errorOf(), "the widget extension sent a reply longer than 2 MiB");
}

TEST_F(Supervisor, LastWordsGoToTheLog) {
    standIn("read line; echo 'first line' >&2; printf 'out of\\tluck\\n' >&2; exit 3");
    EXPECT_EQ(
        errorOf(several),
        "the widget extension ended by itself (status 3); its last words: first line out of luck");
    EXPECT_EQ(
        log,
        std::vector<std::string>{
            "the widget extension ended by itself (status 3); its last words: first line out of "
            "luck; to be started again after 0.001 s"});
}

TEST_F(Supervisor, AnExtensionThatTalksMuchOnTheSideIsHeardToItsEnd) {
    // More than a pipe holds, before it answers.
    standIn(
        "head -c 300000 /dev/zero | tr '\\0' x >&2; exec '" + (programFolder() / "zelto-widgets").string() +
        "' --home /no/such/home");
    EXPECT_EQ(errorOf(), "");
}

TEST_F(Supervisor, AnExtensionThatNeverStopsTalkingIsEndedByTheDeadline) {
    options.program.deadline = 50ms;
    standIn("while :; do echo y >&2; done");
    EXPECT_TRUE(errorOf().starts_with("the widget extension did not answer in time; its last words: y y"));
}

TEST_F(Supervisor, TheDeadlineHoldsWhileItTalks) {
    options.program.deadline = 50ms;
    standIn("read line; while :; do printf x; done");
    EXPECT_EQ(errorOf(), "the widget extension did not answer in time");
}

TEST_F(Supervisor, AnExtensionThatDoesNotEndIsEnded) {
    standIn(
        "trap '' TERM; '" + (programFolder() / "zelto-widgets").string() +
        "' --home /no/such/home; exec >&- 2>&-; while :; do :; done");
    EXPECT_EQ(errorOf(), "");
    supervisor.reset();
}

TEST_F(Supervisor, AnErrorWithoutAReasonIsOne) {
    standIn("read line; echo '{\"id\":1,\"error\":\"\"}'; exec cat");
    EXPECT_EQ(errorOf(), "an error without a reason");
}

TEST_F(Supervisor, PausesGrowWithDeathsAndShrinkWithAnswers) {
    const auto broken = folder.write("broken", "");
    standIn(
        "if [ -e '" + broken.string() + "' ]; then read line; exit 1; fi; exec '" +
        (programFolder() / "zelto-widgets").string() + "' --home /no/such/home");
    for (int i = 0; i < 5; ++i) EXPECT_NE(errorOf(several), "");
    std::filesystem::remove(broken);
    EXPECT_EQ(errorOf(several), "");
    EXPECT_EQ(errorOf(several), "");
    std::vector<std::string> pauses;
    for (const std::string& line : log) pauses.push_back(line.substr(line.rfind("after ") + 6));
    EXPECT_EQ(pauses, (std::vector<std::string>{"0.001 s", "0.002 s", "0.004 s", "0.008 s", "0.008 s"}));
}

TEST_F(Supervisor, ADeathWhileNothingIsAskedIsMadeGood) {
    const auto pid = folder.path() / "pid";
    standIn(
        "echo $$ > '" + pid.string() + "'; exec '" + (programFolder() / "zelto-widgets").string() +
        "' --home /no/such/home");
    EXPECT_EQ(errorOf(), "");
    ASSERT_EQ(kill(std::stoi(readFile(pid).value()), SIGKILL), 0);
    // Whether its end shows before the question or in the middle of it, the one after that is answered.
    errorOf();
    EXPECT_EQ(errorOf(), "");
    ASSERT_EQ(log.size(), 1U);
    EXPECT_TRUE(log[0].starts_with("the widget extension died (signal 9, Killed)")) << log[0];
}

/// A stand-in that answers every placeholder but one for a widget called Deadly.
std::string exceptDeadly(const std::string& end, const std::filesystem::path& starts) {
    return "echo $$ >> '" + starts.string() + "'; while read line; do case \"$line\" in *Deadly*) " + end +
           " ;; esac; id=${line#*:}; id=${id%%,*}; "
           "echo '{\"id\":'$id',\"entry\":{\"date\":0,\"view\":{\"node\":{\"Text\":{\"text\":\"x\"}},"
           "\"modifiers\":[]}}}'; done";
}
std::size_t linesIn(const std::filesystem::path& file) {
    return static_cast<std::size_t>(std::ranges::count(readFile(file).value_or(""), '\n'));
}

TEST_F(Supervisor, ADeathCostsTheRequestThatCausesIt) {
    const auto starts = folder.path() / "starts";
    standIn(exceptDeadly("kill -9 $$", starts));
    const std::vector<Request> all{
        placeholder("A"), placeholder("Deadly"), placeholder("B"), placeholder("C")};
    const auto outcomes = ask(all);
    for (const std::size_t place : {0U, 2U, 3U}) EXPECT_TRUE(outcomes.at(place)) << place;
    EXPECT_EQ(outcomes.at(1).fault().reason, "the widget extension died (signal 9, Killed)");
    // Its own outcome tells all there is to tell.
    EXPECT_TRUE(log.empty()) << log[0];
    // Once for all, and once for each that was left.
    EXPECT_EQ(linesIn(starts), 1U + 3U);

    // From then on it is asked apart: the others have a process that stays.
    for (int round = 0; round < 3; ++round) {
        const auto again = ask(all);
        EXPECT_FALSE(again.at(1));
        for (const std::size_t place : {0U, 2U, 3U}) EXPECT_TRUE(again.at(place)) << place;
    }
    EXPECT_EQ(linesIn(starts), 4U + 1U + 3U);
    EXPECT_TRUE(log.empty());
}

TEST_F(Supervisor, AHangCostsTheRequestThatCausesItAndNothingThatComesLater) {
    // Shorter and longer than answers wait for the rest.
    for (const auto deadline : {300ms, 1500ms}) {
        options.program.deadline = deadline;
        standIn(exceptDeadly("while :; do read line; done", folder.path() / "starts"));
        const auto outcomes = ask({placeholder("A"), placeholder("Deadly"), placeholder("B")});
        EXPECT_TRUE(outcomes.at(0));
        EXPECT_EQ(outcomes.at(1).fault().reason, "the widget extension did not answer in time");
        EXPECT_TRUE(outcomes.at(2));
        EXPECT_TRUE(ask({placeholder("A")}).at(0));
    }
}

TEST_F(Supervisor, WhatIsAnsweredDoesNotWaitForAHang) {
    options.program.deadline = 60s;
    standIn(exceptDeadly("while :; do read line; done", folder.path() / "starts"));
    Outcomes got;
    supervisor->ask(
        {placeholder("A"), placeholder("Deadly")}, [&](Outcomes outcomes) { got.merge(outcomes); });
    runloop::runMainLoopUntil([&] { return !got.empty(); });
    EXPECT_TRUE(got.contains(0));
    EXPECT_FALSE(got.contains(1));
}

TEST_F(Supervisor, ApartDeathsDoNotHoldUpAHealthyProcess) {
    options.firstPause = options.longestPause = 60;
    standIn(exceptDeadly("kill -9 $$", folder.path() / "starts"));
    EXPECT_TRUE(ask({placeholder("A"), placeholder("Deadly1"), placeholder("Deadly2")}).at(0));
    EXPECT_TRUE(ask({placeholder("A")}).at(0));
    EXPECT_FALSE(ask({placeholder("Deadly1"), placeholder("Deadly2")}).at(0));
    ASSERT_EQ(log.size(), 1U);
    EXPECT_TRUE(log[0].ends_with("to be started again after 60 s")) << log[0];
    EXPECT_TRUE(ask({placeholder("A")}).at(0));
}

TEST_F(Supervisor, ADeadlyRequestAloneKeepsNobodyWaiting) {
    options.firstPause = options.longestPause = 60;
    const auto starts = folder.path() / "starts";
    standIn(exceptDeadly("kill -9 $$", starts));
    for (int i = 0; i < 4; ++i) EXPECT_FALSE(ask({placeholder("Deadly")}).at(0));
    EXPECT_TRUE(ask({placeholder("A")}).at(0));
    EXPECT_TRUE(log.empty()) << log[0];
    // Once together and once apart, then apart alone, and a process for the other.
    EXPECT_EQ(linesIn(starts), 2U + 3U + 1U);
}

TEST_F(Supervisor, AHangThatIsAskedAgainKeepsNobodyWaiting) {
    options.program.deadline = 300ms;
    standIn(exceptDeadly("while :; do read line; done", folder.path() / "starts"));
    EXPECT_FALSE(ask({placeholder("Deadly")}).at(0));
    // It hangs again, for long enough that the other's answer cannot have waited for it.
    std::vector<std::string> order;
    supervisor->ask({placeholder("Deadly")}, [&](const Outcomes&) { order.emplace_back("deadly"); });
    supervisor->ask({placeholder("A")}, [&](const Outcomes&) { order.emplace_back("other"); });
    runloop::runMainLoopUntil([&] { return order.size() == 2; });
    EXPECT_EQ(order, (std::vector<std::string>{"other", "deadly"}));
}

TEST_F(Supervisor, WithoutADeathThereIsOneProcess) {
    const auto starts = folder.path() / "starts";
    standIn(exceptDeadly("kill -9 $$", starts));
    for (int round = 0; round < 3; ++round) ask({placeholder("A"), placeholder("B"), placeholder("C")});
    EXPECT_EQ(linesIn(starts), 1U);
}

TEST_F(Supervisor, AReplyOutOfBoundsCostsItsRequestAlone) {
    const auto starts = folder.path() / "starts";
    standIn(exceptDeadly(
        "id=${line#*:}; id=${id%%,*}; long=$(head -c 20000 /dev/zero | tr '\\0' x); "
        "echo '{\"id\":'$id',\"entry\":{\"date\":0,\"view\":{\"node\":{\"Text\":{\"text\":\"'$long'\"}},"
        "\"modifiers\":[]}}}'; continue",
        starts));
    for (int round = 0; round < 2; ++round) {
        const auto outcomes = ask({placeholder("A"), placeholder("Deadly"), placeholder("B")});
        EXPECT_TRUE(outcomes.at(0));
        EXPECT_EQ(outcomes.at(1).fault().reason, "out of bounds: a text that is too long");
        EXPECT_TRUE(outcomes.at(2));
    }
    EXPECT_EQ(linesIn(starts), 1U);
    EXPECT_TRUE(log.empty());
}

TEST_F(Supervisor, ARestartIsANewProcess) {
    const auto starts = folder.path() / "starts";
    standIn(exceptDeadly("kill -9 $$", starts));
    ask({placeholder("A")});
    supervisor->restart();
    ask({placeholder("A")});
    ask({placeholder("A")});
    EXPECT_EQ(linesIn(starts), 2U);
    EXPECT_TRUE(log.empty());
}

TEST_F(Supervisor, AProgramThatIsNotThereIsReported) {
    options.program.path = "/no/such/program";
    make();
    EXPECT_EQ(errorOf(), "cannot start the widget extension /no/such/program: No such file or directory");
}

TEST_F(Supervisor, EndsWithoutWaitingForAnswers) {
    standIn("while read line; do :; done");
    supervisor->ask({bundle}, [](const Outcomes&) {});
    const auto before = std::chrono::steady_clock::now();
    supervisor.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - before, options.program.deadline);
    EXPECT_TRUE(log.empty());
}

}  // namespace
}  // namespace zelto::host
