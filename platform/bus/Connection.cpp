#include "bus/Connection.hpp"

#include <algorithm>

#include "Handles.hpp"

namespace zelto::bus {

using Clock = std::chrono::steady_clock;

struct Connection::State {
    Address address;
    std::string service;
    MainContext context{g_main_context_new()};
    BusConnection connection = {};

    bool isOpen() const { return connection && !g_dbus_connection_is_closed(connection.get()); }
    void disconnect() {
        if (isOpen()) g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
        connection.reset();
    }
};

Connection::Connection(Address address, std::string service)
    : state_(new State{.address = std::move(address), .service = std::move(service)}) {}
Connection::Connection(Connection&&) noexcept = default;
Connection::~Connection() {
    if (state_) state_->disconnect();
}

Result<Values> Connection::call(
    const std::string& method, const Values& arguments, std::chrono::milliseconds allowed) {
    const auto deadline = Clock::now() + allowed;
    if (auto checked = check(arguments); !checked) return std::move(checked).fault();

    if (!state_->isOpen()) {
        auto connected = connect(state_->address, allowed, state_->context.get());
        if (!connected) return std::move(connected).fault();
        state_->connection = *std::move(connected);
    }
    // A deadline of 0 would mean the library's own.
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    ErrorSlot error;
    const Variant reply(g_dbus_connection_call_sync(
        state_->connection.get(),
        state_->service.c_str(),
        objectPathOf(state_->service).c_str(),
        state_->service.c_str(),
        method.c_str(),
        pack(arguments),
        nullptr,
        G_DBUS_CALL_FLAGS_NONE,
        static_cast<gint>(std::max<decltype(left.count())>(left.count(), 1)),
        nullptr,
        &error));
    if (!reply) return error.take();
    auto results = unpack(reply.get());
    if (!results) return results;
    if (auto checked = check(*results); !checked) return std::move(checked).fault();
    return results;
}

}  // namespace zelto::bus
