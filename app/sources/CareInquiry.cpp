#include "sources/CareInquiry.hpp"

#include <algorithm>
#include <utility>

#include "runloop/MainLoop.hpp"

namespace zelto::sources {
namespace {

/// For an answer, and for a list of updates, which the network may hold up.
constexpr std::chrono::seconds patience{20}, listPatience{60};
constexpr const char* properties = "org.freedesktop.DBus.Properties";

constexpr const char* systemd = "org.freedesktop.systemd1";
constexpr const char* systemdObject = "/org/freedesktop/systemd1";
constexpr const char* systemdManager = "org.freedesktop.systemd1.Manager";
constexpr const char* packageKit = "org.freedesktop.PackageKit";
constexpr const char* transactionInterface = "org.freedesktop.PackageKit.Transaction";

}  // namespace

/// What is known so far; answers when nobody holds it any more.
struct CareInquiry::Round {
    explicit Round(std::function<void(CareFacts)> wanted) : answered(std::move(wanted)) {}
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() { answered(std::move(facts)); }

    CareFacts facts;
    std::function<void(CareFacts)> answered;
};

void CareInquiry::ask(Scope scope, std::function<void(CareFacts)> answered) {
    const auto round = std::make_shared<Round>(std::move(answered));
    askServices(round, system_, &CareFacts::failedSystemServices);
    askServices(round, session_, &CareFacts::failedUserServices);
    askStart(round);
    askDrives(round);
    askFirewall(round);
    if (!scope.updates) return;
    askFirmware(round);
    askUpdates(round);
}

void CareInquiry::call(
    const std::shared_ptr<Round>& round, bus::Client& bus, const bus::Target& target,
    const std::string& signature, bus::Data::List arguments, Then then, bool starts) {
    bus.call(
        target,
        signature,
        std::move(arguments),
        [round, then = std::move(then)](const bus::Result<bus::Data>& results) {
            then(round->facts, results);
        },
        patience,
        starts);
}

void CareInquiry::askServices(
    const std::shared_ptr<Round>& round, bus::Client& bus,
    std::optional<std::vector<std::string>> CareFacts::*services) {
    call(
        round,
        bus,
        {systemd, systemdObject, systemdManager, "ListUnitsFiltered"},
        "(as)",
        {bus::Data::List{"failed"}},
        [services](CareFacts& facts, const bus::Result<bus::Data>& results) {
            if (!results) return;
            auto& names = (facts.*services).emplace();
            for (const bus::Data& unit : results.value()[0].list())
                if (const auto name = unit[0].text()) names.push_back(name->substr(0, name->rfind('.')));
        });
}

void CareInquiry::askStart(const std::shared_ptr<Round>& round) {
    call(
        round,
        system_,
        {systemd, systemdObject, properties, "GetAll"},
        "(s)",
        {systemdManager},
        [](CareFacts& facts, const bus::Result<bus::Data>& results) {
            if (!results) return;
            const bus::Data& all = results.value()[0];
            const auto begin = all["UserspaceTimestampMonotonic"].number();
            const auto end = all["FinishTimestampMonotonic"].number();
            // Microseconds; the end is 0 as long as it has not come.
            if (begin && end && *end > *begin) facts.startSeconds = (*end - *begin) / 1e6;
        });
}

void CareInquiry::askDrives(const std::shared_ptr<Round>& round) {
    call(
        round,
        system_,
        {"org.freedesktop.UDisks2",
         "/org/freedesktop/UDisks2",
         "org.freedesktop.DBus.ObjectManager",
         "GetManagedObjects"},
        "()",
        {},
        [this, weak = std::weak_ptr(round)](CareFacts&, const bus::Result<bus::Data>& results) {
            if (results) judgeDrives(weak.lock(), results.value()[0].map());
        });
}

void CareInquiry::judgeDrives(const std::shared_ptr<Round>& round, const bus::Data::Map& objects) {
    constexpr const char* controller = "org.freedesktop.UDisks2.NVMe.Controller";
    round->facts.drivesKnown = true;
    for (const auto& [path, interfaces] : objects) {
        const std::string name = interfaces["org.freedesktop.UDisks2.Drive"]["Model"].text().value_or(path);
        const bus::Data& ata = interfaces["org.freedesktop.UDisks2.Drive.Ata"];
        if (ata["SmartFailing"].flag() == true || ata["SmartNumAttributesFailing"].integer().value_or(0) > 0)
            round->facts.failingDrives.push_back(name);
        const auto& warnings = interfaces[controller]["SmartCriticalWarning"].list();
        if (warnings.empty()) continue;
        const bool mayBeWorn = std::ranges::all_of(warnings, [](const bus::Data& warning) {
            return warning.text() == "degraded" || warning.text() == "spare";
        });
        if (!mayBeWorn) {
            round->facts.failingDrives.push_back(name);
            continue;
        }
        // Mostly that as much was written as the maker warrants; what the daemon keeps tells of errors.
        call(
            round,
            system_,
            {"org.freedesktop.UDisks2", path, controller, "SmartGetAttributes"},
            "(a{sv})",
            {bus::Data::Map()},
            [name](CareFacts& facts, const bus::Result<bus::Data>& attributes) {
                const bool isWorn = attributes && attributes.value()[0]["media_errors"].integer() == 0;
                (isWorn ? facts.wornDrives : facts.failingDrives).push_back(name);
            });
    }
}

void CareInquiry::askFirewall(const std::shared_ptr<Round>& round) {
    constexpr const char* firewall = "org.fedoraproject.FirewallD1";
    call(
        round,
        system_,
        {firewall, "/org/fedoraproject/FirewallD1", properties, "Get"},
        "(ss)",
        {firewall, "state"},
        [](CareFacts& facts, const bus::Result<bus::Data>& results) {
            if (results) facts.firewall = results.value()[0].text() == "RUNNING";
        });
}

void CareInquiry::askFirmware(const std::shared_ptr<Round>& round) {
    constexpr const char* service = "org.freedesktop.fwupd";
    const auto devices = [this, weak = std::weak_ptr(round)](
                             CareFacts& facts, const bus::Result<bus::Data>& results) {
        if (!results) return;
        facts.firmwareUpdates = 0;
        for (const bus::Data& device : results.value()[0].list()) {
            constexpr std::int64_t updatable = 1 << 1;
            const auto id = device["DeviceId"].text();
            if (!id || (device["Flags"].integer().value_or(0) & updatable) == 0) continue;
            // That there is nothing newer it says by an error of its own.
            call(
                weak.lock(),
                system_,
                {service, "/", service, "GetUpgrades"},
                "(s)",
                {*id},
                [](CareFacts& known, const bus::Result<bus::Data>& upgrades) {
                    if (!upgrades && upgrades.fault().kind != bus::ErrorKind::refused)
                        known.firmwareUpdates.reset();
                    else if (upgrades && !upgrades.value()[0].list().empty() && known.firmwareUpdates)
                        ++*known.firmwareUpdates;
                });
        }
    };
    call(round, system_, {service, "/", service, "GetDevices"}, "()", {}, devices, true);
}

void CareInquiry::askUpdates(const std::shared_ptr<Round>& round) {
    const auto created = [this, weak = std::weak_ptr(round)](
                             CareFacts&, const bus::Result<bus::Data>& results) {
        if (!results) return;
        if (const auto transaction = results.value()[0].text()) followUpdates(weak.lock(), *transaction);
    };
    call(
        round,
        system_,
        {packageKit, "/org/freedesktop/PackageKit", packageKit, "CreateTransaction"},
        "()",
        {},
        created,
        true);
}

void CareInquiry::followUpdates(const std::shared_ptr<Round>& round, const std::string& transaction) {
    struct Listing {
        std::shared_ptr<Round> round;  // waits for the end of the list
        CareFacts::Updates updates = {};
        bus::Client::Subscription signals = {};
        runloop::MainSource tooLate = {};

        void add(const bus::Data& kind) {
            constexpr std::int64_t lowBits = 0xFFFF, security = 8;
            // Newer daemons keep the urgency in the upper half.
            ++((kind.integer().value_or(0) & lowBits) == security ? updates.security : updates.others);
        }
        void end() {
            round.reset();
            signals.reset();
            tooLate.reset();
        }
    };
    const auto listing = std::make_shared<Listing>(Listing{.round = round});
    listing->signals = system_.follow(
        {packageKit, transaction, transactionInterface, ""}, [listing](const bus::Signal& signal) {
            if (!listing->round) return;
            if (signal.name == "Package") listing->add(signal.arguments[0]);
            if (signal.name == "Packages")
                for (const bus::Data& each : signal.arguments[0].list()) listing->add(each[0]);
            constexpr std::int64_t success = 1;
            if (signal.name == "Finished" && signal.arguments[0].integer() == success)
                listing->round->facts.updates = listing->updates;
            if (signal.name == "Finished" || signal.name == "Destroy") listing->end();
        });
    // A daemon may die in the middle of its list.
    listing->tooLate = runloop::MainSource::after(listPatience.count(), [listing] { listing->end(); });
    call(
        round,
        system_,
        {packageKit, transaction, transactionInterface, "GetUpdates"},
        "(t)",
        {0},
        [listing](CareFacts&, const bus::Result<bus::Data>& results) {
            // No list will come.
            if (!results) listing->end();
        });
}

}  // namespace zelto::sources
