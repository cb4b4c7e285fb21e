#include "helper/HelperInterface.hpp"

#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::helper {
namespace {

using bus::ErrorKind;

// A selector's first part is the method's name.
constexpr const char* statusMethod = "statusWithReply";
constexpr const char* chargeMethod = "setChargeConfig";
constexpr const char* fanMethod = "setFanConfig";
constexpr const char* resetMethod = "resetAllWithReply";

const std::string service(shared::HelperConstants::machService);

using Setter = void (shared::ZeltoHelperProtocol::*)(std::string, ReplyBlock<std::string>);

/// A row for an operation that takes a configuration.
template <class Config>
bus::Method setting(const char* name, shared::ZeltoHelperProtocol& helper, Setter set) {
    return bus::method(
        name,
        {"config"},
        {"refusal"},
        [&helper, set](ReplyBlock<bus::Result<std::string>> reply, const Bytes& config) {
            std::string data = config.content();
            if (const auto decoded = records::decodeJSON<Config>(data); !decoded) {
                reply(bus::Error{ErrorKind::badPayload, decoded.fault().text()});
                return;
            }
            const auto shared = std::make_shared<ReplyBlock<bus::Result<std::string>>>(std::move(reply));
            (helper.*set)(std::move(data), {[shared](std::string text) { (*shared)(std::move(text)); }, {}});
        });
}

}  // namespace

bus::Interface helperInterface(shared::ZeltoHelperProtocol& helper) {
    using Status = ReplyBlock<bus::Result<Bytes>>;
    using Reset = ReplyBlock<bus::Result<void>>;
    return {
        .service = service,
        .methods = {
            bus::method(
                statusMethod,
                {},
                {"status"},
                [&helper](Status reply) {
                    const auto shared = std::make_shared<Status>(std::move(reply));
                    helper.statusWithReply(
                        {[shared](const std::string& data) { (*shared)(Bytes::of(data)); }, {}});
                }),
            setting<shared::ChargeConfig>(
                chargeMethod, helper, &shared::ZeltoHelperProtocol::setChargeConfig),
            setting<shared::FanConfig>(fanMethod, helper, &shared::ZeltoHelperProtocol::setFanConfig),
            bus::method(resetMethod, {}, {}, [&helper](Reset reply) {
                const auto shared = std::make_shared<Reset>(std::move(reply));
                helper.resetAllWithReply({[shared] { (*shared)({}); }, {}});
            })}};
}

HelperConnection::HelperConnection(bus::Address address, std::chrono::milliseconds deadline)
    : connection_(std::move(address), service), deadline_(deadline) {}

bus::Result<shared::HelperStatus> HelperConnection::status() {
    const auto data = connection_.call<Bytes>(statusMethod, deadline_);
    if (!data) return data.fault();
    auto status = records::decodeJSON<shared::HelperStatus>(data->content());
    if (!status)
        return bus::Error{
            ErrorKind::badPayload, "the helper's status does not decode: " + status.fault().text()};
    return *std::move(status);
}

template <class Config>
bus::Result<std::string> HelperConnection::set(const char* method, const Config& config) {
    const auto data = records::encodeJSON(config);
    if (!data) return bus::Error{ErrorKind::badPayload, "a number that is not finite"};
    return connection_.call<std::string>(method, deadline_, Bytes::of(*data));
}

bus::Result<std::string> HelperConnection::setChargeConfig(const shared::ChargeConfig& config) {
    return set(chargeMethod, config);
}

bus::Result<std::string> HelperConnection::setFanConfig(const shared::FanConfig& config) {
    return set(fanMethod, config);
}

bus::Result<void> HelperConnection::resetAll() {
    return connection_.call<void>(resetMethod, deadline_);
}

bus::Result<bus::Listener> listenAsHelper(
    shared::ZeltoHelperProtocol& helper, HelperListenerOptions options) {
    return bus::Listener::start(
        {.address = std::move(options.address),
         .interface = helperInterface(helper),
         .trusted = std::move(options.trusted),
         .deadline = options.deadline});
}

}  // namespace zelto::helper
