// What an analysis asks other programs: stand-ins for those that need a machine of their own, the package
// daemon itself.

#include <filesystem>

#include <gtest/gtest.h>
#include <unistd.h>

#include "sources/CareInquiry.hpp"
#include "tests/app/LoginManager.hpp"
#include "tests/app/MainLoop.hpp"
#include "tests/app/MockService.hpp"
#include "tests/support/PrivateBus.hpp"

namespace zelto::sources {
namespace {

using test::MockService;

constexpr const char* systemd = "org.freedesktop.systemd1";
constexpr const char* manager = "org.freedesktop.systemd1.Manager";

struct Inquiry : testing::Test {
    test::PrivateBus bus;
    test::PrivateBus session;

    CareFacts ask(bool updates = true) const { return askOn(bus.address(), updates); }
    CareFacts askOn(const std::string& address, bool updates) const {
        bus::Client systemClient(bus::Address::at(address));
        bus::Client sessionClient(bus::Address::at(session.address()));
        CareInquiry inquiry(systemClient, sessionClient);
        std::optional<CareFacts> out;
        int answers = 0;
        inquiry.ask({.updates = updates}, [&](CareFacts facts) {
            out = std::move(facts);
            ++answers;
        });
        EXPECT_TRUE(test::runUntil([&] { return out.has_value(); }));
        EXPECT_EQ(answers, 1);
        return out.value_or(CareFacts());
    }
};

TEST_F(Inquiry, WhereNobodyIsThereNothingIsKnown) {
    const auto facts = ask();
    EXPECT_EQ(facts.failedSystemServices, std::nullopt);
    EXPECT_EQ(facts.drivesKnown, std::nullopt);
    EXPECT_EQ(facts.updates, std::nullopt);
    EXPECT_EQ(facts.firewall, std::nullopt);
    EXPECT_EQ(facts.startSeconds, std::nullopt);
}

TEST_F(Inquiry, ServicesThatFailedAndTheTimeOfTheStart) {
    const MockService service(bus.address(), systemd, "/org/freedesktop/systemd1", manager);
    service.method(
        manager,
        "ListUnitsFiltered",
        "as",
        "a(ssssssouso)",
        "ret = [('cups.service', '', 'loaded', 'failed', 'failed', '', '/', 0, '', '/'),"
        " ('backup.timer', '', 'loaded', 'failed', 'failed', '', '/', 0, '', '/')] if args[0] == ['failed'] "
        "else []");
    service.property(manager, "UserspaceTimestampMonotonic", "<uint64 3000000>");
    service.property(manager, "FinishTimestampMonotonic", "<uint64 24500000>");
    const auto facts = ask();
    EXPECT_EQ(facts.failedSystemServices, (std::vector<std::string>{"cups", "backup"}));
    EXPECT_EQ(facts.failedUserServices, std::nullopt);
    EXPECT_EQ(facts.startSeconds, 21.5);
}

TEST_F(Inquiry, DrivesThatFailAndThoseThatAreOnlyWorn) {
    constexpr const char* service = "org.freedesktop.UDisks2";
    const MockService disks(
        bus.address(), service, "/org/freedesktop/UDisks2", "org.freedesktop.DBus.ObjectManager");
    disks.method(
        "org.freedesktop.DBus.ObjectManager",
        "GetManagedObjects",
        "",
        "a{oa{sa{sv}}}",
        "drive = lambda model, more: dict({'org.freedesktop.UDisks2.Drive': {'Model': model}}, **more)\n"
        "ata = lambda failing: {'org.freedesktop.UDisks2.Drive.Ata': {'SmartFailing': failing}}\n"
        "nvme = lambda w: {'org.freedesktop.UDisks2.NVMe.Controller': {'SmartCriticalWarning': dbus.Array(w, "
        "signature='s')}}\n"
        "ret = {'/a': drive('Old', ata(True)), '/b': drive('Good', ata(False)), '/c': drive('New', nvme([])),"
        " '/d': drive('Written', nvme(['degraded'])), '/e': drive('Hot', nvme(['temperature'])),"
        " '/f': drive('Errors', nvme(['spare'])), '/g': drive('Silent', nvme(['spare']))}");
    constexpr const char* controller = "org.freedesktop.UDisks2.NVMe.Controller";
    for (const auto& [path, errors] : {std::pair{"/d", "0"}, {"/f", "3"}}) {
        disks.object(path, controller, "{}");
        disks.method(
            controller,
            "SmartGetAttributes",
            "a{sv}",
            "a{sv}",
            std::string("ret = {'media_errors': dbus.UInt64(") + errors + ")}",
            path);
    }
    const auto facts = ask();
    EXPECT_EQ(facts.drivesKnown, true);
    EXPECT_EQ(facts.failingDrives, (std::vector<std::string>{"Old", "Hot", "Errors", "Silent"}));
    EXPECT_EQ(facts.wornDrives, std::vector<std::string>{"Written"});
    // No drive is asked itself, which could wake it.
    EXPECT_EQ(disks.calls().find("SmartUpdate"), std::string::npos);
}

TEST_F(Inquiry, AFirewallThatIsOnOrOff) {
    constexpr const char* name = "org.fedoraproject.FirewallD1";
    for (const auto& [state, isOn] : {std::pair{"<'RUNNING'>", true}, {"<'FAILED'>", false}}) {
        const MockService firewall(bus.address(), name, "/org/fedoraproject/FirewallD1", name);
        firewall.property(name, "state", state);
        EXPECT_EQ(ask().firewall, isOn) << state;
    }
}

TEST_F(Inquiry, FirmwareThatCouldBeNewer) {
    constexpr const char* name = "org.freedesktop.fwupd";
    const MockService firmware(bus.address(), name, "/", name);
    firmware.method(
        name,
        "GetDevices",
        "",
        "aa{sv}",
        "ret = [{'DeviceId': 'a', 'Flags': dbus.UInt64(2)}, {'DeviceId': 'b', 'Flags': dbus.UInt64(3)},"
        " {'DeviceId': 'c', 'Flags': dbus.UInt64(1)}]");
    firmware.method(
        name,
        "GetUpgrades",
        "s",
        "aa{sv}",
        "if args[0] != 'b': raise dbus.exceptions.DBusException('nothing', "
        "name='org.freedesktop.fwupd.NothingToDo')\n"
        "ret = [{'Version': '2'}]");
    EXPECT_EQ(ask().firmwareUpdates, 1);
    EXPECT_EQ(ask(false).firmwareUpdates, std::nullopt);
}

/// A package daemon that does with a transaction what a test says.
struct Packages : Inquiry {
    static constexpr const char* name = "org.freedesktop.PackageKit";
    static constexpr const char* transaction = "org.freedesktop.PackageKit.Transaction";
    MockService daemon{bus.address(), name, "/org/freedesktop/PackageKit", name};

