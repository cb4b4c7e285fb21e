// The agent as a process, and the commands that talk to it.

#include <atomic>
#include <random>

#include <gtest/gtest.h>

#include "bus/Listener.hpp"
#include "records/JSONEncoder.hpp"
#include "tests/app/LoginManager.hpp"
#include "tests/app/MockService.hpp"
#include "tests/app/RunningAgent.hpp"

namespace zelto::agent {
namespace {

using shared::WidgetSnapshot;
using test::RunningAgent;
using test::runUntil;

/// The program that shows widgets, as far as the agent knows it.
class Host {
  public:
    Host(const RunningAgent& agent, bool watches, bool isSeen = true)
        : isSeen_(isSeen),
          listener_(bus::Listener::start({.address = bus::Address::at(agent.session().address()),
                                          .interface =
                                              {.service = "com.kavra.zelto.desktop",
                                               .methods = {bus::method(
                                                   "reload", {"kind"}, {},
                                                   [this](const std::string&) -> bus::Result<void> {
                                                       ++reloads;
                                                       return {};
                                                   })},
                                               .properties = propertiesOf(watches)},
                                          .trusted = {getuid()}})
                        .value()) {}

    void setSeen(bool isSeen) {
        isSeen_ = isSeen;
        listener_.changed("seen");
    }
    std::atomic<int> reloads = 0;

  private:
    std::vector<bus::Property> propertiesOf(bool watches) {
        std::vector<bus::Property> out{{"seen", [this] { return isSeen_.load(); }}};
        if (watches) out.push_back({"watchesFiles", [] { return true; }});
        return out;
    }
    std::atomic<bool> isSeen_;
    bus::Listener listener_;
};

const std::string supply = "sys/class/power_supply/";

struct RunningApp : testing::Test {
    RunningAgent agent;

