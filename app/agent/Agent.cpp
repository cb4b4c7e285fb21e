#include "agent/Agent.hpp"

#include <algorithm>

#include <sys/utsname.h>
#include <unistd.h>

#include "FanSpeeds.hpp"
#include "agent/Pages.hpp"

namespace zelto::agent {
namespace {

using shared::WidgetSnapshot;

constexpr double minute = 60;
/// Minutes between two readings of everything.
constexpr int refreshMinutes = 5;
/// Percent at which a battery that is being emptied ends keeping awake.
constexpr std::int64_t lowBattery = 15;
constexpr const char* login = "org.freedesktop.login1";
constexpr const char* loginSession = "org.freedesktop.login1.Session";

std::string runningKernel() {
    utsname name{};
    return uname(&name) == 0 ? name.release : "";
}

void putReport(WidgetSnapshot& snapshot, const std::optional<CareReport>& report) {
    snapshot.careDate = report ? std::optional(report->date) : std::nullopt;
    snapshot.careItems = report ? report->items : std::vector<WidgetSnapshot::CareItem>();
}

sources::Machine::Seams machineSeams(const AgentOptions& options) {
    auto seams = sources::Machine::Seams::ofLinux(options.root);
    const auto file = options.places.state / "fans.json";
    seams.fanSpeeds = loadFanSpeeds(file);
    seams.keepFanSpeeds = [file](const sources::FanMemory::Speeds& speeds) { storeFanSpeeds(file, speeds); };
    return seams;
}

/// Of a settings' fault, "/home/ana/…/app.json: clockZones[1]: 'Atlantis' is not …", what is nobody's secret.
std::string placeOf(const std::string& fault) {
    const std::string file = "app.json: ";
    const auto at = fault.find(file);
    if (at == std::string::npos) return "app.json";
    return fault.substr(at, fault.find(": ", at + file.size()) - at) + " is not valid";
}

}  // namespace

Places Places::of(const PersonalFolders& personal, const HomeLookup& home) {
    return {
        personal.folder("XDG_CONFIG_HOME", ".config") / "zelto",
        personal.folder("XDG_STATE_HOME", ".local/state") / "zelto",
        WidgetSnapshot::url(home)};
}

Agent::Agent(AgentOptions options)
    : options_(std::move(options)),
      session_(options_.sessionBus),
      system_(options_.systemBus),
      settingsStore_(options_.places.configuration),
      keeper_(
          {.file = options_.places.snapshot,
           .mark = options_.places.state / "published.json",
           .log = options_.log,
           .written =
               [this] {
                   if (host_) host_->tell();
                   options_.changed("snapshot");
               }}),
      awake_(
          {.systemBus = system_,
           .sessionBus = session_,
           .file = options_.places.state / "awake.json",
           .log = options_.log,
           .changed = [this] { awakeChanged(); }}),
      inquiry_(system_, session_),
      analysis_(
          {.file = options_.places.state / "care.json",
           .log = options_.log,
           .readFiles = [root = options_.root,
                         kernel = runningKernel()] { return sources::readCareFiles(root, kernel); },
           .ask =
               [this](bool updates, std::function<void(sources::CareFacts)> answered) {
                   inquiry_.ask({.updates = updates}, std::move(answered));
               },
           .battery = [this] { return keeper_.snapshot().battery; },
           .reported =
               [this](const CareReport& report) {
                   keeper_.change([&](WidgetSnapshot& snapshot) { putReport(snapshot, report); });
                   options_.changed("care");
               }}),
      machine_([this] {
          auto seams = machineSeams(options_);
          seams.daemonPower = [this] { return power_ ? power_->reading() : std::nullopt; };
          return seams;
      }()),
      measuring_(
          {.parts = machine_.parts(),
           .change =
               [this](const sources::Change& change) {
                   keeper_.change(change);
                   judgeBattery(keeper_.snapshot().battery);
               },
           .log = options_.log}) {
    if (auto settings = settingsStore_.load()) {
        settings_ = *std::move(settings);
    } else {
        settingsFault_ = settings.fault().text();
        options_.log(*settingsFault_ + "; the settings are as usual");
    }
    keeper_.note([this](WidgetSnapshot& snapshot) {
        snapshot.clockZones = settings_.zones();
        snapshot.awakeActive = false;
        snapshot.awakeEnd.reset();
        putReport(snapshot, analysis_.last());
    });
    pathSource_ = runloop::MainSource::whenReadable(paths_.fd(), [this] {
        if (!paths_.take().files.empty()) readSettings();
    });
    paths_.follow({}, {settingsStore_.file()});
    awake_.resume();
    host_ = std::make_unique<HostWatch>(session_, [this] { hostChanged(); });
    // Whoever looks before a host is there, such as `zelto app status`, sees this machine.
    sampleProcessor();
    refresh();
}

void Agent::finish() {
    keeper_.change([](WidgetSnapshot& snapshot) {
        snapshot.awakeActive = false;
        snapshot.awakeEnd.reset();
    });
    keeper_.flush();
}

void Agent::open(const std::string& link, const std::string& token, const Done& done) {
    const auto parsed = parseLink(link);
    if (parsed) {
        perform(*parsed, token, done);
        return;
    }
    constexpr std::size_t shown = 200;
    options_.log("a link was refused (" + parsed.fault().text() + "): " + link.substr(0, shown));
    done(parsed.fault());
}

void Agent::perform(const Link& link, const std::string& token, const Done& done) {
    const auto opens = [&](const std::string& address) {
        openPage(address, token, [log = options_.log, address, done](const Result<void>& opened) {
            if (!opened) log(address + " cannot be opened: " + opened.fault().text());
            done(opened);
        });
    };
    const auto refuse = [&](const char* why) {
        options_.log(why);
        done(Fault{.reason = why});
    };
    if (const auto* wanted = std::get_if<AwakeLink>(&link)) {
        switch (wanted->action) {
            case AwakeLink::Action::on: done(keepAwake(wanted->minutes)); return;
            case AwakeLink::Action::off: letSleep(); break;
            case AwakeLink::Action::toggle: toggleAwake(); break;
        }
        done({});
    } else if (const auto* tab = std::get_if<OpenLink>(&link)) {
        const auto page = std::filesystem::absolute(options_.pages / (tab->tab + ".html"));
        std::error_code error;
        if (std::filesystem::exists(page, error))
            opens(addressOfFile(page));
        else
            refuse("there is no window yet, and the page of that tab is missing");
    } else if (const auto* meeting = std::get_if<JoinLink>(&link)) {
        opens(meeting->page);
    } else if (std::holds_alternative<ClipLink>(link)) {
        refuse("a clip cannot be copied again: no clipboard history is kept");
    } else {
        refuse("the equalizer cannot be switched: there is none");
    }
}

Result<void> Agent::keepAwake(std::optional<std::int64_t> minutes) {
    if (minutes && (*minutes < 1 || *minutes > mostAwakeMinutes))
        return Fault{.reason = "the minutes must lie between 1 and " + std::to_string(mostAwakeMinutes)};
    awake_.start(
        minutes ? std::optional(Date::now() + static_cast<double>(*minutes) * minute) : std::nullopt);
    return {};
}

void Agent::toggleAwake() {
    if (awake_.isOn())
        letSleep();
    else
        static_cast<void>(keepAwake(toggleMinutes));
}

void Agent::awakeStatus(std::function<void(const AwakeStatus&)> told) {
    const auto tell =
        [this, told = std::move(told), life = std::weak_ptr(life_)](std::vector<AwakeOther> others) {
            if (life.expired()) return;
            const auto [held, refused] = awake_.isOn() ? awake_.holders() : KeepAwake::Holders{};
            told(
                {.active = awake_.isOn(),
                 .end = awake_.end(),
                 .heldBy = held,
                 .refusedBy = refused,
                 .others = std::move(others)});
        };
    askWhoElse(system_, session_, tell);
}

void Agent::awakeChanged() {
    keeper_.change([this](WidgetSnapshot& snapshot) {
        snapshot.awakeActive = awake_.isOn();
        snapshot.awakeEnd = awake_.end();
    });
    followPower();
    followLock();
    judgeBattery(keeper_.snapshot().battery);
    options_.changed("awake");
}

Result<std::string> Agent::addClock(const std::string& name) {
    auto zone = zoneCalled(name);
    if (!zone) return zone;
    Settings settings = settings_;
    auto zones = settings.zones();
    if (std::ranges::find(zones, *zone) != zones.end()) return zone;
    if (zones.size() >= mostClockZones)
        return Fault{.reason = "there are " + std::to_string(mostClockZones) + " clocks already"};
    zones.push_back(*zone);
    settings.clockZones = zones;
    if (const auto stored = store(settings); !stored) return stored.fault();
    return zone;
}

Result<std::string> Agent::removeClock(const std::string& name) {
    const auto named = zoneCalled(name);
    const std::string zone = named ? *named : name;
    Settings settings = settings_;
    auto zones = settings.zones();
    if (std::erase(zones, zone) == 0) return Fault{.reason = "there is no clock of '" + name + "'"};
    settings.clockZones = zones;
    if (const auto stored = store(settings); !stored) return stored.fault();
    return zone;
}

Result<void> Agent::set(const std::string& option, const std::string& value) {
    Settings settings = settings_;
    if (auto done = change(settings, option, value); !done) return done;
    return store(settings);
}

Result<void> Agent::store(const Settings& settings) {
    // What could not be read is a person's, who may want to mend it.
    if (settingsFault_) return Fault{.reason = *settingsFault_ + "; mend or remove it first"};
    if (auto saved = settingsStore_.save(settings); !saved) return saved;
    settings_ = settings;
    settingsChanged();
    return {};
}

void Agent::readSettings() {
    const auto settings = settingsStore_.load();
    settingsFault_ = settings ? std::nullopt : std::optional(settings.fault().text());
    if (!settings) {
        options_.log(*settingsFault_ + "; the settings stay as they were");
        return;
    }
    if (*settings == settings_) return;
    settings_ = *settings;
    settingsChanged();
}

void Agent::settingsChanged() {
    keeper_.change([this](WidgetSnapshot& snapshot) { snapshot.clockZones = settings_.zones(); });
    followPower();
    followLock();
    judgeBattery(keeper_.snapshot().battery);
    options_.changed("clocks");
}

void Agent::hostChanged() {
    measure(host_->isSeen());
}

void Agent::measure(bool isWanted) {
    if (isWanted == measures_) return;
    measures_ = isWanted;
    followPower();
    if (!isWanted) {
        minute_.reset();
        processor_.pause();
        return;
    }
    minutes_ = 0;
    sampleProcessor();
    // The first load needs two readings.
    secondSample_ = runloop::MainSource::after(1, [this] {
        sampleProcessor();
        keeper_.renew();
    });
    refresh();
    minute_ = runloop::MainSource::after(minute, [this] { everyMinute(); });
}

void Agent::everyMinute() {
    minute_ = runloop::MainSource::after(minute, [this] { everyMinute(); });
    sampleProcessor();
    if (++minutes_ % refreshMinutes == 0) refresh();
}

void Agent::refresh() {
    measuring_.refresh([this] {
        keeper_.renew();
        // Once it is known whether the machine is on its battery.
        if (measures_) analysis_.daily();
    });
}

void Agent::sampleProcessor() {
    // The kernel answers at once.
    const auto ticks = system::SystemReadings::ofLinux(options_.root).cpuTicks();
    if (!ticks) return;
    processor_.add(*ticks);
    // The minute's value is no reason to write; it goes out with the next one.
    keeper_.note([this](WidgetSnapshot& snapshot) {
        snapshot.cpu = processor_.current();
        snapshot.cpuHistory = processor_.values();
    });
}

void Agent::followPower() {
    const bool isMinded = awake_.isOn() && settings_.awakeEndsOnLowBattery();
    if (!measures_ && !isMinded)
        power_.reset();
    else if (!power_)
        power_ = std::make_unique<sources::PowerWatch>(system_, [this] { powerChanged(); });
    // Without the daemon nobody tells.
    if (!isMinded || measures_)
        batteryLook_.reset();
    else
        lookAtBattery();
}

void Agent::lookAtBattery() {
    batteryLook_ = runloop::MainSource::after(refreshMinutes * minute, [this] { lookAtBattery(); });
    measuring_.refresh("battery");
}

void Agent::powerChanged() {
    const auto reading = power_->reading();
    const auto now = reading ? sources::batteryOf(*reading) : std::nullopt;
    judgeBattery(now);
    if (now) machine_.sawPower(*now);
    // Watts and minutes are others each time, and can wait for the next reading of everything.
    const auto& shown = keeper_.snapshot().battery;
    const bool isSame = now.has_value() == shown.has_value() &&
                        (!now || (now->percent == shown->percent && now->charging == shown->charging &&
                                  now->pluggedIn == shown->pluggedIn));
    if (measures_ && !isSame) measuring_.refresh("battery");
}

void Agent::judgeBattery(const std::optional<WidgetSnapshot::Battery>& battery) {
    if (awake_.isOn() && settings_.awakeEndsOnLowBattery() && battery && !battery->pluggedIn &&
        !battery->charging && battery->percent < lowBattery)
        stopAwakeSoon("the battery is low");
}

void Agent::stopAwakeSoon(const std::string& why) {
    runloop::postToMainThread([this, why, life = std::weak_ptr(life_)] {
        if (!life.expired()) awake_.stop(why);
    });
}

void Agent::followLock() {
    if (!awake_.isOn() || !settings_.awakeEndsAtLock()) {
        lock_.clear();
        return;
    }
    if (!lock_.empty()) return;
    // Each desktop's has a name of its own, and all have this signal.
    lock_.push_back(session_.follow({"", "", "", "ActiveChanged"}, [this](const bus::Signal& signal) {
        if (signal.interface.ends_with(".ScreenSaver") && signal.arguments[0].flag() == true)
            stopAwakeSoon("the session was locked");
    }));
    lock_.push_back(system_.follow({login, "", loginSession, "Lock"}, [this](const bus::Signal& signal) {
        sessionLocked(signal.path);
    }));
    lock_.push_back(system_.follow(
        {login, "", "org.freedesktop.DBus.Properties", "PropertiesChanged"},
        [this](const bus::Signal& signal) {
            if (signal.arguments[0].text() == loginSession &&
                signal.arguments[1]["LockedHint"].flag() == true)
                sessionLocked(signal.path);
        }));
}

void Agent::sessionLocked(const std::string& session) {
    // Others' sessions are locked too.
    system_.call(
        {login, session, "org.freedesktop.DBus.Properties", "Get"},
        "(ss)",
        {loginSession, "User"},
        [this, life = std::weak_ptr(life_)](const bus::Result<bus::Data>& user) {
            if (!life.expired() && user && user.value()[0][0].integer() == getuid())
                stopAwakeSoon("the session was locked");
        });
}

AgentStatus Agent::status() const {
    return {
        .version = ZELTO_VERSION,
        .host = host_->isThere(),
        .seen = host_->isSeen(),
        .snapshotWritten = keeper_.lastWritten(),
        .snapshotLeftAloneUntil = keeper_.leftAloneUntil(),
        .powerDaemon = power_ && power_->reading(),
        .slowParts = measuring_.slow(),
        .awake = awake_.isOn(),
        .lastAnalysis = analysis_.last() ? std::optional(analysis_.last()->date) : std::nullopt,
        .settingsFault = settingsFault_ ? std::optional(placeOf(*settingsFault_)) : std::nullopt};
}

}  // namespace zelto::agent
