#include "bus/Listener.hpp"

#include <algorithm>
#include <atomic>
#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "Handles.hpp"

namespace zelto::bus {
namespace {

constexpr std::chrono::milliseconds busDeadline{5000};
/// Calls that wait for their answers.
constexpr std::size_t mostInFlight = 64;

Variant askBus(GDBusConnection* connection, const char* method, GVariant* arguments, ErrorSlot& error) {
    return Variant(g_dbus_connection_call_sync(
        connection,
        "org.freedesktop.DBus",
        "/org/freedesktop/DBus",
        "org.freedesktop.DBus",
        method,
        arguments,
        G_VARIANT_TYPE("(u)"),
        G_DBUS_CALL_FLAGS_NONE,
        busDeadline.count(),
        nullptr,
        &error));
}

std::optional<uid_t> userOf(GDBusConnection* connection, const char* caller) {
    ErrorSlot error;
    const Variant reply = askBus(connection, "GetConnectionUnixUser", g_variant_new("(s)", caller), error);
    if (!reply) return std::nullopt;
    guint32 user = 0;
    g_variant_get(reply.get(), "(u)", &user);
    return user;
}

/// A call that waits for its answer. Whoever comes first answers it: the handler, or the deadline.
class Call {
  public:
    /// `inFlight` counts the calls that wait.
    Call(GDBusMethodInvocation* invocation, std::shared_ptr<std::atomic<std::size_t>> inFlight)
        : invocation_(invocation), inFlight_(std::move(inFlight)) {
        ++*inFlight_;
    }

    void startTimer(std::chrono::milliseconds deadline, GMainContext* context, std::weak_ptr<Call> self) {
        timer_.reset(g_timeout_source_new(static_cast<guint>(deadline.count())));
        g_source_set_callback(
            timer_.get(),
            [](gpointer call) -> gboolean {
                if (const auto waiting = static_cast<std::weak_ptr<Call>*>(call)->lock())
                    waiting->answer(Error{ErrorKind::deadlinePassed, "the answer took too long"});
                return G_SOURCE_REMOVE;
            },
            new std::weak_ptr<Call>(std::move(self)),
            [](gpointer call) { delete static_cast<std::weak_ptr<Call>*>(call); });
        g_source_attach(timer_.get(), context);
    }

    void answer(const Result<Values>& result) {
        if (isAnswered_.exchange(true)) return;
        if (timer_) g_source_destroy(timer_.get());
        --*inFlight_;
        const auto checked = result ? check(*result) : Result<void>(result.fault());
        // Both take over the library's reference to the call.
        if (checked)
            g_dbus_method_invocation_return_value(invocation_, pack(*result));
        else
            g_dbus_method_invocation_return_dbus_error(
                invocation_, nameOf(checked.fault().kind), checked.fault().text.c_str());
    }

  private:
    GDBusMethodInvocation* invocation_;
    const std::shared_ptr<std::atomic<std::size_t>> inFlight_;
    std::atomic<bool> isAnswered_ = false;
    Source timer_ = {};
};

}  // namespace

/// Who calls, by their connections' names, which no bus gives twice.
class Callers {
  public:
    /// Counts for the connection, and for all of its user's to come.
    void refused(const std::string& name) {
        const std::lock_guard lock(mutex_);
        Caller& caller = callers_[name];
        ++caller.refusals;
        if (caller.user && ++refusedUsers_[*caller.user] >= mostUserRefusals) caller.refusals = mostRefusals;
    }
    bool isMuted(const std::string& name) const {
        const std::lock_guard lock(mutex_);
        const auto caller = callers_.find(name);
        return caller != callers_.end() && caller->second.refusals >= mostRefusals;
    }
    std::optional<uid_t> user(const std::string& name) const {
        const std::lock_guard lock(mutex_);
        const auto caller = callers_.find(name);
        return caller == callers_.end() ? std::nullopt : caller->second.user;
    }
    void setUser(const std::string& name, uid_t user) {
        const std::lock_guard lock(mutex_);
        if (callers_.size() >= mostCallers) forget();
        callers_[name].user = user;
    }

  private:
    /// Whoever was refused so often gets no answer any more.
    static constexpr std::size_t mostRefusals = 8, mostUserRefusals = 64, mostCallers = 512;
    struct Caller {
        std::optional<uid_t> user = {};
        std::size_t refusals = 0;
    };
    void forget() {
        std::erase_if(callers_, [](const auto& each) { return each.second.refusals < mostRefusals; });
        if (callers_.size() >= mostCallers) callers_.clear();
    }

