#include "platform/xpc/Handles.hpp"

#include <array>
#include <charconv>
#include <string_view>

namespace zelto::xpc {
namespace {

struct ErrorName {
    std::string_view name;
    ErrorKind kind;
};

/// The first of a kind is the one that we send.
constexpr std::array errorNames{
    ErrorName{"org.freedesktop.DBus.Error.AccessDenied", ErrorKind::accessDenied},
    ErrorName{"org.freedesktop.DBus.Error.InvalidArgs", ErrorKind::badPayload},
    ErrorName{"org.freedesktop.DBus.Error.LimitsExceeded", ErrorKind::tooLarge},
    ErrorName{"org.freedesktop.DBus.Error.TimedOut", ErrorKind::deadlinePassed},
    ErrorName{"org.freedesktop.DBus.Error.Timeout", ErrorKind::deadlinePassed},
    ErrorName{"org.freedesktop.DBus.Error.NoReply", ErrorKind::peerDied},
    ErrorName{"org.freedesktop.DBus.Error.ServiceUnknown", ErrorKind::peerAbsent},
    ErrorName{"org.freedesktop.DBus.Error.NameHasNoOwner", ErrorKind::peerAbsent},
    ErrorName{"org.freedesktop.DBus.Error.Spawn.ExecFailed", ErrorKind::peerAbsent},
    ErrorName{"org.freedesktop.DBus.Error.Spawn.ChildExited", ErrorKind::peerAbsent},
    ErrorName{"org.freedesktop.DBus.Error.Spawn.ChildSignaled", ErrorKind::peerAbsent},
    ErrorName{"org.freedesktop.DBus.Error.Failed", ErrorKind::refused},
};

ErrorKind kindNamed(std::string_view name) {
    for (const ErrorName& known : errorNames)
        if (known.name == name) return known.kind;
    return ErrorKind::refused;
}

ErrorKind kindOf(const GError* error) {
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) return ErrorKind::deadlinePassed;
    // The other side's own errors may be of any domain.
    if (gchar* name = g_dbus_error_get_remote_error(error)) {
        const ErrorKind kind = kindNamed(name);
        g_free(name);
        return kind;
    }
    return error->domain == G_IO_ERROR ? ErrorKind::noBus : ErrorKind::refused;
}

/// A connection that is being made. Lives on by itself when nobody waits for it any more: a bus that
/// authenticates us and then falls silent is not given up by the library for 25 seconds.
struct Attempt {
    BusConnection connection = {};
    ErrorSlot error = {};
    bool isOver = false;

    static void finish(GObject*, GAsyncResult* result, gpointer self) {
        const std::unique_ptr<std::shared_ptr<Attempt>> owner(static_cast<std::shared_ptr<Attempt>*>(self));
        Attempt& attempt = **owner;
        attempt.connection.reset(g_dbus_connection_new_for_address_finish(result, &attempt.error));
        attempt.isOver = true;
    }
};

std::string addressOf(const Bus& bus, ErrorSlot& error) {
    if (bus.kind() == Bus::Kind::address) return bus.address();
    gchar* found = g_dbus_address_get_for_bus_sync(
        bus.kind() == Bus::Kind::system ? G_BUS_TYPE_SYSTEM : G_BUS_TYPE_SESSION, nullptr, &error);
    std::string address = found ? found : "";
    g_free(found);
    return address;
}

gboolean markPassed(gpointer isPassed) {
    *static_cast<bool*>(isPassed) = true;
    return G_SOURCE_REMOVE;
}

}  // namespace

const char* nameOf(ErrorKind kind) {
    for (const ErrorName& known : errorNames)
        if (known.kind == kind) return known.name.data();
    return nameOf(ErrorKind::refused);
}

Error ErrorSlot::take() {
    if (!error_) return {ErrorKind::refused, "no reason was given"};
    const ErrorKind kind = kindOf(error_);
    g_dbus_error_strip_remote_error(error_);
    Error out{kind, error_->message};
    g_clear_error(&error_);
    return out;
}

