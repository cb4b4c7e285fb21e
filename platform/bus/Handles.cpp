#include "Handles.hpp"

#include <array>
#include <string_view>

namespace zelto::bus {
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

Result<std::string> textOf(const Address& address) {
    if (address.kind() == Address::Kind::text) return address.text();
    ErrorSlot error;
    gchar* found = g_dbus_address_get_for_bus_sync(
        address.kind() == Address::Kind::system ? G_BUS_TYPE_SYSTEM : G_BUS_TYPE_SESSION, nullptr, &error);
    if (!found) return Error{ErrorKind::noBus, error.take().text};
    std::string text = found;
    g_free(found);
    return text;
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

Result<BusConnection> connect(
    const Address& address, std::chrono::milliseconds deadline, GMainContext* context) {
    const auto text = textOf(address);
    if (!text) return text.fault();

    g_main_context_push_thread_default(context);
    const auto attempt = std::make_shared<Attempt>();
    const Cancellable cancellable(g_cancellable_new());
    bool isPassed = false;
    const Source timer(g_timeout_source_new(static_cast<guint>(deadline.count())));
    g_source_set_callback(timer.get(), markPassed, &isPassed, nullptr);
    g_source_attach(timer.get(), context);
    g_dbus_connection_new_for_address(
        text->c_str(),
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

GVariant* pack(const std::string& text) {
    return g_variant_new_string(text.c_str());
}
GVariant* pack(std::int64_t integer) {
    return g_variant_new_int64(integer);
}
GVariant* pack(const Bytes& bytes) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, bytes.bytes.data(), bytes.bytes.size(), 1);
}

Result<Value> unpackOne(GVariant* value) {
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING))
        return Value(std::string(g_variant_get_string(value, nullptr)));
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT64))
        return Value(std::int64_t{g_variant_get_int64(value)});
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE_BYTESTRING))
        return Error{
            ErrorKind::badPayload, std::string("a value of type ") + g_variant_get_type_string(value)};
    gsize size = 0;
    const auto* bytes = static_cast<const std::uint8_t*>(g_variant_get_fixed_array(value, &size, 1));
    return Value(Bytes{{bytes, bytes + size}});
}

Result<void> checkSize(std::size_t size) {
    if (size > largestPayload) return Error{ErrorKind::tooLarge, "a payload of more than 1 MiB"};
    return {};
}
Result<void> checkOne(const std::string& text) {
    if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        return Error{ErrorKind::badPayload, "a text that is not UTF-8"};
    return checkSize(text.size());
}
Result<void> checkOne(std::int64_t) {
    return {};
}
Result<void> checkOne(const Bytes& bytes) {
    return checkSize(bytes.bytes.size());
}

}  // namespace

GVariant* pack(const Values& values) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_TUPLE);
    for (const Value& value : values)
        g_variant_builder_add_value(&builder, std::visit([](const auto& each) { return pack(each); }, value));
    return g_variant_builder_end(&builder);
}

Result<Values> unpack(GVariant* tuple) {
    Values values;
    for (gsize i = 0; i < g_variant_n_children(tuple); ++i) {
        const Variant child(g_variant_get_child_value(tuple, i));
        auto value = unpackOne(child.get());
        if (!value) return std::move(value).fault();
        values.push_back(*std::move(value));
    }
    return values;
}

Result<void> check(const Values& values) {
    for (const Value& value : values)
        if (auto checked = std::visit([](const auto& each) { return checkOne(each); }, value); !checked)
            return checked;
    return {};
}

}  // namespace zelto::bus
