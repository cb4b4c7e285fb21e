// Keeping awake, with the real login manager.

#include <optional>

#include <gtest/gtest.h>

#include "agent/KeepAwake.hpp"
#include "foundation/Files.hpp"
#include "tests/app/LoginManager.hpp"
#include "tests/app/MainLoop.hpp"
#include "tests/app/MockService.hpp"
#include "tests/support/PrivateBus.hpp"

namespace zelto::agent {
namespace {

using test::runUntil;

constexpr const char* screen = "org.freedesktop.ScreenSaver";
constexpr const char* screenObject = "/org/freedesktop/ScreenSaver";

struct KeepingAwake : testing::Test {
    test::PrivateBus session;
    test::TemporaryFolder folder;
    std::optional<test::LoginManager> login;
    std::optional<bus::Client> systemClient, sessionClient;
    std::vector<std::string> log;
    int changes = 0;
    double grace = 10;

    void SetUp() override {
        if (!test::LoginManager::isPossible()) GTEST_SKIP() << "the login manager wants root";
        login.emplace();
        connect(login->address());
    }
    void connect(const std::string& system) {
        systemClient.emplace(bus::Address::at(system));
        sessionClient.emplace(bus::Address::at(session.address()));
    }
    KeepAwake::Seams seams() {
        return {
            .systemBus = *systemClient,
            .sessionBus = *sessionClient,
            .file = folder.path() / "state/awake.json",
            .log = [this](runloop::LogLevel, const std::string& line) { log.push_back(line); },
            .changed = [this] { ++changes; },
            .grace = grace};
    }
    std::string kept() const { return readFile(folder.path() / "state/awake.json").value_or("nothing"); }
    bool blocks(const std::string& what) const { return login->blocked() == "(<'" + what + "'>,)\n"; }
    std::unique_ptr<test::MockService> screenSaver() const {
        auto service = std::make_unique<test::MockService>(session.address(), screen, screenObject, screen);
        service->method(screen, "Inhibit", "ss", "u", "ret = 4711");
        service->method(screen, "UnInhibit", "u", "", "");
        return service;
    }
    static std::vector<std::string> heldBy(const KeepAwake& awake) { return awake.holders().held; }
};

TEST_F(KeepingAwake, BlocksIdlingAndNothingElse) {
    KeepAwake awake(seams());
    awake.start(std::nullopt);
    EXPECT_TRUE(runUntil([&] { return heldBy(awake) == std::vector<std::string>{"logind"}; }));
    EXPECT_TRUE(blocks("idle"));
    EXPECT_NE(login->inhibitors().find("'idle', 'Zelto', 'Manter acordado', 'block'"), std::string::npos);
    EXPECT_EQ(kept(), "{}");
    awake.stop();
    EXPECT_TRUE(runUntil([&] { return blocks(""); }));
    EXPECT_EQ(kept(), "nothing");
    EXPECT_EQ(changes, 2);
    EXPECT_TRUE(log.empty());
}

TEST_F(KeepingAwake, AsksTheScreenSaverTooAndGivesItBack) {
    const auto saver = screenSaver();
    KeepAwake awake(seams());
    awake.start(std::nullopt);
    EXPECT_TRUE(runUntil([&] {
        return heldBy(awake) == std::vector<std::string>{"logind", "screen saver"};
    }));
    EXPECT_NE(saver->calls().find("Inhibit \"Zelto\" \"Manter acordado\""), std::string::npos);
    awake.stop();
    EXPECT_TRUE(runUntil([&] { return saver->calls().find("UnInhibit 4711") != std::string::npos; }));
}

TEST_F(KeepingAwake, AScreenSaverThatComesLaterIsAskedThen) {
    KeepAwake awake(seams());
    awake.start(std::nullopt);
    EXPECT_TRUE(runUntil([&] { return heldBy(awake).size() == 1; }));
    const auto saver = screenSaver();
    // It had the name before it had the method.
    EXPECT_TRUE(runUntil([&] { return awake.holders().refused.size() == 1; }));
    awake.stop();
    awake.start(std::nullopt);
    EXPECT_TRUE(runUntil([&] { return heldBy(awake).size() == 2; }));
}

TEST_F(KeepingAwake, AnAnswerThatComesTooLateIsGivenBack) {
    const auto saver = screenSaver();
    saver->method(screen, "Inhibit", "ss", "u", "import time; time.sleep(0.3); ret = 4711");
    KeepAwake awake(seams());
    awake.start(std::nullopt);
    EXPECT_TRUE(runUntil([&] { return saver->calls().find(" Inhibit ") != std::string::npos; }));
    awake.stop();
    EXPECT_TRUE(runUntil([&] { return saver->calls().find("UnInhibit 4711") != std::string::npos; }));
    EXPECT_FALSE(awake.isOn());
}

TEST_F(KeepingAwake, EndsByTheWallClock) {
    KeepAwake awake(seams());
    awake.start(Date::now() + 0.3);
    EXPECT_TRUE(awake.isOn());
    EXPECT_TRUE(runUntil([&] { return !awake.isOn(); }));
    EXPECT_TRUE(runUntil([&] { return blocks(""); }));
    EXPECT_EQ(log, std::vector<std::string>{"the machine is no longer kept awake: its time is over"});
    EXPECT_EQ(kept(), "nothing");
}

TEST_F(KeepingAwake, AnotherEndReplacesTheFirst) {
    KeepAwake awake(seams());
    awake.start(Date::now() + 0.3);
    const Date later = Date::now() + 3600;
    awake.start(later);
    EXPECT_EQ(awake.end(), later);
    EXPECT_TRUE(runUntil([&] { return heldBy(awake).size() == 1; }));
    EXPECT_EQ(login->inhibitors().find("'Zelto'"), login->inhibitors().rfind("'Zelto'"));
}

TEST_F(KeepingAwake, GoesOnAfterARestart) {
    const Date end = Date::now() + 3600;
    {
        KeepAwake first(seams());
        first.start(end);
        EXPECT_TRUE(runUntil([&] { return blocks("idle"); }));
    }
    systemClient.reset();
    EXPECT_TRUE(runUntil([&] { return blocks(""); }));
    connect(login->address());
    KeepAwake second(seams());
    second.resume();
    EXPECT_TRUE(second.isOn());
    EXPECT_NEAR(*second.end() - end, 0, 1e-3);
    EXPECT_TRUE(runUntil([&] { return blocks("idle"); }));
}

TEST_F(KeepingAwake, WhatEndedMeanwhileIsOver) {
    folder.write("state/awake.json", R"({"end":1000})");
    KeepAwake awake(seams());
    awake.resume();
    EXPECT_FALSE(awake.isOn());
    EXPECT_EQ(kept(), "nothing");
}

TEST_F(KeepingAwake, AFileThatIsNoneIsToldAndGone) {
    folder.write("state/awake.json", R"({"end":"tomorrow"})");
    KeepAwake awake(seams());
    awake.resume();
    EXPECT_FALSE(awake.isOn());
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log.front().find("awake.json: end: "), std::string::npos);
    EXPECT_EQ(kept(), "nothing");
}

TEST_F(KeepingAwake, WhereNobodyCanItIsOverAndSaysSo) {
    login->kill();
    connect("unix:path=/nonexistent/bus");
    grace = 0.1;
    KeepAwake awake(seams());
    awake.start(std::nullopt);
    EXPECT_TRUE(runUntil([&] { return !awake.isOn(); }));
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log.front().find("nobody here can do it (logind: it is not there"), std::string::npos);
}

