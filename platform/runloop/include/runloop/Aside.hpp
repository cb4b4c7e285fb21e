#pragma once

#include <functional>
#include <memory>

namespace zelto::runloop {

/// Runs `work` on a thread of its own, and then what it returned on the main thread, unless `life` has gone
/// by then. For what may wait for long, and for nobody else: a chip behind a slow bus, a folder of a network
/// that is gone. Where no thread can be had, it runs at once.
void runAside(std::weak_ptr<void> life, std::function<std::function<void()>()> work);

}  // namespace zelto::runloop
