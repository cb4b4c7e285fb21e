#include <functional>
#include <vector>

#include <gio/gio.h>
#include <gtest/gtest.h>

#include "foundation/Handle.hpp"
#include "host/SessionWatch.hpp"
#include "runloop/MainLoop.hpp"
#include "tests/support/PrivateBus.hpp"

namespace zelto::host {
namespace {

using Connection = Handle<GDBusConnection, g_object_unref>;
using Variant = Handle<GVariant, g_variant_unref>;
using NodeInfo = Handle<GDBusNodeInfo, g_dbus_node_info_unref>;

constexpr const char* sessionPath = "/org/freedesktop/login1/session/_37";

/// A login manager that knows one session.
class LoginManager {
  public:
    explicit LoginManager(const std::string& address) : connection_(connect(address)) {
        offer(
            "<node><interface name='org.freedesktop.login1.Manager'>"
            "<method name='GetSession'><arg type='s' direction='in'/><arg type='o' direction='out'/></method>"
            "<method name='GetSessionByPID'><arg type='u' direction='in'/><arg type='o' "
            "direction='out'/></method>"
            "</interface></node>",
            "/org/freedesktop/login1");
        offer(
            "<node><interface name='org.freedesktop.login1.Session'>"
            "<property name='LockedHint' type='b' access='read'/><property name='Active' type='b' "
            "access='read'/>"
            "</interface></node>",
            sessionPath);
        const Variant owned(g_dbus_connection_call_sync(
            connection_.get(),
            "org.freedesktop.DBus",
            "/",
            "org.freedesktop.DBus",
            "RequestName",
            g_variant_new("(su)", "org.freedesktop.login1", guint32{0}),
            nullptr,
            G_DBUS_CALL_FLAGS_NONE,
            -1,
            nullptr,
            nullptr));
        EXPECT_TRUE(owned);
    }
    static Connection connect(const std::string& address) {
        return Connection(g_dbus_connection_new_for_address_sync(
            address.c_str(),
            static_cast<GDBusConnectionFlags>(
                G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr,
            nullptr,
            nullptr));
    }
    static void emit(
        const Connection& from, const char* path, const char* interface, const char* name, GVariant* values) {
        g_dbus_connection_emit_signal(from.get(), nullptr, path, interface, name, values, nullptr);
    }
    void sleeps(bool isAsleep) const {
        emit(
            connection_,
            "/org/freedesktop/login1",
            "org.freedesktop.login1.Manager",
            "PrepareForSleep",
            g_variant_new("(b)", isAsleep ? TRUE : FALSE));
    }
    void changes(const char* property, bool value) const {
        GVariantBuilder values;
        g_variant_builder_init(&values, G_VARIANT_TYPE("a{sv}"));
        g_variant_builder_add(&values, "{sv}", property, g_variant_new_boolean(value ? TRUE : FALSE));
        emit(
            connection_,
            sessionPath,
            "org.freedesktop.DBus.Properties",
            "PropertiesChanged",
            g_variant_new("(sa{sv}as)", "org.freedesktop.login1.Session", &values, nullptr));
    }
    bool isLocked = false;
    int asked = 0;

  private:
    void offer(const char* description, const char* path) {
        static const GDBusInterfaceVTable callbacks{
            [](GDBusConnection*,
               const gchar*,
               const gchar*,
               const gchar*,
               const gchar*,
               GVariant*,
               GDBusMethodInvocation* call,
               gpointer) { g_dbus_method_invocation_return_value(call, g_variant_new("(o)", sessionPath)); },
            [](GDBusConnection*,
               const gchar*,
               const gchar*,
               const gchar*,
               const gchar* name,
               GError**,
               gpointer self) {
                auto* manager = static_cast<LoginManager*>(self);
                ++manager->asked;
                const bool value = std::string_view(name) == "Active" || manager->isLocked;
                return g_variant_new_boolean(value ? TRUE : FALSE);
            },
            nullptr,
            {}};
        const NodeInfo info(g_dbus_node_info_new_for_xml(description, nullptr));
        g_dbus_connection_register_object(
            connection_.get(), path, info->interfaces[0], &callbacks, this, nullptr, nullptr);
    }

    Connection connection_;
};

struct WatchedSession : testing::Test {
    test::PrivateBus sessionBus, systemBus;
    LoginManager manager{systemBus.address()};
    Connection screenSaver = LoginManager::connect(sessionBus.address());
    std::vector<bool> told;
    int woken = 0;
    std::unique_ptr<SessionWatch> watch;

