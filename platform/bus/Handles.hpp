#pragma once

// What the files of this room share: owners for the bus library's objects, and its errors as ours.

#include <chrono>

#include <gio/gio.h>

#include "bus/Address.hpp"
#include "bus/Interface.hpp"
#include "foundation/Handle.hpp"

namespace zelto::bus {

using BusConnection = Handle<GDBusConnection, g_object_unref>;
using Variant = Handle<GVariant, g_variant_unref>;
using MainContext = Handle<GMainContext, g_main_context_unref>;
using MainLoop = Handle<GMainLoop, g_main_loop_unref>;
using Cancellable = Handle<GCancellable, g_object_unref>;
using NodeInfo = Handle<GDBusNodeInfo, g_dbus_node_info_unref>;
using Source = Handle<GSource, g_source_unref>;

/// Receives the library's errors.
class ErrorSlot {
  public:
    ErrorSlot() = default;
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;
    ~ErrorSlot() { g_clear_error(&error_); }

    GError** operator&() { return &error_; }
    /// The error in our terms.
    Error take();

  private:
    GError* error_ = nullptr;
};

/// The name under which an error travels.
const char* nameOf(ErrorKind kind);

/// A connection of our own to a message bus. Its messages are dispatched in `context`, which the calling
/// thread must not be running.
Result<BusConnection> connect(
    const Address& address, std::chrono::milliseconds deadline, GMainContext* context);

/// A tuple of arguments or results, which have been checked.
GVariant* pack(const Values& values);
/// The other way; refuses types that do not travel.
Result<Values> unpack(GVariant* tuple);

/// Refuses texts that are not UTF-8 and payloads that are too large.
Result<void> check(const Values& values);

}  // namespace zelto::bus
