#include "platform/xpc/Connection.hpp"

#include <algorithm>

#include "platform/xpc/Handles.hpp"

namespace zelto::xpc {

using Clock = std::chrono::steady_clock;

struct Connection::State {
    Bus bus;
    Interface interface;
    MainContext context{g_main_context_new()};
    BusConnection connection = {};

    bool isOpen() const { return connection && !g_dbus_connection_is_closed(connection.get()); }
    void disconnect() {
        if (isOpen()) g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
        connection.reset();
    }
};

Connection::Connection(Bus bus, Interface interface)
    : state_(new State{.bus = std::move(bus), .interface = std::move(interface)}) {}
Connection::Connection(Connection&&) noexcept = default;
Connection::~Connection() {
    if (state_) state_->disconnect();
}

Result<Values> Connection::call(
    const std::string& name, const Values& arguments, std::chrono::milliseconds allowed) {
    const auto deadline = Clock::now() + allowed;
    const auto method = std::ranges::find(state_->interface.methods, name, &Method::name);
    if (method == state_->interface.methods.end())
        return Error{ErrorKind::refused, "there is no method '" + name + "'"};
    if (auto fault = faultOf(arguments, method->arguments)) return *std::move(fault);

    if (!state_->isOpen()) {
        auto connected = connect(state_->bus, allowed, state_->context.get());
        if (auto* error = std::get_if<Error>(&connected)) return std::move(*error);
        state_->connection = std::get<BusConnection>(std::move(connected));
    }
    // A deadline of 0 would mean the library's own.
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    const Interface& interface = state_->interface;
    ErrorSlot error;
    const Variant reply(g_dbus_connection_call_sync(
        state_->connection.get(),
        interface.service.c_str(),
        interface.objectPath().c_str(),
        interface.service.c_str(),
        name.c_str(),
        pack(arguments, method->arguments),
        nullptr,
        G_DBUS_CALL_FLAGS_NONE,
        static_cast<gint>(std::max<decltype(left.count())>(left.count(), 1)),
        nullptr,
        &error));
    if (!reply) return error.take();
    auto results = unpack(reply.get(), method->results);
    if (!results) return Error{ErrorKind::badPayload, "an answer of another shape than the method has"};
    if (auto fault = faultOf(*results, method->results)) return *std::move(fault);
    return *std::move(results);
}

}  // namespace zelto::xpc
