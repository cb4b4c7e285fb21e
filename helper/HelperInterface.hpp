#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "platform/xpc/Connection.hpp"
#include "platform/xpc/Listener.hpp"
#include "shared/HelperProtocol.hpp"

// The helper's contract on a bus: the app's side and the helper's.

namespace zelto {

/// The four operations as the bus sees them.
const xpc::Interface& helperInterface();

/// The app's side. For one thread at a time.
class HelperConnection {
  public:
    explicit HelperConnection(
        xpc::Bus bus, std::chrono::milliseconds deadline = std::chrono::milliseconds(10'000));

    xpc::Result<HelperStatus> status();
    /// The helper's text: empty when the configuration is in force, otherwise why it is not.
    xpc::Result<std::string> setChargeConfig(const ChargeConfig& config);
    xpc::Result<std::string> setFanConfig(const FanConfig& config);
    std::optional<xpc::Error> resetAll();

  private:
    xpc::Result<std::string> set(const std::string& method, const std::optional<std::string>& data);

    xpc::Connection connection_;
    std::chrono::milliseconds deadline_;
};

struct HelperListenerOptions {
    xpc::Bus bus;
    /// The users who may call.
    std::vector<uid_t> trusted;
    std::chrono::milliseconds deadline{10'000};
};

/// The helper's side: hands calls to `helper`, which must outlive the listener, on the listener's thread. A
/// configuration that does not decode is refused, with the field's name, before it gets there.
xpc::Result<xpc::Listener> listenAsHelper(ZeltoHelperProtocol& helper, HelperListenerOptions options);

}  // namespace zelto