    void SetUp() override {
        daemon.method(name, "CreateTransaction", "", "o", "ret = '/1_abc'");
        daemon.object("/1_abc", transaction, "{}");
    }
    void updates(const std::string& code) const {
        daemon.method(transaction, "GetUpdates", "t", "", code, "/1_abc");
    }
    static constexpr const char* say =
        "say = lambda name, signature, args, me=self: "
        "me.EmitSignal('org.freedesktop.PackageKit.Transaction', name, signature, args)\n";
};

TEST_F(Packages, AreCountedByTheirKind) {
    updates(
        std::string(say) +
        "say('Package', 'uss', [dbus.UInt32(8), 'a;1;;', ''])\n"
        "say('Package', 'uss', [dbus.UInt32(5), 'b;1;;', ''])\n"
        "say('Package', 'uss', [dbus.UInt32(0x10008), 'c;1;;', ''])\n"
        "say('Finished', 'uu', [dbus.UInt32(1), dbus.UInt32(9)])\n");
    const auto facts = ask();
    ASSERT_TRUE(facts.updates);
    EXPECT_EQ(facts.updates->security, 2);
    EXPECT_EQ(facts.updates->others, 1);
    EXPECT_EQ(ask(false).updates, std::nullopt);
}

TEST_F(Packages, ThatCannotBeListedAreNotKnown) {
    updates(
        std::string(say) +
        "say('ErrorCode', 'us', [dbus.UInt32(2), 'no network'])\n"
        "say('Finished', 'uu', [dbus.UInt32(2), dbus.UInt32(9)])\n");
    EXPECT_EQ(ask().updates, std::nullopt);
    updates("raise dbus.exceptions.DBusException('not allowed')");
    EXPECT_EQ(ask().updates, std::nullopt);
    daemon.method(name, "CreateTransaction", "", "s", "ret = 'no path'");
    EXPECT_EQ(ask().updates, std::nullopt);
}

TEST_F(Inquiry, PackagesOfTheRealDaemon) {
    constexpr const char* program = "/usr/libexec/packagekitd";
    if (!test::LoginManager::isPossible() || !std::filesystem::exists(program))
        GTEST_SKIP() << "packagekitd wants to be there, and root";
    const test::LoginManager machine(test::LoginManager::Daemons{{program, "org.freedesktop.PackageKit"}});
    const auto facts = askOn(machine.address(), true);
    ASSERT_TRUE(facts.updates);
    EXPECT_GE(facts.updates->security, 0);
}

}  // namespace
}  // namespace zelto::sources
