#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "bus/Client.hpp"
#include "bus/Listener.hpp"
#include "runloop/MainLoop.hpp"
#include "tests/support/PrivateBus.hpp"

namespace zelto::bus {
namespace {

using namespace std::chrono_literals;

constexpr const char* service = "org.example.Echo";
constexpr const char* object = "/org/example/Echo";

struct Asking : testing::Test {
    test::PrivateBus bus;
    Client client{Address::at(bus.address())};
    std::vector<Answer> kept;

    static bool until(const std::function<bool()>& condition) {
        bool isLate = false;
        const auto limit = runloop::MainSource::after(30, [&] { isLate = true; });
        runloop::runMainLoopUntil([&] { return condition() || isLate; });
        return condition();
    }
    Listener listen() {
        return Listener::start({.address = Address::at(bus.address()),
                                .interface =
                                    {.service = service,
                                     .methods =
                                         {method(
                                              "greet",
                                              {"name"},
                                              {"greeting"},
                                              [](const std::string& name) -> Result<std::string> {
                                                  return "olá, " + name;
                                              }),
                                          method(
                                              "refuse",
                                              {},
                                              {},
                                              []() -> Result<void> {
                                                  return Error{ErrorKind::refused, "no"};
                                              }),
                                          method(
                                              "hang",
                                              {},
                                              {},
                                              [this](ReplyBlock<Result<void>> reply) {
                                                  hung.push_back(std::move(reply));
                                              })},
                                     .properties = {{"seen", [] { return true; }}},
                                     .signals = {{"changed", {{"what", "s"}}}}},
                                .trusted = {getuid()}})
            .value();
    }
    std::vector<ReplyBlock<Result<void>>> hung;

