#include "host/BusPresence.hpp"

#include <utility>

namespace zelto::host {

BusPresence::BusPresence(bus::Address address, DesktopActions actions, runloop::Log log)
    : address_(std::move(address)), actions_(std::move(actions)), log_(std::move(log)) {
    actions_.isSeen = [isSeen = isSeen_] { return isSeen->load(); };
}

void BusPresence::setSeen(bool isSeen) {
    if (isSeen_->exchange(isSeen) != isSeen && listener_) listener_->changed("seen");
}

bus::Result<void> BusPresence::join() {
    const auto lost = [this] {
        runloop::postToMainThread([this] {
            if (!listener_) return;
            log_("the message bus has gone away; other programs cannot reach the widgets until it is back");
            listener_.reset();
            rejoin();
        });
    };
    auto listener = listenAsDesktop(address_, actions_, runloop::postToMainThread, lost);
    if (!listener) return std::move(listener).fault();
    listener_.emplace(*std::move(listener));
    return {};
}

void BusPresence::rejoin() {
    backoff_.failed();
    retry_ = runloop::MainSource::after(backoff_.pause(), [this] { tryAgain(); });
}

void BusPresence::tryAgain() {
    const auto joined = join();
    if (joined) {
        log_.info("the message bus is back; other programs can reach the widgets");
        backoff_ = runloop::Backoff(firstPause, longestPause);
        why_.clear();
        return;
    }
    // One cause is told once.
    if (std::exchange(why_, joined.fault().text) != joined.fault().text)
        log_("without a message bus, other programs cannot reach the widgets: " + why_);
    rejoin();
}

void BusPresence::leave() {
    retry_.reset();
    listener_.reset();
}

}  // namespace zelto::host