    void start() {
        watch = std::make_unique<SessionWatch>(
            bus::Address::at(sessionBus.address()),
            bus::Address::at(systemBus.address()),
            SessionWatch::Seams{
                .changed = [this](bool isSeen) { told.push_back(isSeen); }, .woke = [this] { ++woken; }});
        // What it follows of the session it follows when it has asked for all of it.
        until([this] { return manager.asked >= 2; });
    }
    void saves(bool isActive, const char* interface = "org.gnome.ScreenSaver") const {
        LoginManager::emit(
            screenSaver,
            "/a/path",
            interface,
            "ActiveChanged",
            g_variant_new("(b)", isActive ? TRUE : FALSE));
    }
    static void until(const std::function<bool()>& condition) {
        bool isLate = false;
        const auto limit = runloop::MainSource::after(20, [&] { isLate = true; });
        runloop::runMainLoopUntil([&] { return condition() || isLate; });
        EXPECT_FALSE(isLate);
    }
    /// What is told of a change.
    bool next(const std::function<void()>& change) {
        const std::size_t before = told.size();
        change();
        until([&] { return told.size() > before; });
        EXPECT_EQ(told.size(), before + 1);
        return told.back();
    }
};

TEST_F(WatchedSession, IsNotSeenWhileItIsLockedOrInTheBackgroundOrAsleep) {
    start();
    EXPECT_TRUE(told.empty());
    EXPECT_FALSE(next([&] { manager.changes("LockedHint", true); }));
    EXPECT_TRUE(next([&] { manager.changes("LockedHint", false); }));
    EXPECT_FALSE(next([&] { manager.changes("Active", false); }));
    EXPECT_TRUE(next([&] { manager.changes("Active", true); }));
    EXPECT_FALSE(next([&] { manager.sleeps(true); }));
    EXPECT_EQ(woken, 0);
    EXPECT_TRUE(next([&] { manager.sleeps(false); }));
    EXPECT_EQ(woken, 1);
    // Two reasons are one.
    EXPECT_FALSE(next([&] { manager.changes("LockedHint", true); }));
    manager.sleeps(true);
    manager.changes("LockedHint", false);
    EXPECT_TRUE(next([&] { manager.sleeps(false); }));
    EXPECT_EQ(woken, 2);
}

TEST_F(WatchedSession, IsNotSeenBehindAScreenSaver) {
    start();
    for (const char* interface : {"org.gnome.ScreenSaver", "org.freedesktop.ScreenSaver"}) {
        EXPECT_FALSE(next([&] { saves(true, interface); }));
        EXPECT_TRUE(next([&] { saves(false, interface); }));
    }
    // Of something else, and then a real one.
    saves(true, "org.example.Light");
    EXPECT_FALSE(next([&] { saves(true); }));
    // Whoever moves the pointer sees it, whatever has become of the screen saver.
    EXPECT_TRUE(next([&] { watch->somebodyIsThere(); }));
}

TEST_F(WatchedSession, IsFoundLocked) {
    manager.isLocked = true;
    EXPECT_FALSE(next([&] { start(); }));
}

TEST_F(WatchedSession, IsSeenWhenThoseWhoToldAreGone) {
    start();
    EXPECT_FALSE(next([&] { manager.changes("LockedHint", true); }));
    EXPECT_TRUE(next([&] { systemBus.end(); }));
    EXPECT_FALSE(next([&] { saves(true); }));
    EXPECT_TRUE(next([&] { sessionBus.end(); }));
}

TEST(SessionWatch, WithoutABusEverythingIsSeen) {
    bool isTold = false;
    const auto nowhere = bus::Address::at("unix:path=/no/such/bus");
    const SessionWatch watch(nowhere, nowhere, {.changed = [&](bool) { isTold = true; }, .woke = [] {}});
    bool isOver = false;
    const auto end = runloop::MainSource::after(0, [&] { isOver = true; });
    runloop::runMainLoopUntil([&] { return isOver; });
    EXPECT_FALSE(isTold);
}

}  // namespace
}  // namespace zelto::host