    std::string say(std::vector<std::string> words) const {
        const auto done = agent.zelto(std::move(words));
        return done.output + done.errors;
    }
    static std::string lineOf(const std::string& text, const std::string& begin) {
        const auto at = text.find(begin);
        return at == std::string::npos ? "none" : text.substr(at, text.find('\n', at) - at);
    }
};

TEST_F(RunningApp, FillsTheSnapshotFromItsMachine) {
    agent.machine().add(
        {{supply + "BAT0/type", "Battery\n"},
         {supply + "BAT0/status", "Discharging\n"},
         {supply + "BAT0/capacity", "33\n"},
         {"sys/class/hwmon/hwmon0/name", "thinkpad\n"},
         {"sys/class/hwmon/hwmon0/fan1_input", "2100\n"},
         {"sys/class/thermal/thermal_zone0/type", "x86_pkg_temp\n"},
         {"sys/class/thermal/thermal_zone0/temp", "51000\n"}});
    ASSERT_TRUE(agent.start());
    EXPECT_TRUE(agent.becomes([](const WidgetSnapshot& now) {
        return now.battery && now.battery->percent == 33 && now.fans.size() == 1 &&
               now.chipTemperature == 51.0 && now.memoryTotal == 1'024'000;
    }));
    EXPECT_EQ(agent.log(), "");
}

TEST_F(RunningApp, MeasuresAgainWhenSomebodyLooks) {
    ASSERT_TRUE(agent.start());
    EXPECT_TRUE(agent.becomes([](const WidgetSnapshot& now) { return !now.battery; }));
    agent.machine().add({{supply + "BAT0/type", "Battery\n"}, {supply + "BAT0/capacity", "34\n"}});
    Host host(agent, true, false);
    EXPECT_TRUE(runUntil([&] {
        return say({"app", "status"}).find("widgets shown: yes, seen: no") != std::string::npos;
    }));
    EXPECT_FALSE(agent.snapshot()->battery);
    host.setSeen(true);
    EXPECT_TRUE(
        agent.becomes([](const WidgetSnapshot& now) { return now.battery && now.battery->percent == 34; }));
    // The load of the second between two readings.
    agent.machine().add({{"proc/stat", "cpu  160 0 50 890 0 0 0 0 0 0\n"}});
    EXPECT_TRUE(agent.becomes(
        [](const WidgetSnapshot& now) { return now.cpu == 0.6 && now.cpuHistory.size() == 1; }));
    EXPECT_EQ(host.reloads, 0);
}

TEST_F(RunningApp, ADaemonThatIsSlowHoldsUpNobody) {
    const test::PrivateBus system;
    constexpr const char* upower = "org.freedesktop.UPower";
    const test::MockService daemon(system.address(), upower, "/org/freedesktop/UPower", upower);
    daemon.property(upower, "OnBattery", "<true>");
    daemon.method(upower, "EnumerateDevices", "", "ao", "import time; time.sleep(10); ret = []");
    agent.useSystemBus(system.address());
    agent.machine().add({{supply + "BAT0/type", "Battery\n"}, {supply + "BAT0/capacity", "35\n"}});
    const Host host(agent, true);
    ASSERT_TRUE(agent.start());
    EXPECT_TRUE(runUntil([&] { return daemon.calls().find("EnumerateDevices") != std::string::npos; }));
    EXPECT_EQ(say({"clock", "add", "tokyo"}), "Asia/Tokyo\n");
    // Until it answers, the kernel's files are believed.
    EXPECT_TRUE(agent.becomes([](const WidgetSnapshot& now) {
        return now.battery && now.battery->percent == 35 && now.clockZones.size() == 1;
    }));
    EXPECT_NE(say({"app", "status"}).find("battery by the power daemon: no"), std::string::npos);
}

TEST_F(RunningApp, TellsAHostThatDoesNotWatchTheFile) {
    Host host(agent, false);
    ASSERT_TRUE(agent.start());
    EXPECT_TRUE(runUntil([&] { return host.reloads > 0; }));
}

TEST_F(RunningApp, KeepsTheClocksOfTheWorld) {
    ASSERT_TRUE(agent.start());
    EXPECT_EQ(say({"clock", "list"}), "");
    EXPECT_EQ(say({"clock", "add", "tokyo"}), "Asia/Tokyo\n");
    EXPECT_EQ(say({"clock", "add", "Europe/Lisbon"}), "Europe/Lisbon\n");
    EXPECT_EQ(say({"clock", "add", "Tokyo"}), "Asia/Tokyo\n");
    EXPECT_EQ(say({"clock", "list"}), "Asia/Tokyo\nEurope/Lisbon\n");
    EXPECT_TRUE(agent.becomes([](const WidgetSnapshot& now) { return now.clockZones.size() == 2; }));
    EXPECT_EQ(say({"clock", "add", "Atlantis"}), "zelto: no time zone is called 'Atlantis'\n");
    EXPECT_EQ(say({"clock", "remove", "tokyo"}), "Asia/Tokyo\n");
    EXPECT_EQ(say({"clock", "remove", "tokyo"}), "zelto: there is no clock of 'tokyo'\n");
    EXPECT_EQ(agent.zelto({"clock", "remove", "tokyo"}).status, 1);
    EXPECT_EQ(say({"clock", "list", "--json"}), "[\"Europe\\/Lisbon\"]\n");
}

TEST_F(RunningApp, TakesSettingsOverThatAPersonEdits) {
    ASSERT_TRUE(agent.start());
    const auto file = agent.folder() / "config/zelto/app.json";
    const auto write = [&](const std::string& text) { static_cast<void>(writeFileAtomically(file, text)); };
    std::filesystem::create_directories(file.parent_path());
    write(R"({"clockZones":["Asia/Tokyo"]})");
    EXPECT_TRUE(agent.becomes([](const WidgetSnapshot& now) { return now.clockZones.size() == 1; }));
    write(R"({"clockZones":["Asia/Tokyo","Atlantis"]})");
    EXPECT_TRUE(runUntil([&] {
        return say({"app", "status"}).find("settings: app.json: clockZones[1] is not valid") !=
               std::string::npos;
    }));
    EXPECT_EQ(agent.snapshot()->clockZones.size(), 1U);
    // What a person may want to mend is not written over.
    EXPECT_NE(say({"clock", "add", "lisbon"}).find("mend or remove it first"), std::string::npos);
    write(R"({"clockZones":[]})");
    EXPECT_EQ(lineOf(say({"clock", "add", "lisbon"}), "Europe"), "Europe/Lisbon");
    EXPECT_EQ(say({"app", "set", "awake-ends-at-lock", "on"}), "");
    EXPECT_EQ(say({"app", "set", "awake-ends-at-lock", "yes"}), "zelto: 'yes' is neither on nor off\n");
    EXPECT_EQ(
        readFile(file),
        "{\"version\":1,\"clockZones\":[\"Europe\\/Lisbon\"],\"awake\":{\"endsAtLock\":true}}\n");
}

TEST_F(RunningApp, TheFirstAnalysisOnABatteryAsksForNoUpdates) {
    agent.machine().add(
        {{supply + "BAT0/type", "Battery\n"},
         {supply + "BAT0/status", "Discharging\n"},
         {supply + "BAT0/capacity", "60\n"}});
    const Host host(agent, true);
    ASSERT_TRUE(agent.start());
    const auto report = [&] { return say({"care", "show", "--json"}); };
    EXPECT_TRUE(runUntil([&] { return report().find("\"items\"") != std::string::npos; }));
    EXPECT_EQ(report().find("updatesAsked"), std::string::npos) << report();
}

TEST_F(RunningApp, AnalysesTheMachineWhenItIsAsked) {
    ASSERT_TRUE(agent.start());
    EXPECT_EQ(say({"care", "show"}), "zelto: nothing has been analysed yet\n");
    const std::string report = say({"care", "run"});
    EXPECT_EQ(lineOf(report, "ok  Memória"), "ok  Memória: 60 % da memória estão livres.");
    EXPECT_EQ(say({"care", "show"}), report);
    EXPECT_TRUE(agent.becomes([](const WidgetSnapshot& now) {
        return now.careDate && !now.careItems.empty() && now.careItems.front().title == "Memória";
    }));
}

TEST_F(RunningApp, OpensMeetingsAndTabsAndNothingElse) {
    ASSERT_TRUE(agent.start());
    EXPECT_EQ(say({"app", "open", "zelto://join?url=https%3A%2F%2Fmeet%2Eexample%2Ecom%2Fabc%3Fa%3D1"}), "");
    EXPECT_TRUE(runUntil([&] { return agent.pages() == " https://meet.example.com/abc?a=1\n"; }))
        << agent.pages();
    for (const char* tab : {"home", "battery", "system", "fans", "calendar", "clipboard"}) {
        EXPECT_EQ(say({"app", "open", std::string("zelto://open?tab=") + tab}), "");
        EXPECT_TRUE(runUntil([&] {
            return agent.pages().find(std::string("docs/tabs/") + tab + ".html\n") != std::string::npos;
        })) << agent.pages();
    }
    const std::string pages = agent.pages();
    for (const char* hostile :
         {"zelto://join?url=file%3A%2F%2F%2Fetc%2Fpasswd",
          "zelto://join?url=javascript%3Aalert(1)",
          "https://example.com/",
          "zelto://open?tab=..%2F..%2Fetc",
          "zelto://awake?minutes=99999999",
          "zelto://unknown"})
        EXPECT_EQ(agent.zelto({"app", "open", hostile}).status, 1) << hostile;
    EXPECT_EQ(agent.zelto({"app", "open", "zelto://join?url=" + std::string(100'000, 'a')}).status, 1);
    EXPECT_EQ(say({"app", "open", "zelto://eq"}), "zelto: the equalizer cannot be switched: there is none\n");
    EXPECT_EQ(agent.pages(), pages);
    EXPECT_EQ(say({"awake", "status"}), "off\n");
    EXPECT_NE(agent.log().find("a link was refused (no such link): zelto://unknown"), std::string::npos);
    EXPECT_LT(agent.log().size(), 10'000U);
}

TEST_F(RunningApp, HandsTheTapsTokenOn) {
    ASSERT_TRUE(agent.start());
    const auto called = test::run(
        {"/usr/bin/gdbus",
         "call",
         "--address",
         agent.session().address(),
         "--dest",
         "com.kavra.zelto",
         "--object-path",
         "/com/kavra/zelto",
         "--method",
         "com.kavra.zelto.open",
         "zelto://join?url=https%3A%2F%2Fexample%2Ecom",
         "zelto_TIME4711"});
    EXPECT_EQ(called.status, 0) << called.errors;
    EXPECT_TRUE(runUntil([&] { return agent.pages() == "zelto_TIME4711 https://example.com\n"; }))
        << agent.pages();
}

TEST_F(RunningApp, LeavesAnotherProgramsSnapshotAlone) {
    WidgetSnapshot another;
    another.cpu = 0.75;
    std::filesystem::create_directories(agent.snapshotFile().parent_path());
    ASSERT_TRUE(writeFileAtomically(agent.snapshotFile(), records::encodeJSON(another).value()));
    ASSERT_TRUE(agent.start());
    EXPECT_EQ(say({"clock", "add", "tokyo"}), "Asia/Tokyo\n");
    EXPECT_NE(
        say({"app", "status"}).find("another program keeps the snapshot; it is left alone until"),
        std::string::npos);
    EXPECT_EQ(agent.snapshot()->cpu, 0.75);
    EXPECT_TRUE(agent.snapshot()->clockZones.empty());
}

TEST_F(RunningApp, IsOneForASession) {
    ASSERT_TRUE(agent.start());
    const auto second = test::run(
        {test::programFolder() / "zelto-agent",
         "--bus",
         agent.session().address(),
         "--home",
         (agent.folder() / "home").string()},
        "",
        agent.environment());
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, "zelto-agent: com.kavra.zelto is offered by another process\n");
    EXPECT_EQ(say({"app", "quit"}), "");
    EXPECT_EQ(agent.process().wait(), 0);
    EXPECT_EQ(say({"app", "status"}), "zelto: zelto-agent is not running, and the bus cannot start it\n");
}

TEST_F(RunningApp, IsStartedByTheBusWhenItIsWanted) {
    agent.install();
    EXPECT_EQ(say({"clock", "add", "tokyo"}), "Asia/Tokyo\n") << agent.log();
    EXPECT_TRUE(agent.becomes([](const WidgetSnapshot& now) { return now.clockZones.size() == 1; }));
    EXPECT_EQ(say({"app", "quit"}), "");
    EXPECT_EQ(say({"clock", "list"}), "Asia/Tokyo\n") << agent.log();
    EXPECT_EQ(say({"app", "quit"}), "");
}

TEST_F(RunningApp, EndsWithItsSession) {
    ASSERT_TRUE(agent.start());
    const_cast<test::PrivateBus&>(agent.session()).end();
    EXPECT_EQ(agent.process().wait(), 0);
}

TEST_F(RunningApp, SnapshotsAreMadeWithoutAnAgentToo) {
    agent.machine().add({{supply + "BAT0/type", "Battery\n"}, {supply + "BAT0/capacity", "33\n"}});
    const auto made = test::run(
        {test::programFolder() / "zelto",
         "app",
         "snapshot",
         "--machine",
         agent.machine().root(),
         "--home",
         (agent.folder() / "home").string()},
        "",
        agent.environment());
    EXPECT_EQ(made.status, 0) << made.errors;
    const auto snapshot = records::decodeJSON<WidgetSnapshot>(made.output);
    ASSERT_TRUE(snapshot) << snapshot.fault().text();
    EXPECT_EQ(snapshot->battery->percent, 33);
    EXPECT_FALSE(snapshot->careItems.empty());
}

TEST_F(RunningApp, SaysNothingPersonalOfItself) {
    ASSERT_TRUE(agent.start());
    say({"clock", "add", "tokyo"});
    static_cast<void>(writeFileAtomically(
        agent.folder() / "config/zelto/app.json", R"({"clockZones":["Asia/Tokyo","Atlantis"]})"));
    EXPECT_TRUE(runUntil([&] {
        return say({"app", "status"}).find("clockZones[1] is not valid") != std::string::npos;
    }));
    const std::string status = say({"app", "status"}) + say({"app", "status", "--json"});
    for (const std::string& word : {std::string("Tokyo"), std::string("Atlantis"), agent.folder().string()})
        EXPECT_EQ(status.find(word), std::string::npos) << status;
}

/// With the real login manager.
struct RunningAwake : RunningApp {
    std::optional<test::LoginManager> login;

    void SetUp() override {
        if (!test::LoginManager::isPossible()) GTEST_SKIP() << "the login manager wants root";
        login.emplace();
        agent.useSystemBus(login->address());
        ASSERT_TRUE(agent.start());
    }
    bool isHeld(bool held) const {
        return runUntil([&] { return (login->inhibitors().find("'Zelto'") != std::string::npos) == held; });
    }
    bool shows(bool isActive, std::optional<double> minutes) const {
        return agent.becomes([&](const WidgetSnapshot& now) {
            if (now.awakeActive != isActive || now.awakeEnd.has_value() != minutes.has_value()) return false;
            return !minutes || std::abs(*now.awakeEnd - Date::now() - *minutes * 60) < 20;
        });
    }
};

TEST_F(RunningAwake, EveryButtonDoesWhatItSays) {
    struct Case {
        const char* link;
        bool isActive;
        std::optional<double> minutes;
    };
    for (const auto& [link, isActive, minutes] :
         {Case{"zelto://awake?minutes=30", true, 30},
          Case{"zelto://awake?minutes=60", true, 60},
          Case{"zelto://awake?minutes=120", true, 120},
          Case{"zelto://awake?minutes=0", true, std::nullopt},
          Case{"zelto://awake?action=off", false, std::nullopt},
          Case{"zelto://awake?action=toggle", true, 60},
          Case{"zelto://awake?action=toggle", false, std::nullopt}}) {
        EXPECT_EQ(say({"app", "open", link}), "") << link;
        EXPECT_TRUE(shows(isActive, minutes)) << link;
        EXPECT_TRUE(isHeld(isActive)) << link;
    }
}

TEST_F(RunningAwake, TheCommandsDoTheSame) {
    EXPECT_EQ(say({"awake", "on", "--minutes", "45"}), "");
    EXPECT_TRUE(isHeld(true));
    EXPECT_TRUE(shows(true, 45));
    const std::string status = say({"awake", "status"});
    EXPECT_NE(
        status.find("(45 min)\nheld by logind\nnot held by screen saver: it is not there\n"),
        std::string::npos)
        << status;
    EXPECT_EQ(say({"awake", "on"}), "");
    EXPECT_TRUE(shows(true, std::nullopt));
    EXPECT_EQ(say({"awake", "toggle"}), "");
    EXPECT_TRUE(isHeld(false));
    EXPECT_EQ(agent.zelto({"awake", "on", "--minutes", "0"}).status, 2);
    EXPECT_EQ(agent.zelto({"awake", "on", "--minutes", "10081"}).status, 2);
}

TEST_F(RunningAwake, EndsWhenTheSessionIsLockedWhereThatIsSet) {
    const auto lock = [&] {
        const auto sent = test::run(
            {"/usr/bin/gdbus",
             "emit",
             "--session",
             "--object-path",
             "/org/gnome/ScreenSaver",
             "--signal",
             "org.gnome.ScreenSaver.ActiveChanged",
             "true"},
            "",
            {"PATH=/usr/bin:/bin", "DBUS_SESSION_BUS_ADDRESS=" + agent.session().address()});
        EXPECT_EQ(sent.status, 0) << sent.errors;
    };
    say({"awake", "on"});
    lock();
    EXPECT_EQ(lineOf(say({"awake", "status"}), "on"), "on until it is turned off");
    EXPECT_EQ(say({"app", "set", "awake-ends-at-lock", "on"}), "");
    EXPECT_EQ(lineOf(say({"awake", "status"}), "on"), "on until it is turned off");
    lock();
    EXPECT_TRUE(shows(false, std::nullopt));
    EXPECT_TRUE(isHeld(false));
    EXPECT_NE(agent.log().find("no longer kept awake: the session was locked"), std::string::npos);
}

TEST_F(RunningAwake, EndsOnALowBatteryAlsoWithoutThePowerDaemon) {
    agent.machine().add(
        {{supply + "BAT0/type", "Battery\n"},
         {supply + "BAT0/status", "Discharging\n"},
         {supply + "BAT0/capacity", "14\n"}});
    EXPECT_EQ(say({"app", "set", "awake-ends-on-low-battery", "off"}), "");
    say({"awake", "on"});
    EXPECT_TRUE(isHeld(true));
    EXPECT_EQ(say({"app", "set", "awake-ends-on-low-battery", "on"}), "");
    EXPECT_TRUE(isHeld(false));
    EXPECT_NE(agent.log().find("no longer kept awake: the battery is low"), std::string::npos);
}

TEST_F(RunningAwake, SaysWhenItEndsThatNothingIsKeptAwake) {
    say({"awake", "on", "--minutes", "30"});
    EXPECT_TRUE(shows(true, 30));
    EXPECT_EQ(say({"app", "quit"}), "");
    EXPECT_EQ(agent.process().wait(), 0);
    EXPECT_FALSE(agent.snapshot()->awakeActive);
    ASSERT_TRUE(agent.start());
    EXPECT_TRUE(shows(true, 30));
}

TEST_F(RunningAwake, IsLetGoByDeathAndTakenAgain) {
    say({"awake", "on", "--minutes", "30"});
    EXPECT_TRUE(isHeld(true));
    agent.kill();
    EXPECT_TRUE(isHeld(false));
    ASSERT_TRUE(agent.start());
    EXPECT_TRUE(isHeld(true));
    EXPECT_TRUE(shows(true, 30));
}

/// Kills it at any moment, again and again; how often is the environment's to say.
TEST_F(RunningAwake, KillsNeverTearAFile) {
    const char* wanted = std::getenv("ZELTO_AGENT_KILLS");
    const int kills = wanted ? std::atoi(wanted) : 20;
    std::minstd_rand random(4711);
    for (int i = 0; i < kills; ++i) {
        // Something of each kind is under way.
        std::vector<test::Child> under;
        for (const std::vector<std::string>& words :
             {std::vector<std::string>{"awake", "on", "--minutes", std::to_string(60 + i)},
              {"clock", i % 2 == 0 ? "add" : "remove", "tokyo"},
              {"app", "open", "zelto://awake?minutes=90"}}) {
            std::vector<std::string> command{test::programFolder() / "zelto"};
            command.insert(command.end(), words.begin(), words.end());
            command.insert(command.end(), {"--bus", agent.session().address()});
            under.emplace_back(command, agent.environment(), agent.folder() / "commands");
        }
        // Without sleeping: so many looks at the file take so long.
        for (auto looks = random() % 400; looks > 0; --looks)
            static_cast<void>(readFile(agent.snapshotFile()));
        agent.kill();
        for (test::Child& child : under) child.wait();
        ASSERT_TRUE(!std::filesystem::exists(agent.snapshotFile()) || agent.snapshot()) << i;
        ASSERT_TRUE(agent.start()) << agent.log();
        const auto settings = readFile(agent.folder() / "config/zelto/app.json").value_or("{}\n");
        EXPECT_TRUE(settings.starts_with("{") && settings.ends_with("}\n")) << settings;
        // What is shown is so.
        const auto kept = readFile(agent.folder() / "state/zelto/awake.json");
        EXPECT_TRUE(
            agent.becomes([&](const WidgetSnapshot& now) { return now.awakeActive == kept.has_value(); }));
        EXPECT_TRUE(isHeld(kept.has_value()));
    }
    EXPECT_EQ(agent.log().find("broken"), std::string::npos);
}

}  // namespace
}  // namespace zelto::agent
