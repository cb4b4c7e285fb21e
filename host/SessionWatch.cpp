#include "host/SessionWatch.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <gio/gio.h>

#include "foundation/EnvironmentVariable.hpp"
#include "foundation/Handle.hpp"

namespace zelto::host {
namespace {

using Connection = Handle<GDBusConnection, g_object_unref>;
using Cancellable = Handle<GCancellable, g_object_unref>;
using Variant = Handle<GVariant, g_variant_unref>;
using Text = Handle<gchar, g_free>;

constexpr const char* loginManager = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

/// Absent without a bus.
std::optional<std::string> addressOf(const bus::Address& address) {
    if (address.kind() == bus::Address::Kind::text) return address.text();
    const auto type = address.kind() == bus::Address::Kind::system ? G_BUS_TYPE_SYSTEM : G_BUS_TYPE_SESSION;
    // The library would otherwise start a bus for a session that has none.
    if (type == G_BUS_TYPE_SESSION && !environmentVariable("DBUS_SESSION_BUS_ADDRESS") &&
        !environmentVariable("XDG_RUNTIME_DIR"))
        return std::nullopt;
    const Text found(g_dbus_address_get_for_bus_sync(type, nullptr, nullptr));
    return found ? std::optional<std::string>(found.get()) : std::nullopt;
}

}  // namespace

struct SessionWatch::State : std::enable_shared_from_this<State> {
    explicit State(Seams wanted) : seams(std::move(wanted)) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        g_cancellable_cancel(cancellable.get());
        for (const Connection* connection : {&session, &system})
            if (*connection) g_dbus_connection_close(connection->get(), nullptr, nullptr, nullptr);
    }

    /// Whatever the library hands a callback: this object, as long as there is one.
    using Weak = std::weak_ptr<State>;
    gpointer self() { return new Weak(weak_from_this()); }
    static void forget(gpointer weak) { delete static_cast<Weak*>(weak); }

    void connect(const bus::Address& bus, void (*connected)(GObject*, GAsyncResult*, gpointer)) {
        if (const auto address = addressOf(bus))
            g_dbus_connection_new_for_address(
                address->c_str(),
                static_cast<GDBusConnectionFlags>(
                    G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                    G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
                nullptr,
                cancellable.get(),
                connected,
                self());
    }
    static void sessionConnected(GObject*, GAsyncResult* result, gpointer weak) {
        Connection made(g_dbus_connection_new_for_address_finish(result, nullptr));
        const auto state = taken(weak);
        if (state && isOpen(made)) state->followScreenSavers(std::move(made));
    }
    static void systemConnected(GObject*, GAsyncResult* result, gpointer weak) {
        Connection made(g_dbus_connection_new_for_address_finish(result, nullptr));
        const auto state = taken(weak);
        if (state && isOpen(made)) state->followLogins(std::move(made));
    }
    static bool isOpen(const Connection& connection) {
        return connection && g_dbus_connection_is_closed(connection.get()) == FALSE;
    }
    static std::shared_ptr<State> taken(gpointer weak) {
        const std::unique_ptr<Weak> owned(static_cast<Weak*>(weak));
        return owned->lock();
    }

    template <void (State::*received)(const char* interface, GVariant* values)>
    void follow(
        const Connection& connection, const char* sender, const char* interface, const char* member,
        const char* path) {
        g_dbus_connection_signal_subscribe(
            connection.get(),
            sender,
            interface,
            member,
            path,
            nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*,
               const gchar*,
               const gchar*,
               const gchar* from,
               const gchar*,
               GVariant* values,
               gpointer weak) {
                if (const auto state = static_cast<Weak*>(weak)->lock()) ((*state).*received)(from, values);
            },
            self(),
            &forget);
    }

    /// Who does not tell any more has told nothing.
    static void sessionClosed(GDBusConnection*, gboolean, GError*, gpointer weak) {
        if (const auto state = static_cast<Weak*>(weak)->lock()) {
            state->isCovered = false;
            state->tell();
        }
    }
    static void systemClosed(GDBusConnection*, gboolean, GError*, gpointer weak) {
        if (const auto state = static_cast<Weak*>(weak)->lock()) {
            state->isLocked = state->isAsleep = false;
            state->isActive = true;
            state->tell();
        }
    }
    void keep(Connection& place, Connection made, GCallback closed) {
        place = std::move(made);
        g_dbus_connection_set_exit_on_close(place.get(), FALSE);
        g_signal_connect_data(
            place.get(),
            "closed",
            closed,
            self(),
            [](gpointer weak, GClosure*) { forget(weak); },
            static_cast<GConnectFlags>(0));
    }

