#include <condition_variable>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/foundation/FileDescriptor.hpp"
#include "platform/xpc/Connection.hpp"
#include "platform/xpc/Listener.hpp"
#include "tests/support/PrivateBus.hpp"

namespace zelto::xpc {
namespace {

using namespace std::chrono_literals;
using test::PrivateBus;

/// An interface whose methods each misbehave in a way of their own.
const Interface echo{
    .service = "org.example.Echo",
    .methods = {
        {"echo", {ValueKind::data, ValueKind::text}, {ValueKind::text, ValueKind::data}},
        {"drop", {}, {}},
        {"keep", {}, {}},
        {"swell", {}, {ValueKind::data}},
        {"garble", {}, {ValueKind::text}}}};

struct XPC : testing::Test {
    PrivateBus bus;
    std::vector<Answer> kept;
    int calls = 0;

    ListenerOptions options(std::vector<uid_t> trusted = {getuid()}) {
        return {
            .bus = Bus::at(bus.address()),
            .interface = echo,
            .trusted = std::move(trusted),
            .handler =
                [this](const std::string& method, Values arguments, Answer answer) {
                    ++calls;
                    if (method == "echo") answer(Values{arguments[1], arguments[0]});
                    if (method == "keep") kept.push_back(std::move(answer));
                    if (method == "swell") answer(Values{std::string(largestPayload + 1, 'x')});
                    if (method == "garble") answer(Values{"\xFF"});
                },
            .deadline = 50ms};
    }
    Listener listen(ListenerOptions options) {
        auto started = Listener::start(std::move(options));
        if (const auto* error = std::get_if<Error>(&started)) throw std::runtime_error(error->text);
        return std::get<Listener>(std::move(started));
    }
    Connection connection() { return Connection(Bus::at(bus.address()), echo); }
};

ErrorKind kindOf(const Result<Values>& result) {
    const auto* error = std::get_if<Error>(&result);
    if (!error) throw std::runtime_error("not an error");
    EXPECT_NE(error->text, "");
    return error->kind;
}

TEST_F(XPC, CarriesBytesAndTextsBothWays) {
    const auto listener = listen(options());
    auto client = connection();
    const std::string bytes("\0\xFF{", 3);
    EXPECT_EQ(std::get<Values>(client.call("echo", {bytes, "olá"}, 5s)), (Values{"olá", bytes}));
    EXPECT_EQ(std::get<Values>(client.call("echo", {"", ""}, 5s)), (Values{"", ""}));
    const std::string large(largestPayload, 'x');
    EXPECT_EQ(std::get<Values>(client.call("echo", {large, large}, 5s)), (Values{large, large}));
}

TEST_F(XPC, RefusesOversizedPayloadsOnBothSides) {
    const auto listener = listen(options());
    auto client = connection();
    EXPECT_EQ(
        kindOf(client.call("echo", {std::string(largestPayload + 1, 'x'), ""}, 5s)), ErrorKind::tooLarge);
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(kindOf(client.call("swell", {}, 5s)), ErrorKind::tooLarge);
}

TEST_F(XPC, RefusesTextsThatAreNotUTF8) {
    const auto listener = listen(options());
    auto client = connection();
    EXPECT_EQ(kindOf(client.call("echo", {"", "\xC3"}, 5s)), ErrorKind::badPayload);
    EXPECT_EQ(kindOf(client.call("garble", {}, 5s)), ErrorKind::badPayload);
}

TEST_F(XPC, KnowsItsMethods) {
    auto client = connection();
    EXPECT_EQ(kindOf(client.call("nothing", {}, 5s)), ErrorKind::refused);
    EXPECT_EQ(kindOf(client.call("echo", {"one"}, 5s)), ErrorKind::badPayload);
}

TEST_F(XPC, ACallLeftUnansweredFailsAtOnce) {
    const auto listener = listen(options());
    auto client = connection();
    const auto result = client.call("drop", {}, 60s);
    EXPECT_EQ(kindOf(result), ErrorKind::refused);
    EXPECT_EQ(std::get<Error>(result).text, "the call was left unanswered");
}

TEST_F(XPC, BothSidesKeepDeadlines) {
    auto patient = options();
    patient.deadline = 60s;
    {
        const auto listener = listen(options());
        auto client = connection();
        const auto result = client.call("keep", {}, 60s);
        EXPECT_EQ(kindOf(result), ErrorKind::deadlinePassed);
        EXPECT_EQ(std::get<Error>(result).text, "the answer took too long");
        // Too late: nobody minds.
        kept.front()(Values{});
    }
    const auto listener = listen(std::move(patient));
    auto client = connection();
    EXPECT_EQ(kindOf(client.call("keep", {}, 20ms)), ErrorKind::deadlinePassed);
}

TEST_F(XPC, AnswersMayComeFromAnotherThread) {
    std::thread worker;
    auto late = options();
    late.deadline = 60s;
    late.handler = [&](const std::string&, const Values& arguments, Answer answer) {
        worker = std::thread([arguments, answer = std::make_shared<Answer>(std::move(answer))] {
            (*answer)(Values{arguments[1], arguments[0]});
        });
    };
    const auto listener = listen(std::move(late));
    auto client = connection();
    EXPECT_EQ(std::get<Values>(client.call("echo", {"a", "b"}, 30s)), (Values{"b", "a"}));
    worker.join();
}

TEST_F(XPC, TurnsUntrustedUsersAwayBeforeAnythingRuns) {
    const auto listener = listen(options({getuid() + 1}));
    auto client = connection();
    EXPECT_EQ(kindOf(client.call("echo", {"", ""}, 5s)), ErrorKind::accessDenied);
    EXPECT_EQ(calls, 0);
}

TEST_F(XPC, TellsAnAbsentPeerFromAnAbsentBus) {
    auto client = connection();
    EXPECT_EQ(kindOf(client.call("drop", {}, 5s)), ErrorKind::peerAbsent);
    Connection lost(Bus::at("unix:path=/no/such/bus"), echo);
    EXPECT_EQ(kindOf(lost.call("drop", {}, 5s)), ErrorKind::noBus);
    Connection odd(Bus::at("nonsense"), echo);
    EXPECT_EQ(kindOf(odd.call("drop", {}, 5s)), ErrorKind::noBus);
}

TEST_F(XPC, OneConnectionOutlivesItsPeers) {
    auto client = connection();
    for (int i = 0; i < 3; ++i) {
        const auto listener = listen(options());
        EXPECT_EQ(std::get<Values>(client.call("echo", {"a", "b"}, 5s)), (Values{"b", "a"}));
    }
    EXPECT_EQ(kindOf(client.call("echo", {"a", "b"}, 5s)), ErrorKind::peerAbsent);
}

TEST_F(XPC, ANameHasOneOwner) {
    const auto first = listen(options());
    const auto second = Listener::start(options());
    ASSERT_TRUE(std::holds_alternative<Error>(second));
    EXPECT_EQ(std::get<Error>(second).kind, ErrorKind::nameTaken);
}

TEST_F(XPC, BothSidesNoticeThatTheBusWentAway) {
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
    std::get<Values>(client.call("echo", {"a", "b"}, 5s));
    bus.end();
    std::unique_lock lock(mutex);
    EXPECT_TRUE(changed.wait_for(lock, 30s, [&] { return isLost; }));
    EXPECT_EQ(kindOf(client.call("echo", {"a", "b"}, 5s)), ErrorKind::noBus);
}

TEST_F(XPC, ABusThatNeverAnswersIsGivenUp) {
    const test::TemporaryFolder folder;
    const std::string path = folder.path() / "mute";
    const FileDescriptor mute(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(mute.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(::listen(mute.get(), 1), 0);
    Connection client(Bus::at("unix:path=" + path), echo);
    const auto result = client.call("drop", {}, 20ms);
    EXPECT_EQ(kindOf(result), ErrorKind::noBus);
    EXPECT_EQ(std::get<Error>(result).text, "the bus did not answer in time");
}

TEST(XPCInterface, DescribesItself) {
    EXPECT_EQ(echo.objectPath(), "/org/example/Echo");
    EXPECT_EQ(
        (Interface{"a.b", {{"m", {ValueKind::data}, {ValueKind::text}}}}.introspection()),
        R"(<node><interface name="a.b"><method name="m"><arg type="ay" direction="in"/>)"
        R"(<arg type="s" direction="out"/></method></interface></node>)");
}

}  // namespace
}  // namespace zelto::xpc