Result<BusConnection> connect(const Bus& bus, std::chrono::milliseconds deadline, GMainContext* context) {
    ErrorSlot error;
    const std::string address = addressOf(bus, error);
    if (address.empty()) return Error{ErrorKind::noBus, error.take().text};

    g_main_context_push_thread_default(context);
    const auto attempt = std::make_shared<Attempt>();
    const Cancellable cancellable(g_cancellable_new());
    bool isPassed = false;
    const Source timer(g_timeout_source_new(static_cast<guint>(deadline.count())));
    g_source_set_callback(timer.get(), markPassed, &isPassed, nullptr);
    g_source_attach(timer.get(), context);
    g_dbus_connection_new_for_address(
        address.c_str(),
        static_cast<GDBusConnectionFlags>(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr,
        cancellable.get(),
        Attempt::finish,
        new std::shared_ptr<Attempt>(attempt));
    while (!attempt->isOver && !isPassed) g_main_context_iteration(context, TRUE);
    g_source_destroy(timer.get());
    g_cancellable_cancel(cancellable.get());
    g_main_context_pop_thread_default(context);
    if (attempt->connection) return std::move(attempt->connection);
    return Error{ErrorKind::noBus, isPassed ? "the bus did not answer in time" : attempt->error.take().text};
}

namespace {

std::optional<std::int64_t> integerOf(const std::string& digits) {
    std::int64_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto [parsed, error] = std::from_chars(digits.data(), end, value);
    if (error != std::errc() || parsed != end) return std::nullopt;
    return value;
}

GVariant* pack(const std::string& value, ValueKind kind) {
    switch (kind) {
        case ValueKind::data:
            return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, value.data(), value.size(), 1);
        case ValueKind::text: return g_variant_new_string(value.c_str());
        case ValueKind::integer: return g_variant_new_int64(integerOf(value).value_or(0));
    }
    return nullptr;
}

std::optional<std::string> unpack(GVariant* value, ValueKind kind) {
    gsize size = 0;
    if (kind == ValueKind::data && g_variant_is_of_type(value, G_VARIANT_TYPE_BYTESTRING)) {
        const auto* bytes = static_cast<const char*>(g_variant_get_fixed_array(value, &size, 1));
        return std::string(bytes, bytes + size);
    }
    if (kind == ValueKind::text && g_variant_is_of_type(value, G_VARIANT_TYPE_STRING))
        return g_variant_get_string(value, nullptr);
    if (kind == ValueKind::integer && g_variant_is_of_type(value, G_VARIANT_TYPE_INT64))
        return std::to_string(g_variant_get_int64(value));
    return std::nullopt;
}

}  // namespace

GVariant* pack(const Values& values, const std::vector<ValueKind>& kinds) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
    for (std::size_t i = 0; i < kinds.size(); ++i)
        g_variant_builder_add_value(&builder, pack(values[i], kinds[i]));
    return g_variant_builder_end(&builder);
}

std::optional<Values> unpack(GVariant* tuple, const std::vector<ValueKind>& kinds) {
    if (!g_variant_is_of_type(tuple, G_VARIANT_TYPE_TUPLE) || g_variant_n_children(tuple) != kinds.size())
        return std::nullopt;
    Values values;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const Variant child(g_variant_get_child_value(tuple, i));
        auto value = unpack(child.get(), kinds[i]);
        if (!value) return std::nullopt;
        values.push_back(*std::move(value));
    }
    return values;
}

std::optional<Error> faultOf(const Values& values, const std::vector<ValueKind>& kinds) {
    if (values.size() != kinds.size())
        return Error{ErrorKind::badPayload, "another number of values than the method has"};
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto& value = values[i];
        if (value.size() > largestPayload) return Error{ErrorKind::tooLarge, "a payload of more than 1 MiB"};
        if (kinds[i] == ValueKind::text &&
            !g_utf8_validate(value.data(), static_cast<gssize>(value.size()), nullptr))
            return Error{ErrorKind::badPayload, "a text that is not UTF-8"};
        if (kinds[i] == ValueKind::integer && !integerOf(value))
            return Error{ErrorKind::badPayload, "'" + value + "' is not an integer"};
    }
    return std::nullopt;
}

}  // namespace zelto::xpc
