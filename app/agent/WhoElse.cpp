// Who else keeps the machine awake.

#include <memory>

#include <unistd.h>

#include "agent/KeepAwake.hpp"

namespace zelto::agent {
namespace {

/// What has been told; answers when nobody holds it any more.
struct Round {
    explicit Round(std::function<void(std::vector<AwakeOther>)> wanted) : answered(std::move(wanted)) {}
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() { answered(std::move(others)); }

    std::vector<AwakeOther> others;
    std::function<void(std::vector<AwakeOther>)> answered;
};

void addLogin(Round& round, const bus::Data& inhibitors) {
    for (const bus::Data& each : inhibitors.list()) {
        const std::string what = each[0].text().value_or("");
        // What only delays, or minds a key or a lid, keeps nothing awake.
        const bool isMeant =
            each[3].text() == "block" && (":" + what + ":").find(":idle:") != std::string::npos;
        const bool isSleep =
            each[3].text() == "block" && (":" + what + ":").find(":sleep:") != std::string::npos;
        if ((isMeant || isSleep) && each[5].integer() != getpid())
            round.others.push_back(
                {.who = each[1].text().value_or(""), .why = each[2].text().value_or(""), .what = what});
    }
}

void askSession(bus::Client& sessionBus, const std::shared_ptr<Round>& round) {
    constexpr const char* service = "org.gnome.SessionManager";
    sessionBus.call(
        {service, "/org/gnome/SessionManager", service, "GetInhibitors"},
        "()",
        {},
        [&sessionBus, round](const bus::Result<bus::Data>& paths) {
            if (!paths) return;
            for (const bus::Data& path : paths.value()[0].list()) {
                const auto other = std::make_shared<AwakeOther>();
                const auto ask = [&](const char* method, const std::function<void(const bus::Data&)>& told) {
                    sessionBus.call(
                        {service, path.text().value_or(""), "org.gnome.SessionManager.Inhibitor", method},
                        "()",
                        {},
                        [round, other, told](const bus::Result<bus::Data>& results) {
                            if (results) told(results.value()[0]);
                        });
                };
                ask("GetAppId", [other](const bus::Data& id) { other->who = id.text().value_or(""); });
                ask("GetReason", [other](const bus::Data& why) { other->why = why.text().value_or(""); });
                // Answers come in the order of the questions.
                ask("GetFlags", [round = round.get(), other](const bus::Data& flags) {
                    constexpr std::int64_t suspend = 4, idle = 8;
                    const std::int64_t all = flags.integer().value_or(0);
                    if ((all & (suspend | idle)) == 0 || other->who == "Zelto") return;
                    other->what = (all & idle) != 0 ? "idle" : "sleep";
                    round->others.push_back(*other);
                });
            }
        });
}

}  // namespace

void askWhoElse(
    bus::Client& systemBus, bus::Client& sessionBus, std::function<void(std::vector<AwakeOther>)> answered) {
    const auto round = std::make_shared<Round>(std::move(answered));
    systemBus.call(
        {"org.freedesktop.login1",
         "/org/freedesktop/login1",
         "org.freedesktop.login1.Manager",
         "ListInhibitors"},
        "()",
        {},
        [round](const bus::Result<bus::Data>& results) {
            if (results) addLogin(*round, results.value()[0]);
        });
    askSession(sessionBus, round);
}

}  // namespace zelto::agent
