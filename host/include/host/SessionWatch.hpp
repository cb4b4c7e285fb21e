#pragma once

#include <functional>
#include <memory>

#include "bus/Address.hpp"

namespace zelto::host {

/// Notices when nobody can see the screen although the windows stand on it as before: a screen saver or a
/// lock covers it, the session is in the background, or the machine goes to sleep. Told by the signals of
/// screen savers on the session's bus and of the login manager on the system's; what none of them tells
/// counts as seen. On the main loop; waits for no bus.
class SessionWatch {
  public:
    struct Seams {
        std::function<void(bool isSeen)> changed;
        /// The machine has slept.
        std::function<void()> woke;
    };
    SessionWatch(const bus::Address& session, const bus::Address& system, Seams seams);
    ~SessionWatch();
    SessionWatch(const SessionWatch&) = delete;
    SessionWatch& operator=(const SessionWatch&) = delete;

    /// Whatever a screen saver told that died meanwhile: somebody has moved the pointer over a widget.
    void somebodyIsThere();

  private:
    struct State;
    std::shared_ptr<State> state_;
};

}  // namespace zelto::host