    /// Each desktop's has a name of its own, and all have this signal.
    void followScreenSavers(Connection connection) {
        keep(session, std::move(connection), G_CALLBACK(+sessionClosed));
        follow<&State::screenSaverChanged>(session, nullptr, nullptr, "ActiveChanged", nullptr);
    }
    void screenSaverChanged(const char* interface, GVariant* values) {
        if (!std::string_view(interface).ends_with(".ScreenSaver") ||
            g_variant_is_of_type(values, G_VARIANT_TYPE("(b)")) == FALSE)
            return;
        isCovered = firstOf(values);
        tell();
    }

    void followLogins(Connection connection) {
        keep(system, std::move(connection), G_CALLBACK(+systemClosed));
        follow<&State::sleepChanged>(system, loginManager, managerInterface, "PrepareForSleep", managerPath);
        // The session that the widgets are shown in; a process of no session has none to follow.
        const auto id = environmentVariable("XDG_SESSION_ID");
        g_dbus_connection_call(
            system.get(),
            loginManager,
            managerPath,
            managerInterface,
            id ? "GetSession" : "GetSessionByPID",
            id ? g_variant_new("(s)", id->c_str()) : g_variant_new("(u)", guint32{0}),
            G_VARIANT_TYPE("(o)"),
            G_DBUS_CALL_FLAGS_NONE,
            -1,
            cancellable.get(),
            [](GObject* source, GAsyncResult* result, gpointer weak) {
                const Variant found(
                    g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
                const auto state = taken(weak);
                if (!state || !found) return;
                const gchar* path = nullptr;
                g_variant_get(found.get(), "(&o)", &path);
                state->followSession(path);
            },
            self());
    }
    void sleepChanged(const char*, GVariant* values) {
        if (g_variant_is_of_type(values, G_VARIANT_TYPE("(b)")) == FALSE) return;
        const bool wasAsleep = std::exchange(isAsleep, firstOf(values));
        tell();
        if (wasAsleep && !isAsleep) seams.woke();
    }
    void followSession(const char* path) {
        follow<&State::sessionChanged>(system, loginManager, propertiesInterface, "PropertiesChanged", path);
        g_dbus_connection_call(
            system.get(),
            loginManager,
            path,
            propertiesInterface,
            "GetAll",
            g_variant_new("(s)", sessionInterface),
            G_VARIANT_TYPE("(a{sv})"),
            G_DBUS_CALL_FLAGS_NONE,
            -1,
            cancellable.get(),
            [](GObject* source, GAsyncResult* result, gpointer weak) {
                const Variant all(g_dbus_connection_call_finish(G_DBUS_CONNECTION(source), result, nullptr));
                const auto state = taken(weak);
                if (state && all) state->take(Variant(g_variant_get_child_value(all.get(), 0)));
            },
            self());
    }
    void sessionChanged(const char*, GVariant* values) {
        if (g_variant_is_of_type(values, G_VARIANT_TYPE("(sa{sv}as)")) != FALSE)
            take(Variant(g_variant_get_child_value(values, 1)));
    }
    void take(const Variant& properties) {
        gboolean value = FALSE;
        if (g_variant_lookup(properties.get(), "LockedHint", "b", &value) != FALSE) isLocked = value != FALSE;
        if (g_variant_lookup(properties.get(), "Active", "b", &value) != FALSE) isActive = value != FALSE;
        tell();
    }

    static bool firstOf(GVariant* values) {
        gboolean first = FALSE;
        g_variant_get(values, "(b)", &first);
        return first != FALSE;
    }
    void tell() {
        const bool now = isActive && !isCovered && !isLocked && !isAsleep;
        if (std::exchange(isSeen, now) != now) seams.changed(now);
    }

    Seams seams;
    Cancellable cancellable{g_cancellable_new()};
    Connection session, system;
    bool isCovered = false, isLocked = false, isAsleep = false, isActive = true, isSeen = true;
};

SessionWatch::SessionWatch(const bus::Address& session, const bus::Address& system, Seams seams)
    : state_(std::make_shared<State>(std::move(seams))) {
    state_->connect(session, &State::sessionConnected);
    state_->connect(system, &State::systemConnected);
}

SessionWatch::~SessionWatch() = default;

void SessionWatch::somebodyIsThere() {
    state_->isCovered = state_->isLocked = false;
    state_->tell();
}

}  // namespace zelto::host