TEST_F(KeepingAwake, IsAskedForAgainWhenItsHolderIsBack) {
    auto saver = screenSaver();
    connect("unix:path=/nonexistent/bus");
    KeepAwake awake(seams());
    awake.start(std::nullopt);
    EXPECT_TRUE(runUntil([&] { return heldBy(awake).size() == 1; }));
    saver->kill();
    EXPECT_TRUE(runUntil([&] { return heldBy(awake).empty(); }));
    EXPECT_TRUE(awake.isOn());
    saver = screenSaver();
    // It has its name before it has its methods, and is asked once each time that it comes.
    EXPECT_TRUE(runUntil([&] { return !awake.holders().refused.empty(); }));
    EXPECT_TRUE(awake.isOn());
}

TEST_F(KeepingAwake, TellsWhoElseKeepsTheMachineAwake) {
    bool isTold = false;
    std::vector<AwakeOther> others;
    const auto ask = [&] {
        isTold = false;
        askWhoElse(*systemClient, *sessionClient, [&](std::vector<AwakeOther> told) {
            others = std::move(told);
            isTold = true;
        });
        return runUntil([&] { return isTold; });
    };
    EXPECT_TRUE(ask());
    EXPECT_TRUE(others.empty());
    std::optional<bool> isHeld;
    std::vector<bus::Data> tokens;
    const auto hold = [&](const char* what, const char* mode) {
        isHeld.reset();
        systemClient->call(
            {"org.freedesktop.login1",
             "/org/freedesktop/login1",
             "org.freedesktop.login1.Manager",
             "Inhibit"},
            "(ssss)",
            {what, "Player", "plays", mode},
            [&](const bus::Result<bus::Data>& results) {
                isHeld = results.has_value();
                if (results) tokens.push_back(results.value()[0]);
            });
        EXPECT_TRUE(runUntil([&] { return isHeld.has_value(); }));
        EXPECT_TRUE(*isHeld);
    };
    // All are of this process, which counts as us; so the list is seen as the login manager tells it.
    hold("handle-lid-switch", "block");
    hold("sleep", "delay");
    EXPECT_NE(login->inhibitors().find("Player"), std::string::npos);
    EXPECT_TRUE(ask());
    EXPECT_TRUE(others.empty());
    test::Child player(
        {"systemd-inhibit", "--what=idle:sleep", "--who=Player", "--why=plays", "sleep", "60"},
        {"PATH=/usr/bin:/bin", "DBUS_SYSTEM_BUS_ADDRESS=" + login->address()});
    EXPECT_TRUE(runUntil([&] { return ask() && others.size() == 1; }));
    EXPECT_EQ(others.front().who, "Player");
    EXPECT_EQ(others.front().why, "plays");
}

}  // namespace
}  // namespace zelto::agent