    Result<Data> ask(
        const Target& target, const std::string& signature, Data::List arguments,
        std::chrono::milliseconds deadline = 20s) {
        std::optional<Result<Data>> out;
        client.call(
            target,
            signature,
            std::move(arguments),
            [&](const Result<Data>& results) { out = results; },
            deadline);
        EXPECT_TRUE(until([&] { return out.has_value(); }));
        return *out;
    }
};

TEST_F(Asking, GetsAnAnswerOrTheReasonWhyNot) {
    const auto listener = listen();
    EXPECT_EQ(ask({service, object, service, "greet"}, "(s)", {"Ana"}).value()[0].text(), "olá, Ana");
    const auto refused = ask({service, object, service, "refuse"}, "()", {});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.fault().text, "no");
    const auto absent = ask({"org.example.Nobody", "/", "org.example.Nobody", "greet"}, "(s)", {"Ana"});
    ASSERT_FALSE(absent);
    EXPECT_EQ(absent.fault().kind, ErrorKind::peerAbsent);
    const auto late = ask({service, object, service, "hang"}, "()", {}, 50ms);
    ASSERT_FALSE(late);
    EXPECT_EQ(late.fault().kind, ErrorKind::deadlinePassed);
    const auto nowhere = ask({service, "no path", service, "greet"}, "(s)", {"Ana"});
    ASSERT_FALSE(nowhere);
    EXPECT_EQ(nowhere.fault().kind, ErrorKind::badPayload);
}

TEST_F(Asking, RefusesArgumentsOfAnotherShape) {
    const std::tuple<const char*, Data::List> wrong[] = {
        {"(s)", {1}},
        {"(s)", {}},
        {"(ss)", {"a"}},
        {"(u)", {-1}},
        {"(y)", {256}},
        {"(i)", {std::int64_t{1} << 40}},
        {"(o)", {"no path"}},
        {"(s)", {"\xFF"}},
        {"(as)", {Data::List{1}}},
        {"(a{sv})", {Data::Map{{"a", Data()}, {"b", std::make_shared<FileDescriptor>()}}}},
        {"(h)", {1}},
        {"nonsense", {}},
    };
    for (const auto& [signature, arguments] : wrong) {
        const auto answered = ask({service, object, service, "greet"}, signature, arguments);
        ASSERT_FALSE(answered) << signature;
        EXPECT_EQ(answered.fault().kind, ErrorKind::badPayload) << signature;
    }
}

TEST_F(Asking, ReadsWhatTheBusItselfTells) {
    constexpr const char* daemon = "org.freedesktop.DBus";
    const auto credentials =
        ask({daemon, "/org/freedesktop/DBus", daemon, "GetConnectionCredentials"}, "(s)", {daemon});
    ASSERT_TRUE(credentials);
    EXPECT_EQ(credentials.value()[0]["UnixUserID"].integer(), getuid());
    EXPECT_FALSE(credentials.value()[0]["Unknown"].text());
    const auto names = ask({daemon, "/org/freedesktop/DBus", daemon, "ListNames"}, "()", {});
    EXPECT_EQ(names.value()[0][0].text(), daemon);
    const auto all =
        ask({daemon, "/org/freedesktop/DBus", "org.freedesktop.DBus.Properties", "GetAll"}, "(s)", {daemon});
    EXPECT_FALSE(all.value()[0]["Features"].list().empty());
}

TEST_F(Asking, HearsSignalsAndPropertiesForAsLongAsItWants) {
    auto listener = listen();
    std::vector<std::string> heard;
    auto signals = client.follow({service, object, service, "changed"}, [&](const Signal& signal) {
        heard.push_back(signal.name + " " + signal.arguments[0].text().value_or("?"));
    });
    auto properties =
        client.follow({service, object, "org.freedesktop.DBus.Properties", ""}, [&](const Signal& signal) {
            heard.push_back(signal.arguments[1]["seen"].flag() == true ? "seen" : "?");
        });
    // Heard from the moment on at which the bus has answered something.
    ASSERT_TRUE(ask({service, object, service, "greet"}, "(s)", {"Ana"}));
    listener.send("changed", {"clocks"});
    listener.changed("seen");
    EXPECT_TRUE(until([&] { return heard.size() == 2; }));
    EXPECT_EQ(heard, (std::vector<std::string>{"changed clocks", "seen"}));
    signals.reset();
    listener.send("changed", {"care"});
    listener.changed("seen");
    EXPECT_TRUE(until([&] { return heard.size() == 3; }));
    EXPECT_EQ(heard.back(), "seen");
}

TEST_F(Asking, KnowsWhoIsThere) {
    std::vector<bool> told;
    const auto watch = client.watch(service, [&](bool isThere) { told.push_back(isThere); });
    EXPECT_TRUE(until([&] { return told == std::vector{false}; }));
    {
        const auto listener = listen();
        EXPECT_TRUE(until([&] { return told == std::vector{false, true}; }));
    }
    EXPECT_TRUE(until([&] { return told == std::vector{false, true, false}; }));
}

TEST_F(Asking, ReachesABusThatWasStartedAnew) {
    std::vector<bool> told;
    const auto watch = client.watch(service, [&](bool isThere) { told.push_back(isThere); });
    {
        const auto listener = listen();
        EXPECT_TRUE(until([&] { return !told.empty() && told.back(); }));
        bus.end();
        EXPECT_TRUE(until([&] { return !told.back(); }));
    }
    EXPECT_FALSE(ask({service, object, service, "greet"}, "(s)", {"Ana"}));
    bus.restart();
    const auto listener = listen();
    EXPECT_TRUE(until([&] { return told.back(); }));
    EXPECT_TRUE(ask({service, object, service, "greet"}, "(s)", {"Ana"}));
}

TEST_F(Asking, WhoHasGoneIsNotCalled) {
    const auto listener = listen();
    bool isCalled = false;
    {
        Client brief{Address::at(bus.address())};
        brief.call(
            {service, object, service, "greet"}, "(s)", {"Ana"}, [&](const auto&) { isCalled = true; });
        const auto watch = brief.watch(service, [&](bool) { isCalled = true; });
    }
    ASSERT_TRUE(ask({service, object, service, "greet"}, "(s)", {"Ana"}));
    EXPECT_FALSE(isCalled);
}

TEST(BusData, IsReadLeniently) {
    EXPECT_EQ(Data(7).integer(), 7);
    EXPECT_EQ(Data(7).number(), 7.0);
    EXPECT_EQ(Data(std::uint64_t{7}).integer(), 7);
    EXPECT_EQ(Data(std::numeric_limits<std::uint64_t>::max()).integer(), std::nullopt);
    EXPECT_EQ(Data(NAN).number(), std::nullopt);
    EXPECT_EQ(Data("7").integer(), std::nullopt);
    EXPECT_EQ(Data(true).flag(), true);
    EXPECT_EQ(Data(1).flag(), std::nullopt);
    EXPECT_EQ(Data()["a"]["b"][3].text(), std::nullopt);
    EXPECT_EQ(Data().descriptor(), nullptr);
    const Data tree = Data::Map{{"list", Data::List{1, "two", 3.5}}};
    EXPECT_EQ(tree["list"][1].text(), "two");
    EXPECT_EQ(tree["list"][9].text(), std::nullopt);
}

}  // namespace
}  // namespace zelto::bus