    mutable std::mutex mutex_;
    std::map<std::string, Caller> callers_;
    std::map<uid_t, std::size_t> refusedUsers_;
};

struct Listener::State {
    explicit State(ListenerOptions wanted) : options(std::move(wanted)) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() {
        if (!thread.joinable()) return;
        // Queued, so that it also ends a loop that has not begun yet.
        const Source quit(g_idle_source_new());
        g_source_set_callback(
            quit.get(),
            [](gpointer running) -> gboolean {
                g_main_loop_quit(static_cast<GMainLoop*>(running));
                return G_SOURCE_REMOVE;
            },
            loop.get(),
            nullptr);
        g_source_attach(quit.get(), context.get());
        thread.join();
    }

    /// The thread's whole life; tells through `started` how its beginning went.
    void run(std::promise<Result<void>>& started) {
        g_main_context_push_thread_default(context.get());
        auto offered = offer();
        const bool runs = offered.has_value();
        started.set_value(std::move(offered));
        if (runs) g_main_loop_run(loop.get());
        if (connection) {
            g_signal_handlers_disconnect_by_data(connection.get(), this);
            if (filter != 0) g_dbus_connection_remove_filter(connection.get(), filter);
            if (registration != 0) g_dbus_connection_unregister_object(connection.get(), registration);
            // The answer to the call that ends the program may still be on its way.
            g_dbus_connection_flush_sync(connection.get(), nullptr, nullptr);
            g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
        }
        g_main_context_pop_thread_default(context.get());
    }

    Result<void> offer() {
        auto connected = connect(options.address, busDeadline, context.get());
        if (!connected) return std::move(connected).fault();
        connection = *std::move(connected);
        g_signal_connect(connection.get(), "closed", G_CALLBACK(onClosed), this);
        // The library may be in the middle of a message when the filter is taken away.
        filter = g_dbus_connection_add_filter(
            connection.get(), &onMessage, new std::shared_ptr<Callers>(callers), [](gpointer kept) {
                delete static_cast<std::shared_ptr<Callers>*>(kept);
            });

        ErrorSlot error;
        description.reset(g_dbus_node_info_new_for_xml(options.interface.introspection().c_str(), &error));
        if (!description) return error.take();
        registration = g_dbus_connection_register_object(
            connection.get(),
            objectPathOf(options.interface.service).c_str(),
            description->interfaces[0],
            &callbacks,
            this,
            nullptr,
            &error);
        if (registration == 0) return error.take();

        // Once the name is ours, calls come; so it is taken last.
        constexpr guint32 doNotQueue = 4, isOwner = 1;
        const Variant reply = askBus(
            connection.get(),
            "RequestName",
            g_variant_new("(su)", options.interface.service.c_str(), doNotQueue),
            error);
        if (!reply) return error.take();
        guint32 outcome = 0;
        g_variant_get(reply.get(), "(u)", &outcome);
        if (outcome != isOwner)
            return Error{ErrorKind::nameTaken, options.interface.service + " is offered by another process"};
        return {};
    }

    static void onClosed(GDBusConnection*, gboolean, GError*, gpointer self) noexcept {
        if (const auto& lost = static_cast<State*>(self)->options.lost) lost();
    }

    /// On the library's own thread, before a message costs more than its reading.
    static GDBusMessage* onMessage(
        GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer callers) noexcept {
        if (isIncoming == FALSE ||
            g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL)
            return message;
        const char* sender = g_dbus_message_get_sender(message);
        if (!sender || !(*static_cast<std::shared_ptr<Callers>*>(callers))->isMuted(sender)) return message;
        g_object_unref(message);
        return nullptr;
    }

    static void onCall(
        GDBusConnection*, const gchar* caller, const gchar*, const gchar*, const gchar* name,
        GVariant* arguments, GDBusMethodInvocation* invocation, gpointer self) noexcept {
        static_cast<State*>(self)->handle(caller, name, arguments, invocation);
    }

    static GVariant* onGet(
        GDBusConnection*, const gchar* caller, const gchar*, const gchar*, const gchar* name, GError** error,
        gpointer self) noexcept {
        return static_cast<State*>(self)->get(caller, name, error);
    }

