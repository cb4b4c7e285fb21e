#include "agent/AgentInterface.hpp"

#include <memory>

#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto::agent {
namespace {

using bus::method;
using Done = bus::Result<void>;
using Text = bus::Result<std::string>;
using Get = std::function<Agent&()>;

template <class T>
bus::Result<T> onBus(Result<T> result) {
    if (!result) return bus::Error{bus::ErrorKind::refused, result.fault().text()};
    if constexpr (std::is_void_v<T>)
        return {};
    else
        return *std::move(result);
}

template <class T>
std::string textOf(const T& value) {
    return records::encodeJSON(value).value_or("{}");
}

std::vector<bus::Method> awakeMethods(const Get& agent) {
    const auto on = [agent](std::int64_t minutes) -> Done {
        return onBus(agent().keepAwake(minutes == 0 ? std::nullopt : std::optional(minutes)));
    };
    const auto off = [agent]() -> Done {
        agent().letSleep();
        return {};
    };
    const auto toggle = [agent]() -> Done {
        agent().toggleAwake();
        return {};
    };
    const auto status = [agent](ReplyBlock<Text> reply) {
        const auto shared = std::make_shared<ReplyBlock<Text>>(std::move(reply));
        agent().awakeStatus([shared](const AwakeStatus& told) { (*shared)(textOf(told)); });
    };
    return {
        method("keepAwake", {"minutes"}, {}, on),
        method("letSleep", {}, {}, off),
        method("toggleAwake", {}, {}, toggle),
        method("awakeStatus", {}, {"status"}, status)};
}

std::vector<bus::Method> clockMethods(const Get& agent) {
    const auto list = [agent]() -> Text { return textOf(agent().clocks()); };
    const auto add = [agent](const std::string& name) -> Text { return onBus(agent().addClock(name)); };
    const auto remove = [agent](const std::string& name) -> Text { return onBus(agent().removeClock(name)); };
    return {
        method("clocks", {}, {"zones"}, list),
        method("addClock", {"name"}, {"zone"}, add),
        method("removeClock", {"name"}, {"zone"}, remove)};
}

std::vector<bus::Method> careMethods(const Get& agent) {
    const auto show = [agent]() -> Text {
        const auto& report = agent().analysis().last();
        if (!report) return bus::Error{bus::ErrorKind::refused, "nothing has been analysed yet"};
        return textOf(*report);
    };
    const auto run = [agent](ReplyBlock<Text> reply) {
        const auto shared = std::make_shared<ReplyBlock<Text>>(std::move(reply));
        agent().analysis().run([shared](const CareReport& report) { (*shared)(textOf(report)); });
    };
    return {method("careReport", {}, {"report"}, show), method("analyse", {}, {"report"}, run)};
}

}  // namespace

bus::Interface agentInterface(const Get& agent, std::function<void()> quit) {
    const auto open = [agent](ReplyBlock<Done> reply, const std::string& link, const std::string& token) {
        const auto shared = std::make_shared<ReplyBlock<Done>>(std::move(reply));
        agent().open(link, token, [shared](const Result<void>& done) { (*shared)(onBus(done)); });
    };
    const auto set = [agent](const std::string& option, const std::string& value) -> Done {
        return onBus(agent().set(option, value));
    };
    const auto status = [agent]() -> Text { return textOf(agent().status()); };
    const auto end = [quit = std::move(quit)]() -> Done {
        quit();
        return {};
    };
    bus::Interface out{.service = std::string(agentService)};
    out.methods.push_back(method("open", {"link", "token"}, {}, open));
    for (auto methods : {awakeMethods(agent), clockMethods(agent), careMethods(agent)})
        for (bus::Method& each : methods) out.methods.push_back(std::move(each));
    out.methods.push_back(method("set", {"option", "value"}, {}, set));
    out.methods.push_back(method("status", {}, {"status"}, status));
    out.methods.push_back(method("quit", {}, {}, end));
    out.signals.push_back({"changed", {{"what", "s"}}});
    return out;
}

}  // namespace zelto::agent
