#include "runloop/Aside.hpp"

#include <thread>
#include <utility>

#include <system_error>

#include "runloop/MainLoop.hpp"

namespace zelto::runloop {

void runAside(std::weak_ptr<void> life, std::function<std::function<void()>()> work) {
    const auto run = [life = std::move(life), work = std::move(work)] {
        postToMainThread([life, then = work()] {
            if (!life.expired()) then();
        });
    };
    try {
        std::thread(run).detach();
    } catch (const std::system_error&) {
        run();
    }
}

}  // namespace zelto::runloop