    GVariant* get(const char* caller, const std::string& name, GError** error) {
        if (!isTrusted(caller)) {
            g_set_error(
                error,
                G_DBUS_ERROR,
                G_DBUS_ERROR_ACCESS_DENIED,
                "this user may not ask %s",
                options.interface.service.c_str());
            return nullptr;
        }
        const auto property = std::ranges::find(options.interface.properties, name, &Property::name);
        return g_variant_new_boolean(property->value() ? TRUE : FALSE);
    }

    bool isTrusted(const char* caller) {
        auto user = callers->user(caller);
        if (!user) {
            user = userOf(connection.get(), caller);
            if (user) callers->setUser(caller, *user);
        }
        if (user && std::ranges::find(options.trusted, *user) != options.trusted.end()) return true;
        callers->refused(caller);
        return false;
    }

    void changed(std::string_view name) {
        const auto property = std::ranges::find(options.interface.properties, name, &Property::name);
        GVariantBuilder values;
        g_variant_builder_init(&values, G_VARIANT_TYPE("a{sv}"));
        g_variant_builder_add(
            &values,
            "{sv}",
            std::string(name).c_str(),
            g_variant_new_boolean(property->value() ? TRUE : FALSE));
        g_dbus_connection_emit_signal(
            connection.get(),
            nullptr,
            objectPathOf(options.interface.service).c_str(),
            "org.freedesktop.DBus.Properties",
            "PropertiesChanged",
            g_variant_new("(sa{sv}as)", options.interface.service.c_str(), &values, nullptr),
            nullptr);
    }

    void handle(
        const char* caller, const std::string& name, GVariant* arguments, GDBusMethodInvocation* invocation) {
        // The library has made sure that the method exists and that the arguments have its types.
        const auto method = std::ranges::find(options.interface.methods, name, &Method::name);
        if (callers->isMuted(caller)) {
            g_object_unref(invocation);
            return;
        }
        const auto call = std::make_shared<Call>(invocation, inFlight);
        if (!isTrusted(caller)) {
            call->answer(
                Error{ErrorKind::accessDenied, "this user may not call " + options.interface.service});
            return;
        }
        if (*inFlight > mostInFlight) {
            call->answer(Error{ErrorKind::refused, "too many calls wait for their answers"});
            return;
        }
        auto values = unpack(arguments);
        if (const auto checked = values ? check(*values) : Result<void>(values.fault()); !checked) {
            call->answer(checked.fault());
            return;
        }
        call->startTimer(options.deadline, context.get(), call);
        const auto answer = std::make_shared<Answer>(
            [call](const Result<Values>& result) { call->answer(result); },
            [call] {
                call->answer(Error{ErrorKind::refused, "the call was left unanswered"});
            });
        auto perform = [handler = method->handler, values = *std::move(values), answer]() mutable {
            handler(std::move(values), std::move(*answer));
        };
        if (options.dispatch)
            options.dispatch(perform);
        else
            perform();
    }

    static constexpr GDBusInterfaceVTable callbacks{&onCall, &onGet, nullptr, {}};

    ListenerOptions options;
    MainContext context{g_main_context_new()};
    MainLoop loop{g_main_loop_new(context.get(), FALSE)};
    BusConnection connection = {};
    NodeInfo description = {};
    guint registration = 0, filter = 0;
    const std::shared_ptr<Callers> callers = std::make_shared<Callers>();
    const std::shared_ptr<std::atomic<std::size_t>> inFlight = std::make_shared<std::atomic<std::size_t>>(0);
    std::thread thread = {};
};

Result<Listener> Listener::start(ListenerOptions options) {
    auto state = std::make_unique<State>(std::move(options));
    std::promise<Result<void>> started;
    auto outcome = started.get_future();
    state->thread = std::thread([&started, owner = state.get()] { owner->run(started); });
    if (auto offered = outcome.get(); !offered) {
        state->thread.join();
        return std::move(offered).fault();
    }
    return Listener(std::move(state));
}

Listener::Listener(std::unique_ptr<State> state) : state_(std::move(state)) {}
Listener::Listener(Listener&&) noexcept = default;
Listener& Listener::operator=(Listener&&) noexcept = default;
Listener::~Listener() = default;

void Listener::changed(std::string_view property) {
    state_->changed(property);
}

void Listener::send(std::string_view signal, const Values& arguments) {
    if (!check(arguments)) return;
    const std::string& service = state_->options.interface.service;
    g_dbus_connection_emit_signal(
        state_->connection.get(),
        nullptr,
        objectPathOf(service).c_str(),
        service.c_str(),
        std::string(signal).c_str(),
        pack(arguments),
        nullptr);
}

}  // namespace zelto::bus
