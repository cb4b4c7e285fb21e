// What the app's background program can be asked for.

#include <chrono>
#include <cmath>
#include <iostream>

#include "Commands.hpp"
#include "Failure.hpp"
#include "agent/AgentInterface.hpp"
#include "bus/Connection.hpp"
#include "foundation/ISO8601.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::cli {
namespace {

constexpr std::chrono::seconds deadline{10};
/// An analysis asks daemons that may take a minute each.
constexpr std::chrono::seconds analysisDeadline{95};

/// The running agent, which the bus may start.
class App {
  public:
    explicit App(const AppOptions& options)
        : connection_(
              options.bus.empty() ? bus::Address::session() : bus::Address::at(options.bus),
              std::string(agent::agentService)) {}

    template <class T, class... Arguments>
    T call(const std::string& method, Arguments... arguments) {
        return callFor<T>(deadline, method, std::move(arguments)...);
    }
    template <class T, class... Arguments>
    T callFor(std::chrono::milliseconds allowed, const std::string& method, Arguments... arguments) {
        auto result = connection_.call<T>(method, allowed, std::move(arguments)...);
        if (!result) {
            if (result.fault().kind == bus::ErrorKind::peerAbsent)
                throw Failure("zelto-agent is not running, and the bus cannot start it");
            throw Failure(result.fault().text);
        }
        if constexpr (!std::is_void_v<T>) return *std::move(result);
    }

  private:
    bus::Connection connection_;
};

template <class T>
T decoded(const std::string& text) {
    auto value = records::decodeJSON<T>(text);
    if (!value) throw Failure("an answer of another shape: " + value.fault().text());
    return *std::move(value);
}

const char* yesNo(bool value) {
    return value ? "yes" : "no";
}

/// As JSON where that is wanted, else by `print`.
template <class T, class Print>
void show(const AppOptions& options, const std::string& text, Print print) {
    if (options.json)
        std::cout << text << '\n';
    else
        print(decoded<T>(text));
}

void printReport(const agent::CareReport& report) {
    std::cout << iso8601(report.date) << '\n';
    for (const auto& item : report.items)
        std::cout << item.level << "  " << item.title << ": " << item.summary << '\n';
}

void printAwake(const agent::AwakeStatus& status) {
    if (!status.active)
        std::cout << "off\n";
    else if (!status.end)
        std::cout << "on until it is turned off\n";
    else
        std::cout << "on until " << iso8601(*status.end) << " ("
                  << std::llround((*status.end - Date::now()) / 60) << " min)\n";
    for (const std::string& holder : status.heldBy) std::cout << "held by " << holder << '\n';
    for (const std::string& holder : status.refusedBy) std::cout << "not held by " << holder << '\n';
    for (const agent::AwakeOther& other : status.others)
        std::cout << "also kept awake by " << other.who << " (" << other.what << "): " << other.why << '\n';
}

void printStatus(const agent::AgentStatus& status) {
    std::cout << "version " << status.version << '\n'
              << "widgets shown: " << yesNo(status.host) << ", seen: " << yesNo(status.seen) << '\n'
              << "snapshot written: " << (status.snapshotWritten ? iso8601(*status.snapshotWritten) : "never")
              << '\n';
    if (status.snapshotLeftAloneUntil)
        std::cout << "another program keeps the snapshot; it is left alone until "
                  << iso8601(*status.snapshotLeftAloneUntil) << '\n';
    std::cout << "battery by the power daemon: " << yesNo(status.powerDaemon) << '\n'
              << "keeping awake: " << yesNo(status.awake) << '\n'
              << "last analysis: " << (status.lastAnalysis ? iso8601(*status.lastAnalysis) : "never") << '\n';
    for (const std::string& part : status.slowParts) std::cout << "slow: " << part << '\n';
    if (status.settingsFault) std::cout << "settings: " << *status.settingsFault << '\n';
}

}  // namespace

void awakeOn(const AppOptions& options) {
    App(options).call<void>("keepAwake", options.minutes);
}

void awakeOff(const AppOptions& options) {
    App(options).call<void>("letSleep");
}

void awakeToggle(const AppOptions& options) {
    App(options).call<void>("toggleAwake");
}

void awakeStatus(const AppOptions& options) {
    show<agent::AwakeStatus>(options, App(options).call<std::string>("awakeStatus"), printAwake);
}

void clockList(const AppOptions& options) {
    show<std::vector<std::string>>(options, App(options).call<std::string>("clocks"), [](const auto& zones) {
        for (const std::string& zone : zones) std::cout << zone << '\n';
    });
}

void clockAdd(const AppOptions& options) {
    std::cout << App(options).call<std::string>("addClock", options.zone) << '\n';
}

void clockRemove(const AppOptions& options) {
    std::cout << App(options).call<std::string>("removeClock", options.zone) << '\n';
}

void careShow(const AppOptions& options) {
    show<agent::CareReport>(options, App(options).call<std::string>("careReport"), printReport);
}

void careRun(const AppOptions& options) {
    show<agent::CareReport>(
        options, App(options).callFor<std::string>(analysisDeadline, "analyse"), printReport);
}

void appStatus(const AppOptions& options) {
    show<agent::AgentStatus>(options, App(options).call<std::string>("status"), printStatus);
}

void appSnapshot(const AppOptions& options) {
    const auto home = options.home.empty() ? HomeLookup::system() : HomeLookup::fixed(options.home);
    const auto snapshot = agent::snapshotNow(
        agent::Places::of(PersonalFolders::current(), home),
        options.machine.empty() ? std::filesystem::path("/") : std::filesystem::path(options.machine));
    const auto document = records::encodeJSON(snapshot);
    if (!document) throw Failure("the machine tells a text that is not UTF-8");
    std::cout << *document << '\n';
}

void appOpen(const AppOptions& options) {
    App(options).call<void>("open", options.link, std::string());
}

void appSet(const AppOptions& options) {
    App(options).call<void>("set", options.option, options.value);
}

void appQuit(const AppOptions& options) {
    App(options).call<void>("quit");
}

}  // namespace zelto::cli
