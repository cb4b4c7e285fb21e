#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "agent/Analysis.hpp"
#include "agent/HostWatch.hpp"
#include "agent/KeepAwake.hpp"
#include "agent/Links.hpp"
#include "agent/Measuring.hpp"
#include "agent/Settings.hpp"
#include "agent/SnapshotKeeper.hpp"
#include "bus/Client.hpp"
#include "foundation/PersonalFolders.hpp"
#include "runloop/Log.hpp"
#include "runloop/PathWatch.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "sources/CareInquiry.hpp"
#include "sources/Machine.hpp"
#include "sources/PowerWatch.hpp"
#include "sources/Processor.hpp"

namespace zelto::agent {

/// Where the agent keeps what it knows.
struct Places {
    std::filesystem::path configuration, state;  // folders
    std::filesystem::path snapshot;              // the file

    static Places of(const PersonalFolders& personal, const HomeLookup& home);
};

struct AgentOptions {
    bus::Address sessionBus = bus::Address::session(), systemBus = bus::Address::system();
    Places places;
    /// Where proc, sys and the rest are.
    std::filesystem::path root = "/";
    /// The folder with a page for each tab.
    std::filesystem::path pages = {};
    runloop::Log log;
    /// Tells everybody on the bus what changed: "snapshot", "awake", "clocks", "care".
    std::function<void(const std::string& what)> changed = [](const std::string&) {};
};

/// How the agent is, for a person who reports a fault: no text, event or name of the person's is in it.
struct AgentStatus {
    std::string version;
    bool host = false, seen = false;
    std::optional<Date> snapshotWritten = {}, snapshotLeftAloneUntil = {};
    bool powerDaemon = false;
    std::vector<std::string> slowParts = {};
    bool awake = false;
    std::optional<Date> lastAnalysis = {};
    std::optional<std::string> settingsFault = {};
};

/// The app's background program: fills the snapshot, keeps the machine awake, analyses it, and does what
/// links ask for. It measures while somebody sees widgets. For the main thread.
class Agent {
  public:
    explicit Agent(AgentOptions options);
    Agent(const Agent&) = delete;
    Agent& operator=(const Agent&) = delete;

    /// Writes what waits to be written, and that nothing is kept awake any more, which ends with the process.
    void finish();

    using Done = std::function<void(Result<void>)>;
    /// Does what a link asks for. `token` is the desktop's for the tap; it may be empty.
    void open(const std::string& link, const std::string& token, const Done& done);

    /// Without minutes until it is turned off.
    Result<void> keepAwake(std::optional<std::int64_t> minutes);
    void letSleep() { awake_.stop(); }
    /// On for an hour, or off.
    void toggleAwake();
    void awakeStatus(std::function<void(const AwakeStatus&)> told);

    std::vector<std::string> clocks() const { return settings_.zones(); }
    /// The zone that was meant.
    Result<std::string> addClock(const std::string& name);
    Result<std::string> removeClock(const std::string& name);

    Analysis& analysis() { return analysis_; }
    Result<void> set(const std::string& option, const std::string& value);
    AgentStatus status() const;

    /// What a tap on the widget that is off stands for.
    static constexpr std::int64_t toggleMinutes = 60;

  private:
    void perform(const Link& link, const std::string& token, const Done& done);
    void readSettings();
    Result<void> store(const Settings& settings);
    void settingsChanged();
    void awakeChanged();
    void hostChanged();
    void measure(bool isWanted);
    void refresh();
    void everyMinute();
    void sampleProcessor();
    void followPower();
    void powerChanged();
    void lookAtBattery();
    void judgeBattery(const std::optional<shared::WidgetSnapshot::Battery>& battery);
    void followLock();
    void sessionLocked(const std::string& session);
    /// Later, on the main thread: what it ends may be what has just told.
    void stopAwakeSoon(const std::string& why);

    const AgentOptions options_;
    bus::Client session_, system_;
    SettingsStore settingsStore_;
    Settings settings_;
    std::optional<std::string> settingsFault_;
    SnapshotKeeper keeper_;
    KeepAwake awake_;
    sources::CareInquiry inquiry_;
    Analysis analysis_;
    std::unique_ptr<sources::PowerWatch> power_;
    sources::Machine machine_;
    Measuring measuring_;
    sources::ProcessorHistory processor_;
    bool measures_ = false;
    int minutes_ = 0;
    runloop::MainSource minute_, secondSample_, batteryLook_;
    runloop::PathWatch paths_;
    runloop::MainSource pathSource_;
    std::vector<bus::Client::Subscription> lock_;
    std::unique_ptr<HostWatch> host_;
    std::shared_ptr<int> life_ = std::make_shared<int>(0);
};

/// A snapshot as it would be written now, without an agent: takes half a second.
shared::WidgetSnapshot snapshotNow(const Places& places, const std::filesystem::path& root = "/");

}  // namespace zelto::agent

ZELTO_RECORD(
    zelto::agent::AgentStatus, version, host, seen, snapshotWritten, snapshotLeftAloneUntil, powerDaemon,
    slowParts, awake, lastAnalysis, settingsFault);
