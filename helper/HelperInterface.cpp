#include "helper/HelperInterface.hpp"

#include "platform/foundation/JSONDecoder.hpp"
#include "platform/foundation/JSONEncoder.hpp"

namespace zelto {
namespace {

using xpc::ErrorKind;
using xpc::ValueKind;
using xpc::Values;

// A selector's first part is the method's name.
constexpr const char* statusMethod = "statusWithReply";
constexpr const char* chargeMethod = "setChargeConfig";
constexpr const char* fanMethod = "setFanConfig";
constexpr const char* resetMethod = "resetAllWithReply";

template <class Config>
std::optional<xpc::Error> faultOf(const std::string& data) {
    DecodingError error;
    if (decodeJSON<Config>(data, &error)) return std::nullopt;
    return xpc::Error{ErrorKind::badPayload, error.text()};
}

/// An answer whose results are the operation's own.
template <class... Texts>
ReplyBlock<Texts...> replyThrough(xpc::Answer answer) {
    const auto shared = std::make_shared<xpc::Answer>(std::move(answer));
    return ReplyBlock<Texts...>([shared](Texts... texts) { (*shared)(Values{std::move(texts)...}); }, {});
}

}  // namespace

const xpc::Interface& helperInterface() {
    static const xpc::Interface interface {
        .service = std::string(HelperConstants::machService), .methods = {
            {statusMethod, {}, {ValueKind::data}},
            {chargeMethod, {ValueKind::data}, {ValueKind::text}},
            {fanMethod, {ValueKind::data}, {ValueKind::text}},
            {resetMethod, {}, {}}
        }
    };
    return interface;
}

HelperConnection::HelperConnection(xpc::Bus bus, std::chrono::milliseconds deadline)
    : connection_(std::move(bus), helperInterface()), deadline_(deadline) {}

xpc::Result<HelperStatus> HelperConnection::status() {
    auto outcome = connection_.call(statusMethod, {}, deadline_);
    if (auto* error = std::get_if<xpc::Error>(&outcome)) return std::move(*error);
    DecodingError error;
    auto status = decodeJSON<HelperStatus>(std::get<Values>(outcome).front(), &error);
    if (!status)
        return xpc::Error{ErrorKind::badPayload, "the helper's status does not decode: " + error.text()};
    return *std::move(status);
}

xpc::Result<std::string> HelperConnection::set(
    const std::string& method, const std::optional<std::string>& data) {
    if (!data) return xpc::Error{ErrorKind::badPayload, "a number that is not finite"};
    auto outcome = connection_.call(method, {*data}, deadline_);
    if (auto* error = std::get_if<xpc::Error>(&outcome)) return std::move(*error);
    return std::move(std::get<Values>(outcome).front());
}

xpc::Result<std::string> HelperConnection::setChargeConfig(const ChargeConfig& config) {
    return set(chargeMethod, encodeJSON(config));
}

xpc::Result<std::string> HelperConnection::setFanConfig(const FanConfig& config) {
    return set(fanMethod, encodeJSON(config));
}

std::optional<xpc::Error> HelperConnection::resetAll() {
    auto outcome = connection_.call(resetMethod, {}, deadline_);
    if (auto* error = std::get_if<xpc::Error>(&outcome)) return std::move(*error);
    return std::nullopt;
}

xpc::Result<xpc::Listener> listenAsHelper(ZeltoHelperProtocol& helper, HelperListenerOptions options) {
    const auto handler = [&helper](const std::string& method, Values arguments, xpc::Answer answer) {
        if (method == statusMethod) {
            helper.statusWithReply(replyThrough<std::string>(std::move(answer)));
        } else if (method == resetMethod) {
            helper.resetAllWithReply(replyThrough<>(std::move(answer)));
        } else {
            const bool isCharge = method == chargeMethod;
            std::string& data = arguments.front();
            if (auto fault = isCharge ? faultOf<ChargeConfig>(data) : faultOf<FanConfig>(data)) {
                answer(*std::move(fault));
                return;
            }
            const auto set =
                isCharge ? &ZeltoHelperProtocol::setChargeConfig : &ZeltoHelperProtocol::setFanConfig;
            (helper.*set)(std::move(data), replyThrough<std::string>(std::move(answer)));
        }
    };
    return xpc::Listener::start(
        {.bus = std::move(options.bus),
         .interface = helperInterface(),
         .trusted = std::move(options.trusted),
         .handler = handler,
         .deadline = options.deadline});
}

}  // namespace zelto
