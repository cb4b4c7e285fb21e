#include "bus/Client.hpp"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "DataOnBus.hpp"
#include "Handles.hpp"

namespace zelto::bus {
namespace {

/// Seconds until a bus that could not be reached is tried again; doubles up to the longest.
constexpr guint firstPause = 1, longestPause = 300;

/// What somebody wants to hear, on whichever connection there is.
struct Followed {
    std::function<guint(GDBusConnection*)> start;
    std::function<void(GDBusConnection*, guint)> stop;
    /// Called when the connection has gone.
    std::function<void()> lost = {};
    guint id = 0;
};

}  // namespace

struct Client::State : std::enable_shared_from_this<Client::State> {
    explicit State(Address wanted) : address(std::move(wanted)) {}
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    /// Nothing comes any more; what is under way finds nobody.
    void end() {
        isOver = true;
        g_cancellable_cancel(cancellable.get());
        if (retry != 0) g_source_remove(std::exchange(retry, 0));
        waiting.clear();
        if (connection) {
            g_signal_handlers_disconnect_by_data(connection.get(), this);
            for (auto& [number, each] : followed)
                if (each->id != 0) each->stop(connection.get(), each->id);
            g_dbus_connection_close(connection.get(), nullptr, nullptr, nullptr);
        }
        followed.clear();
        connection.reset();
    }

