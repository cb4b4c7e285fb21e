#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "bus/Client.hpp"
#include "foundation/Date.hpp"
#include "records/Record.hpp"
#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"
#include "runloop/WallTimer.hpp"

namespace zelto::agent {

/// Keeps the machine from idling: no blanking, no locking, no automatic suspend, by an inhibitor each of the
/// login manager ("idle", logind) and of the session's screen saver. A suspend that the person asks for is
/// never in its way. It ends by the wall clock, outlives a restart of this program, and is let go by whoever
/// granted it when this program dies. For the main thread.
class KeepAwake {
  public:
    struct Seams {
        bus::Client& systemBus;
        bus::Client& sessionBus;
        /// Where the end is kept.
        std::filesystem::path file;
        std::function<Date()> now = Date::now;
        runloop::Log log;
        /// Called when it was turned on or off, or its end is another.
        std::function<void()> changed = [] {};
        /// Seconds for which nobody may hold before it counts as over: daemons are started anew.
        double grace = 10;
    };
    explicit KeepAwake(Seams seams);
    KeepAwake(const KeepAwake&) = delete;
    KeepAwake& operator=(const KeepAwake&) = delete;
    ~KeepAwake();

    /// Goes on with what was under way when this program ended; what has ended meanwhile is over.
    void resume();
    /// Until then; without an instant until it is turned off.
    void start(std::optional<Date> end);
    /// `why` is for the log; empty where a person asked for it.
    void stop(const std::string& why = "");

    bool isOn() const { return isOn_; }
    std::optional<Date> end() const { return end_; }
    /// Who keeps the machine awake for us, and who was asked and does not, with the reason.
    struct Holders {
        std::vector<std::string> held, refused;
    };
    Holders holders() const;

  private:
    /// Somebody who can be asked.
    struct Holder {
        enum class State { absent, asked, held, refused };
        std::string name;
        State state = State::absent;
        std::string reason = {};
        /// What keeps it: logind's descriptor, the screen saver's number.
        bus::Data token = {};
        bool isThere = false;
        /// Of the question whose answer counts; what others bring is given back.
        unsigned question = 0;
    };
    void ask(Holder& holder);
    void answered(Holder& holder, unsigned question, const bus::Result<bus::Data>& results);
    void giveBack(const Holder& holder, const bus::Data& token);
    void presenceChanged(Holder& holder, bool isThere);
    void release(Holder& holder);
    void judge();
    void armed();
    void store() const;

    const Seams seams_;
    bool isOn_ = false;
    std::optional<Date> end_;
    Holder login_{.name = "logind"}, screen_{.name = "screen saver"};
    runloop::WallTimer timer_;
    runloop::MainSource timerSource_, judgement_;
    std::vector<bus::Client::Subscription> subscriptions_;
};

/// Another program that keeps the machine from idling or sleeping.
struct AwakeOther {
    std::string who, why, what;
};

/// What `zelto awake status` tells.
struct AwakeStatus {
    bool active = false;
    std::optional<Date> end = {};
    std::vector<std::string> heldBy = {}, refusedBy = {};
    std::vector<AwakeOther> others = {};
};

/// Asks the login manager, and GNOME's session manager, who else keeps the machine awake; answers once.
void askWhoElse(
    bus::Client& systemBus, bus::Client& sessionBus, std::function<void(std::vector<AwakeOther>)> answered);

}  // namespace zelto::agent

ZELTO_RECORD(zelto::agent::AwakeOther, who, why, what);
ZELTO_RECORD(zelto::agent::AwakeStatus, active, end, heldBy, refusedBy, others);
