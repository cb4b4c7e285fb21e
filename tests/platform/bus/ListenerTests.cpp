#include <atomic>
#include <condition_variable>
#include <limits>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "bus/Connection.hpp"
#include "bus/Listener.hpp"
#include "foundation/FileDescriptor.hpp"
#include "tests/support/BusCall.hpp"
#include "tests/support/PrivateBus.hpp"

namespace zelto::bus {
namespace {

using namespace std::chrono_literals;
using test::PrivateBus;

const std::string service = "org.example.Echo";

struct BusService : testing::Test {
    using Block = ReplyBlock<Result<void>>;

    PrivateBus bus;
    std::vector<Block> kept;
    int calls = 0;

    /// An interface whose methods each misbehave in a way of their own.
    Interface echo() {
        return {
            .service = service,
            .methods = {
                method(
                    "echo",
                    {"bytes", "number", "text"},
                    {"all"},
                    [this](const Bytes& bytes, std::int64_t number, const std::string& text)
                        -> Result<std::string> {
                        ++calls;
                        return bytes.content() + " " + std::to_string(number) + " " + text;
                    }),
                method(
                    "back", {"bytes"}, {"bytes"}, [](const Bytes& bytes) -> Result<Bytes> { return bytes; }),
                method("negate", {"n"}, {"n"}, [](std::int64_t n) -> Result<std::int64_t> { return -n; }),
                method(
                    "decline",
                    {"why"},
                    {},
                    [](const std::string& why) -> Result<void> {
                        return Error{ErrorKind::tooLarge, why};
                    }),
                method("drop", {}, {}, [](Block) {}),
                method("keep", {}, {}, [this](Block reply) { kept.push_back(std::move(reply)); }),
                method(
                    "swell",
                    {},
                    {"all"},
                    []() -> Result<Bytes> { return Bytes{std::vector<std::uint8_t>(largestPayload + 1)}; }),
                method("garble", {}, {"all"}, []() -> Result<std::string> { return std::string("\xFF"); })}};
    }

