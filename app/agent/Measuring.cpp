#include "agent/Measuring.hpp"

#include <algorithm>
#include <utility>

#include "runloop/Aside.hpp"

namespace zelto::agent {

/// Called when nobody holds it any more, or before.
struct Measuring::Round {
    explicit Round(std::function<void()> wanted) : done(std::move(wanted)) {}
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() { end(); }
    void end() {
        if (const auto called = std::exchange(done, nullptr)) called();
    }

    std::function<void()> done;
};

Measuring::Measuring(Seams seams) : seams_(std::move(seams)) {
    for (const sources::Part& part : seams_.parts) states_.push_back({part});
}

void Measuring::refresh(std::function<void()> done) {
    const auto round = std::make_shared<Round>([this, done = std::move(done), life = std::weak_ptr(life_)] {
        if (life.expired()) return;
        tooLate_.reset();
        done();
    });
    for (State& state : states_) begin(state, round);
    tooLate_ = runloop::MainSource::after(longestWait, [this, weak = std::weak_ptr(round)] {
        const auto late = weak.lock();
        if (!late) return;
        for (State& state : states_) {
            if (state.isRunning && !std::exchange(state.isSlow, true))
                seams_.log("reading the " + state.part.name + " takes long; the rest goes on without it");
        }
        late->end();
    });
}

void Measuring::refresh(const std::string& part) {
    const auto found = std::ranges::find(states_, part, [](const State& state) { return state.part.name; });
    if (found != states_.end()) begin(*found, nullptr);
}

void Measuring::begin(State& state, const std::shared_ptr<Round>& round) {
    if (std::exchange(state.isRunning, true)) return;
    runloop::runAside(
        life_,
        [this, &state, work = state.part.begin(), round = std::shared_ptr<Round>(round)]() mutable
        -> std::function<void()> {
            // Given away wholly: the round ends on the main thread, not with this function on its own.
            return [this, &state, change = work(), round = std::move(round)] {
                state.isRunning = state.isSlow = false;
                seams_.change(change);
            };
        });
}

std::vector<std::string> Measuring::slow() const {
    std::vector<std::string> names;
    for (const State& state : states_)
        if (state.isSlow) names.push_back(state.part.name);
    return names;
}

}  // namespace zelto::agent