    void open() {
        if (isOpening || connection || isOver) return;
        isOpening = true;
        ErrorSlot error;
        gchar* text =
            address.kind() == Address::Kind::text
                ? g_strdup(address.text().c_str())
                : g_dbus_address_get_for_bus_sync(
                      address.kind() == Address::Kind::system ? G_BUS_TYPE_SYSTEM : G_BUS_TYPE_SESSION,
                      nullptr,
                      &error);
        if (!text) {
            failed(error.take());
            return;
        }
        g_dbus_connection_new_for_address(
            text,
            static_cast<GDBusConnectionFlags>(
                G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr,
            cancellable.get(),
            &onConnected,
            new std::weak_ptr<State>(weak_from_this()));
        g_free(text);
    }

    static void onConnected(GObject*, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<std::weak_ptr<State>> owner(static_cast<std::weak_ptr<State>*>(data));
        ErrorSlot error;
        BusConnection made(g_dbus_connection_new_for_address_finish(result, &error));
        const auto self = owner->lock();
        if (!self || self->isOver) return;
        if (made)
            self->opened(std::move(made));
        else
            self->failed(error.take());
    }

    void opened(BusConnection made) {
        isOpening = false;
        pause = 0;
        connection = std::move(made);
        g_signal_connect(connection.get(), "closed", G_CALLBACK(onClosed), this);
        // Followed first, so that what a call brings about is heard.
        for (auto& [number, each] : followed) each->id = each->start(connection.get());
        for (auto& call : std::exchange(waiting, {})) call(nullptr);
    }

    void failed(const Error& why) {
        isOpening = false;
        for (auto& call : std::exchange(waiting, {})) call(&why);
        if (!isOver && !followed.empty() && retry == 0) {
            pause = pause == 0 ? firstPause : std::min(pause * 2, longestPause);
            retry = g_timeout_add_seconds(
                pause,
                [](gpointer self) -> gboolean {
                    static_cast<State*>(self)->retry = 0;
                    static_cast<State*>(self)->open();
                    return G_SOURCE_REMOVE;
                },
                this);
        }
    }

    static void onClosed(GDBusConnection*, gboolean, GError*, gpointer data) {
        const auto self = static_cast<State*>(data)->shared_from_this();
        g_signal_handlers_disconnect_by_data(self->connection.get(), self.get());
        std::vector<std::function<void()>> told;
        for (auto& [number, each] : self->followed) {
            if (each->id != 0) each->stop(self->connection.get(), std::exchange(each->id, 0));
            if (each->lost) told.push_back(each->lost);
        }
        self->connection.reset();
        for (const auto& lost : told) lost();
        self->failed({ErrorKind::noBus, "the bus has gone away"});
    }

    void whenOpen(std::function<void(const Error*)> then) {
        if (connection) {
            then(nullptr);
            return;
        }
        waiting.push_back(std::move(then));
        open();
    }

    Subscription add(std::shared_ptr<Followed> each) {
        const std::uint64_t number = next++;
        if (connection) each->id = each->start(connection.get());
        followed.emplace(number, std::move(each));
        open();
        return {// Only to be something.
                this,
                [weak = weak_from_this(), number](void*) {
                    if (const auto self = weak.lock()) self->remove(number);
                }};
    }

    void remove(std::uint64_t number) {
        const auto found = followed.find(number);
        if (found == followed.end()) return;
        if (connection && found->second->id != 0) found->second->stop(connection.get(), found->second->id);
        followed.erase(found);
    }

    const Address address;
    const Cancellable cancellable{g_cancellable_new()};
    BusConnection connection = {};
    bool isOpening = false, isOver = false;
    guint retry = 0, pause = 0;
    std::vector<std::function<void(const Error*)>> waiting;
    std::map<std::uint64_t, std::shared_ptr<Followed>> followed;
    std::uint64_t next = 1;
};

namespace {

/// What another program tells of its objects may be anything.
bool isAddress(const Target& target) {
    return g_dbus_is_name(target.service.c_str()) && g_variant_is_object_path(target.path.c_str()) &&
           g_dbus_is_interface_name(target.interface.c_str()) && g_dbus_is_member_name(target.method.c_str());
}

/// A call that is under way, with whom to tell.
struct Pending {
    std::weak_ptr<void> life;
    Client::Reply reply;
};

void onReply(GObject* connection, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Pending> pending(static_cast<Pending*>(data));
    ErrorSlot error;
    GUnixFDList* descriptors = nullptr;
    const Variant results(g_dbus_connection_call_with_unix_fd_list_finish(
        G_DBUS_CONNECTION(connection), &descriptors, result, &error));
    const Handle<GUnixFDList, g_object_unref> owned(descriptors);
    if (pending->life.expired()) return;
    if (!results)
        pending->reply(error.take());
    else
        pending->reply(dataOf(results.get(), owned.get()));
}

}  // namespace

Client::Client(Address address) : state_(std::make_shared<State>(std::move(address))) {}
Client::Client(Client&&) noexcept = default;
Client::~Client() {
    if (state_) state_->end();
}

void Client::call(
    const Target& target, const std::string& signature, Data::List arguments, Reply reply,
    std::chrono::milliseconds deadline, bool startsService) {
    const auto packed = std::make_shared<Result<Variant>>(
        isAddress(target) ? variantOf(Data(std::move(arguments)), signature)
                          : Error{ErrorKind::badPayload, "no object could be at " + target.path});
    state_->whenOpen([state = state_.get(),
                      life = std::weak_ptr<void>(state_),
                      target,
                      packed,
                      deadline,
                      startsService,
                      reply = std::move(reply)](const Error* why) {
        if (why || !*packed) {
            reply(why ? *why : packed->fault());
            return;
        }
        g_dbus_connection_call_with_unix_fd_list(
            state->connection.get(),
            target.service.c_str(),
            target.path.c_str(),
            target.interface.c_str(),
            target.method.c_str(),
            packed->value().get(),
            nullptr,
            startsService ? G_DBUS_CALL_FLAGS_NONE : G_DBUS_CALL_FLAGS_NO_AUTO_START,
            static_cast<gint>(std::max<std::chrono::milliseconds::rep>(deadline.count(), 1)),
            nullptr,
            state->cancellable.get(),
            &onReply,
            new Pending{life, reply});
    });
}

Client::Subscription Client::follow(SignalMatch match, std::function<void(const Signal&)> came) {
    const auto each = std::make_shared<Followed>();
    using Came = std::function<void(const Signal&)>;
    const auto shared = std::make_shared<Came>(std::move(came));
    if (!match.path.empty() && !g_variant_is_object_path(match.path.c_str())) return each;
    each->start = [match = std::move(match), shared](GDBusConnection* connection) {
        const auto orAny = [](const std::string& text) { return text.empty() ? nullptr : text.c_str(); };
        return g_dbus_connection_signal_subscribe(
            connection,
            orAny(match.service),
            orAny(match.interface),
            orAny(match.name),
            orAny(match.path),
            nullptr,
            G_DBUS_SIGNAL_FLAGS_NONE,
            [](GDBusConnection*,
               const gchar*,
               const gchar* path,
               const gchar* interface,
               const gchar* name,
               GVariant* arguments,
               gpointer called) {
                // It may end itself.
                const auto kept = *static_cast<std::shared_ptr<Came>*>(called);
                if (const auto data = dataOf(arguments, nullptr)) (*kept)({path, interface, name, *data});
            },
            new std::shared_ptr<Came>(shared),
            [](gpointer called) { delete static_cast<std::shared_ptr<Came>*>(called); });
    };
    each->stop = g_dbus_connection_signal_unsubscribe;
    return state_->add(each);
}

Client::Subscription Client::watch(const std::string& name, std::function<void(bool)> changed) {
    const auto each = std::make_shared<Followed>();
    using Changed = std::function<void(bool)>;
    const auto shared = std::make_shared<Changed>(std::move(changed));
    each->start = [name, shared](GDBusConnection* connection) {
        return g_bus_watch_name_on_connection(
            connection,
            name.c_str(),
            G_BUS_NAME_WATCHER_FLAGS_NONE,
            [](GDBusConnection*, const gchar*, const gchar*, gpointer called) {
                const auto kept = *static_cast<std::shared_ptr<Changed>*>(called);
                (*kept)(true);
            },
            [](GDBusConnection*, const gchar*, gpointer called) {
                const auto kept = *static_cast<std::shared_ptr<Changed>*>(called);
                (*kept)(false);
            },
            new std::shared_ptr<Changed>(shared),
            [](gpointer called) { delete static_cast<std::shared_ptr<Changed>*>(called); });
    };
    each->stop = [](GDBusConnection*, guint id) { g_bus_unwatch_name(id); };
    each->lost = [shared] { (*shared)(false); };
    return state_->add(each);
}

}  // namespace zelto::bus