    ListenerOptions options(std::vector<uid_t> trusted = {getuid()}) {
        return {
            .address = Address::at(bus.address()),
            .interface = echo(),
            .trusted = std::move(trusted),
            .deadline = 50ms};
    }
    Listener listen(ListenerOptions options) {
        auto started = Listener::start(std::move(options));
        if (!started) throw std::runtime_error(started.fault().text);
        return *std::move(started);
    }
    Connection connection() { return Connection(Address::at(bus.address()), service); }
};

template <class T>
ErrorKind kindOf(const Result<T>& result) {
    if (result) throw std::runtime_error("not an error");
    EXPECT_NE(result.fault().text, "");
    return result.fault().kind;
}

constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();

TEST_F(BusService, CarriesBytesNumbersAndTextsBothWays) {
    const auto listener = listen(options());
    auto client = connection();
    EXPECT_EQ(
        client.call<std::string>("echo", 5s, Bytes::of("{"), least, std::string("olá")).value(),
        "{ -9223372036854775808 olá");
    for (const std::string& bytes :
         {std::string("\0\xFF{", 3), std::string(), std::string(largestPayload, 'x')})
        EXPECT_EQ(client.call<Bytes>("back", 5s, Bytes::of(bytes)).value().content(), bytes);
    EXPECT_EQ(client.call<std::int64_t>("negate", 5s, least + 1).value(), -(least + 1));
    EXPECT_EQ(client.call<std::string>("echo", 5s, Bytes{}, std::int64_t{0}, std::string()).value(), " 0 ");
}

TEST_F(BusService, TellsItsPropertiesToThoseWhomItServes) {
    std::atomic<bool> value = true;
    const auto serve = [&](std::vector<uid_t> trusted) {
        auto wanted = options(std::move(trusted));
        wanted.interface.properties.push_back({"seen", [&] { return value.load(); }});
        return listen(std::move(wanted));
    };
    const auto get = [this] { return test::propertyOnBus(bus.address(), service, "seen"); };
    {
        auto listener = serve({getuid()});
        EXPECT_EQ(get(), "(<true>,)\n");
        test::Child monitor(
            {"stdbuf", "-oL", "gdbus", "monitor", "--address", bus.address(), "--dest", service},
            {"PATH=/usr/bin:/bin"},
            bus.folder() / "monitor.log");
        value = false;
        // It follows from some moment on.
        std::string line;
        for (int i = 0; i < 400 && line.find("PropertiesChanged") == std::string::npos; ++i) {
            listener.changed("seen");
            line = monitor.line(50ms).value_or("");
        }
        EXPECT_NE(line.find("('org.example.Echo', {'seen': <false>}, @as [])"), std::string::npos) << line;
        EXPECT_EQ(get(), "(<false>,)\n");
    }
    const auto listener = serve({getuid() + 1});
    EXPECT_NE(get().find("this user may not ask"), std::string::npos);
}

TEST_F(BusService, ErrorsKeepTheirKindAndTheirText) {
    const auto listener = listen(options());
    const auto declined = connection().call<void>("decline", 5s, std::string("too much"));
    EXPECT_EQ(kindOf(declined), ErrorKind::tooLarge);
    EXPECT_EQ(declined.fault().text, "too much");
}

TEST_F(BusService, RefusesOversizedPayloadsOnBothSides) {
    const auto listener = listen(options());
    auto client = connection();
    const std::string large(largestPayload + 1, 'x');
    EXPECT_EQ(
        kindOf(client.call<std::string>("echo", 5s, Bytes::of(large), least, std::string())),
        ErrorKind::tooLarge);
    EXPECT_EQ(kindOf(client.call<std::string>("echo", 5s, Bytes{}, least, large)), ErrorKind::tooLarge);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(kindOf(client.call<Bytes>("swell", 5s)), ErrorKind::tooLarge);
}

TEST_F(BusService, RefusesTextsThatAreNotUTF8) {
    const auto listener = listen(options());
    auto client = connection();
    EXPECT_EQ(
        kindOf(client.call<std::string>("echo", 5s, Bytes{}, least, std::string("\xC3"))),
        ErrorKind::badPayload);
    EXPECT_EQ(kindOf(client.call<std::string>("garble", 5s)), ErrorKind::badPayload);
}

TEST_F(BusService, KnowsItsMethods) {
    const auto listener = listen(options());
    auto client = connection();
    EXPECT_EQ(kindOf(client.call<void>("nothing", 5s)), ErrorKind::refused);
    EXPECT_EQ(kindOf(client.call<std::string>("echo", 5s, std::string("one"))), ErrorKind::badPayload);
    EXPECT_EQ(kindOf(client.call<std::int64_t>("negate", 5s, std::string("1"))), ErrorKind::badPayload);
    // Another result than the caller expects.
    EXPECT_EQ(kindOf(client.call<std::string>("negate", 5s, least + 1)), ErrorKind::badPayload);
    EXPECT_EQ(kindOf(client.call<void>("negate", 5s, least + 1)), ErrorKind::badPayload);
    EXPECT_EQ(calls, 0);
}

TEST_F(BusService, ACallLeftUnansweredFailsAtOnce) {
    const auto listener = listen(options());
    const auto result = connection().call<void>("drop", 60s);
    EXPECT_EQ(kindOf(result), ErrorKind::refused);
    EXPECT_EQ(result.fault().text, "the call was left unanswered");
}

TEST_F(BusService, BothSidesKeepDeadlines) {
    auto patient = options();
    patient.deadline = 60s;
    {
        const auto listener = listen(options());
        const auto result = connection().call<void>("keep", 60s);
        EXPECT_EQ(kindOf(result), ErrorKind::deadlinePassed);
        EXPECT_EQ(result.fault().text, "the answer took too long");
        // Too late: nobody minds.
        kept.front()({});
    }
    const auto listener = listen(std::move(patient));
    EXPECT_EQ(kindOf(connection().call<void>("keep", 20ms)), ErrorKind::deadlinePassed);
}

TEST_F(BusService, AnswersMayComeFromAnotherThread) {
    std::thread worker;
    const auto late = [&worker](ReplyBlock<Result<std::string>> reply, const std::string& text) {
        worker =
            std::thread([text, reply = std::make_shared<ReplyBlock<Result<std::string>>>(std::move(reply))] {
                (*reply)(text);
            });
    };
    auto settings = options();
    settings.deadline = 60s;
    settings.interface.methods = {method("late", {"text"}, {"text"}, late)};
    const auto listener = listen(std::move(settings));
    EXPECT_EQ(connection().call<std::string>("late", 30s, std::string("a")).value(), "a");
    worker.join();
}

TEST_F(BusService, CallsRunWhereTheyAreDispatched) {
    auto settings = options();
    std::thread::id runner;
    std::vector<std::jthread> threads;
    settings.deadline = 60s;
    settings.dispatch = [&](std::function<void()> call) {
        threads.emplace_back([&runner, call = std::move(call)] {
            runner = std::this_thread::get_id();
            call();
        });
    };
    {
        const auto listener = listen(std::move(settings));
        EXPECT_EQ(connection().call<std::int64_t>("negate", 30s, std::int64_t{1}).value(), -1);
    }
    ASSERT_EQ(threads.size(), 1U);
    EXPECT_EQ(threads.front().get_id(), runner);
}

TEST_F(BusService, TurnsUntrustedUsersAwayBeforeAnythingRuns) {
    const auto listener = listen(options({getuid() + 1}));
    EXPECT_EQ(
        kindOf(connection().call<std::string>("echo", 5s, Bytes{}, least, std::string())),
        ErrorKind::accessDenied);
    EXPECT_EQ(calls, 0);
}

TEST_F(BusService, AnswersNobodyAnyMoreWhoWasRefusedOften) {
    const auto listener = listen(options({getuid() + 1}));
    auto stranger = connection();
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(
            kindOf(stranger.call<std::int64_t>("negate", 5s, std::int64_t{1})), ErrorKind::accessDenied);
    EXPECT_EQ(
        kindOf(stranger.call<std::int64_t>("negate", 20ms, std::int64_t{1})), ErrorKind::deadlinePassed);
    // Of the same user, but not the same connection.
    EXPECT_EQ(
        kindOf(connection().call<std::int64_t>("negate", 5s, std::int64_t{1})), ErrorKind::accessDenied);
    EXPECT_EQ(calls, 0);
}

TEST_F(BusService, WhateverElseIsAskedOfItSilencesNobody) {
    const auto listener = listen(options());
    auto client = connection();
    for (int i = 0; i < 100; ++i) {
        EXPECT_FALSE(client.call<void>("nothing", 5s));
        EXPECT_FALSE(client.call<std::int64_t>("negate", 5s, std::string("no number")));
    }
    EXPECT_EQ(client.call<std::int64_t>("negate", 5s, std::int64_t{1}).value(), -1);
}

TEST_F(BusService, TellsAnAbsentPeerFromAnAbsentBus) {
    EXPECT_EQ(kindOf(connection().call<void>("drop", 5s)), ErrorKind::peerAbsent);
    for (const char* address : {"unix:path=/no/such/bus", "nonsense"})
        EXPECT_EQ(kindOf(Connection(Address::at(address), service).call<void>("drop", 5s)), ErrorKind::noBus);
}

TEST_F(BusService, OneConnectionOutlivesItsPeers) {
    auto client = connection();
    for (int i = 0; i < 3; ++i) {
        const auto listener = listen(options());
        EXPECT_EQ(client.call<std::int64_t>("negate", 5s, std::int64_t{1}).value(), -1);
    }
    EXPECT_EQ(kindOf(client.call<std::int64_t>("negate", 5s, std::int64_t{1})), ErrorKind::peerAbsent);
}

TEST_F(BusService, ANameHasOneOwner) {
    const auto first = listen(options());
    const auto second = Listener::start(options());
    ASSERT_FALSE(second);
    EXPECT_EQ(second.fault().kind, ErrorKind::nameTaken);
}

TEST_F(BusService, BothSidesNoticeThatTheBusWentAway) {
    std::mutex mutex;
    std::condition_variable changed;
    bool isLost = false;
    auto watching = options();
    watching.lost = [&] {
        const std::lock_guard lock(mutex);
        isLost = true;
        changed.notify_all();
    };
    const auto listener = listen(std::move(watching));
    auto client = connection();
    EXPECT_TRUE(client.call<std::int64_t>("negate", 5s, std::int64_t{1}));
    bus.end();
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, 30s, [&] { return isLost; }));
    EXPECT_EQ(kindOf(client.call<std::int64_t>("negate", 5s, std::int64_t{1})), ErrorKind::noBus);
}

TEST_F(BusService, ABusThatNeverAnswersIsGivenUp) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path() / "mute";
    const FileDescriptor mute(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(mute.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(::listen(mute.get(), 1), 0);
    Connection client(Address::at("unix:path=" + path), service);
    const auto result = client.call<void>("drop", 20ms);
    EXPECT_EQ(kindOf(result), ErrorKind::noBus);
    EXPECT_EQ(result.fault().text, "the bus did not answer in time");
}

TEST(BusInterface, DescribesItself) {
    EXPECT_EQ(objectPathOf("org.example.Echo"), "/org/example/Echo");
    const Interface interface {
        .service = "a.b", .methods = {
            method(
                "m", {"data", "n"}, {"text"},
                [](const Bytes&, std::int64_t) -> Result<std::string> { return std::string(); })
        }
    };
    EXPECT_EQ(
        interface.introspection(),
        R"(<node><interface name="a.b"><method name="m"><arg name="data" type="ay" direction="in"/>)"
        R"(<arg name="n" type="x" direction="in"/><arg name="text" type="s" direction="out"/></method>)"
        R"(</interface></node>)");
}

}  // namespace
}  // namespace zelto::bus
