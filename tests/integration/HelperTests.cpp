// The helper's contract between processes: ours, other people's, and other users'.

#include <csignal>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "foundation/Files.hpp"
#include "helper/HelperInterface.hpp"
#include "tests/support/BusCall.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/Process.hpp"

namespace zelto::test {

using namespace helper;
namespace {

using namespace std::chrono_literals;

struct HelperProcess : testing::Test {
    PrivateBus bus;

    Child standIn(const std::vector<std::string>& words = {}) const {
        std::vector<std::string> command{programFolder() / "stand-in-helper", bus.address()};
        command.insert(command.end(), words.begin(), words.end());
        return ready(Child(std::move(command)));
    }
    static Child ready(Child child) {
        if (child.line() != "ready") throw std::runtime_error("the stand-in did not start");
        return child;
    }
    Finished zelto(std::vector<std::string> words) const {
        words.insert(words.begin(), {programFolder() / "zelto", "helper"});
        words.insert(words.end(), {"--bus", bus.address()});
        return run(words);
    }
    Finished busctl(std::vector<std::string> words) const {
        words.insert(words.begin(), {"busctl", "--address=" + bus.address()});
        return runFound(words);
    }
    /// Of a program that is looked for where programs are.
    static Finished runFound(std::vector<std::string> words) {
        words.insert(words.begin(), "/usr/bin/env");
        return run(words);
    }
};

constexpr const char* service = "com.kavra.zelto.helper";
constexpr const char* object = "/com/kavra/zelto/helper";

/// "ay 3 1 2 3" as text.
std::string bytesOf(const std::string& printed) {
    std::istringstream in(printed);
    std::string type;
    std::size_t count = 0;
    in >> type >> count;
    std::string out;
    for (int byte = 0; in >> byte;) out += static_cast<char>(byte);
    EXPECT_EQ(type, "ay");
    EXPECT_EQ(out.size(), count);
    return out;
}

std::vector<std::string> asBytes(const std::string& text) {
    std::vector<std::string> out{std::to_string(text.size())};
    for (const char c : text) out.push_back(std::to_string(static_cast<unsigned char>(c)));
    return out;
}

TEST_F(HelperProcess, OtherProgramsCanIntrospectAndCallAllFourMethods) {
    const Child helper = standIn();
    const auto tree = busctl({"introspect", service, object, service});
    EXPECT_EQ(tree.status, 0) << tree.errors;
    std::string members;
    std::istringstream lines(tree.output);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name, type, signature, result;
        words >> name >> type >> signature >> result;
        if (name.starts_with('.')) members += name + " " + type + " " + signature + " " + result + "\n";
    }
    EXPECT_EQ(
        members,
        ".resetAllWithReply method - -\n"
        ".setChargeConfig method ay s\n"
        ".setFanConfig method ay s\n"
        ".statusWithReply method - ay\n");

    const auto call = [this](const std::string& method, std::vector<std::string> arguments = {}) {
        std::vector<std::string> words{"call", service, object, service, method};
        if (!arguments.empty()) words.push_back("ay");
        words.insert(words.end(), arguments.begin(), arguments.end());
        return busctl(words);
    };
    const auto status = [&] { return nlohmann::json::parse(bytesOf(call("statusWithReply").output)); };
    EXPECT_EQ(status()["chargeConfig"]["limit"], 80);
    EXPECT_EQ(
        call(
            "setChargeConfig",
            asBytes(R"({"enabled":true,"limit":70,"sailing":5,"dischargeAboveLimit":false})"))
            .output,
        "s \"\"\n");
    EXPECT_EQ(
        call(
            "setFanConfig",
            asBytes(
                R"({"mode":"fixed","sensor":"cpu","startTemperature":50,"maxTemperature":80,"fixedLevel":1})"))
            .output,
        "s \"\"\n");
    EXPECT_EQ(status()["chargeConfig"]["limit"], 70);
    EXPECT_EQ(status()["fanConfig"]["mode"], "fixed");

    const auto faulty = call("setChargeConfig", asBytes(R"({"enabled":true,"limit":70,"sailing":5})"));
    EXPECT_NE(faulty.status, 0);
    EXPECT_NE(faulty.errors.find("dischargeAboveLimit: missing"), std::string::npos) << faulty.errors;
    EXPECT_EQ(status()["chargeConfig"]["limit"], 70);

