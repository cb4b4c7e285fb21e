#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

#include "bus/Connection.hpp"
#include "bus/Listener.hpp"
#include "shared/HelperProtocol.hpp"

// The helper's contract on a bus: the app's side and the helper's.

namespace zelto::helper {

/// The four operations as the bus sees them, carried out by `helper`. A configuration that does not decode is
/// refused, with the field's name, before it gets there.
bus::Interface helperInterface(shared::ZeltoHelperProtocol& helper);

/// The app's side. For one thread at a time.
class HelperConnection {
  public:
    explicit HelperConnection(
        bus::Address address, std::chrono::milliseconds deadline = std::chrono::milliseconds(10'000));

    bus::Result<shared::HelperStatus> status();
    /// The helper's text: empty when the configuration is in force, otherwise why it is not.
    bus::Result<std::string> setChargeConfig(const shared::ChargeConfig& config);
    bus::Result<std::string> setFanConfig(const shared::FanConfig& config);
    bus::Result<void> resetAll();

  private:
    template <class Config>
    bus::Result<std::string> set(const char* method, const Config& config);

    bus::Connection connection_;
    std::chrono::milliseconds deadline_;
};

struct HelperListenerOptions {
    bus::Address address;
    /// The users who may call.
    std::vector<uid_t> trusted;
    std::chrono::milliseconds deadline{10'000};
};

/// The helper's side: hands calls to `helper`, which must outlive the listener, on the listener's thread.
bus::Result<bus::Listener> listenAsHelper(shared::ZeltoHelperProtocol& helper, HelperListenerOptions options);

}  // namespace zelto::helper