    const auto reset = callOnBus(bus.address(), service, std::string(service) + ".resetAllWithReply");
    EXPECT_EQ(reset.output, "()\n") << reset.errors;
    EXPECT_EQ(status()["chargeConfig"]["limit"], 80);
}

TEST_F(HelperProcess, OurClientTalksToAHelperOfAnotherLanguage) {
    const Child helper = ready(Child(
        {"/usr/bin/python3", dataFolder().parent_path() / "standin/helper.py", bus.address()},
        {"PATH=/usr/bin:/bin"},
        bus.folder() / "helper.log"));
    const auto before = zelto({"status"});
    EXPECT_EQ(before.status, 0) << before.errors;
    EXPECT_NE(before.output.find("charge limit        80 %, sailing 5, off"), std::string::npos)
        << before.output;
    EXPECT_EQ(before.errors, "zelto: the helper is version 9.9.9, this build expects 0.6.0\n");
    EXPECT_EQ(zelto({"set-charge", "limit=66", "enabled=true"}).status, 0);
    EXPECT_EQ(zelto({"set-fan", "mode=temperature", "startTemperature=45.5"}).status, 0);
    const auto after = nlohmann::json::parse(zelto({"status", "--json"}).output);
    EXPECT_EQ(after["chargeConfig"]["limit"], 66);
    EXPECT_EQ(after["chargeConfig"]["enabled"], true);
    EXPECT_EQ(after["chargeConfig"]["sailing"], 5);
    EXPECT_EQ(after["fanConfig"]["mode"], "temperature");
    EXPECT_EQ(after["fanConfig"]["startTemperature"], 45.5);
    // An error that only the other side knows.
    const auto odd = zelto({"set-charge", "limit=99"});
    EXPECT_EQ(odd.status, 1);
    EXPECT_EQ(odd.errors, "zelto: the helper refused for another reason: not today\n");
    EXPECT_EQ(zelto({"reset"}).status, 0);
    EXPECT_EQ(nlohmann::json::parse(zelto({"status", "--json"}).output)["chargeConfig"]["limit"], 80);
}

TEST_F(HelperProcess, TheStatusIsATable) {
    const Child helper = standIn();
    const auto status = zelto({"status"});
    EXPECT_EQ(status.errors, "");
    EXPECT_EQ(
        status.output,
        "version             0.6.0\n"
        "charge control      inhibit\n"
        "charge limit        80 %, sailing 5, off\n"
        "discharge above     no\n"
        "charging paused     no\n"
        "adapter disabled    no\n"
        "fan mode            automatic\n"
        "fan sensor          hottest, 50 to 80 °C\n"
        "fixed level         0.5\n"
        "control temperature 61.5 °C\n"
        "\n"
        "fan    actual   target  minimum  maximum  manual\n"
        "0        1350     1400     1200     5900      no\n"
        "1        1380     1400     1200     6100     yes\n");
}

TEST_F(HelperProcess, BadValuesAreRefusedByTheirFieldsName) {
    const Child helper = standIn();
    const struct {
        std::vector<std::string> words;
        std::string message;
    } cases[] = {
        {{"set-charge", "limit=80.5"}, "limit: '80.5' is not an integer"},
        {{"set-charge", "limit=101"}, "limit: must be a percentage from 1 to 100"},
        {{"set-charge", "limit"}, "limit: a value is missing (write limit=…)"},
        {{"set-charge", "sailing=81"}, "sailing: must lie between 0 and the limit"},
        {{"set-charge", "enabled=yes"}, "enabled: 'yes' is not true or false"},
        {{"set-charge", "limits=70"},
         "there is no field 'limits'; there are enabled, limit, sailing, dischargeAboveLimit"},
        {{"set-fan", "mode=manual"}, "mode: 'manual' is not a fan mode"},
        {{"set-fan", "fixedLevel=1.5"}, "fixedLevel: must lie between 0 and 1"},
        {{"set-fan", "startTemperature=80"}, "maxTemperature: must be above startTemperature"},
        {{"set-fan", "startTemperature=1e999"}, "startTemperature: '1e999' is not a number"},
    };
    for (const auto& [words, message] : cases) {
        const auto result = zelto(words);
        EXPECT_EQ(result.status, 2) << message;
        EXPECT_EQ(result.errors, "zelto: " + message + "\n");
    }
    EXPECT_NE(zelto({"status"}).output.find("80 %, sailing 5, off"), std::string::npos);
}

TEST_F(HelperProcess, TheExitStatusTellsWhatHappened) {
    EXPECT_EQ(zelto({"status"}).status, 5);
    EXPECT_EQ(
        run({programFolder() / "zelto", "helper", "status", "--bus", "unix:path=/no/such/bus"}).status, 4);
    {
        const Child helper = standIn({"decline"});
        const auto declined = zelto({"set-charge", "limit=70"});
        EXPECT_EQ(declined.status, 3);
        EXPECT_EQ(declined.errors, "zelto: the helper: no controller\n");
        EXPECT_NE(zelto({"status"}).output.find("last error          no controller"), std::string::npos);
    }
    {
        const Child helper = standIn({"stall"});
        EXPECT_EQ(zelto({"status", "--deadline", "0.05"}).status, 6);
    }
    {
        const Child helper = standIn({"trust=" + std::to_string(getuid() + 1)});
        const auto denied = zelto({"reset"});
        EXPECT_EQ(denied.status, 8);
        EXPECT_EQ(
            denied.errors,
            "zelto: the helper does not serve this user: this user may not call com.kavra.zelto.helper\n");
    }
}

TEST_F(HelperProcess, TwoHundredDeathsInTheMiddleOfACallAreTwoHundredClearErrors) {
    HelperConnection client(bus::Address::at(bus.address()), 30s);
    for (int i = 0; i < 200; ++i) {
        Child stalling = standIn({"stall"});
        std::thread killer([&] {
            EXPECT_EQ(stalling.line(), "statusWithReply");
            stalling.kill(SIGKILL);
        });
        const auto outcome = client.status();
        killer.join();
        ASSERT_FALSE(outcome);
        ASSERT_EQ(outcome.fault().kind, bus::ErrorKind::peerDied);
        ASSERT_NE(outcome.fault().text, "");
        stalling.wait();
        const Child restarted = standIn();
        const auto next = client.status();
        ASSERT_TRUE(next) << next.fault().text;
    }
}

TEST_F(HelperProcess, ACallerOfAnotherUserIsTurnedAway) {
    if (getuid() != 0) GTEST_SKIP() << "only root can become another user";
    Child helper = standIn();
    // Another user must be able to reach the bus and the program; that is not what keeps strangers out.
    std::filesystem::permissions(bus.folder(), std::filesystem::perms(0755));
    std::filesystem::permissions(bus.folder() / "bus", std::filesystem::perms(0777));
    const auto program = bus.folder() / "zelto";
    std::filesystem::copy_file(programFolder() / "zelto", program);
    const auto stranger = run(
        {"/usr/bin/setpriv",
         "--reuid=65534",
         "--clear-groups",
         program,
         "helper",
         "reset",
         "--bus",
         bus.address()});
    EXPECT_EQ(stranger.status, 8) << stranger.errors;
    EXPECT_EQ(zelto({"status"}).status, 0);
    // The first call that ran is ours.
    EXPECT_EQ(helper.line(), "statusWithReply");
}

TEST(HelperPackaging, ThePolicyLetsOnlyRootBeTheHelper) {
    const auto policy = dataFolder().parent_path().parent_path() / "packaging/com.kavra.zelto.helper.conf";
    const PrivateBus bus(
        R"(<policy context="default"><allow user="*"/><deny own="*"/><deny send_type="method_call"/>)"
        R"(<allow send_destination="org.freedesktop.DBus"/><allow receive_type="method_call"/>)"
        R"(<allow receive_type="method_return"/><allow receive_type="error"/><allow receive_type="signal"/>)"
        R"(<allow send_requested_reply="true" send_type="method_return"/>)"
        R"(<allow send_requested_reply="true" send_type="error"/></policy><include>)" +
        policy.string() + "</include>");
    const bool isRoot = getuid() == 0;
    Child helper({programFolder() / "stand-in-helper", bus.address()}, {}, bus.folder() / "errors");
    EXPECT_EQ(helper.line() == "ready", isRoot);
    if (!isRoot) return;
    const auto status = run({programFolder() / "zelto", "helper", "status", "--bus", bus.address()});
    EXPECT_EQ(status.status, 0) << status.errors;
    std::filesystem::permissions(bus.folder(), std::filesystem::perms(0755));
    std::filesystem::permissions(bus.folder() / "bus", std::filesystem::perms(0777));
    helper.kill(SIGKILL);
    helper.wait();
    const auto program = bus.folder() / "stand-in-helper";
    std::filesystem::copy_file(programFolder() / "stand-in-helper", program);
    const auto stranger =
        run({"/usr/bin/setpriv", "--reuid=65534", "--clear-groups", program, bus.address()});
    EXPECT_EQ(stranger.status, 1);
    EXPECT_NE(stranger.errors.find("not allowed to own"), std::string::npos) << stranger.errors;
}

TEST(HelperPackaging, TheBusCanStartTheHelperOnDemand) {
    // As shipped, but for the program's place, which is the test's, and the user, which a test cannot change.
    const auto packaged =
        readFile(dataFolder().parent_path().parent_path() / "packaging/com.kavra.zelto.helper.service");
    ASSERT_TRUE(packaged);
    std::string text = *packaged;
    const std::string exec = "Exec=/usr/libexec/zelto-helper\nUser=root\n";
    ASSERT_NE(text.find(exec), std::string::npos);
    const TemporaryFolder folder;
    text.replace(text.find(exec), exec.size(), "Exec=" + (folder.path() / "start").string() + "\n");
    folder.write("com.kavra.zelto.helper.service", text);
    const PrivateBus bus(
        "<servicedir>" + folder.path().string() +
        R"(</servicedir><policy context="default"><allow user="*"/><allow own="*"/>)"
        R"(<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/></policy>)");
    folder.write(
        "start",
        "#!/bin/sh\nexec '" + (programFolder() / "stand-in-helper").string() + "' '" + bus.address() + "'\n");
    std::filesystem::permissions(folder.path() / "start", std::filesystem::perms(0755));
    const auto status = run({programFolder() / "zelto", "helper", "status", "--bus", bus.address()});
    EXPECT_EQ(status.status, 0) << status.errors;
    EXPECT_NE(status.output.find("version             0.6.0"), std::string::npos);
}

}  // namespace
}  // namespace zelto::test
