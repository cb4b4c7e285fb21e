#include "agent/Measuring.hpp"

#include <algorithm>
#include <utility>

#include "runloop/Aside.hpp"

namespace zelto::agent {

/// Done when nobody holds it any more, or before.
struct Measuring::Round {
    explicit Round(std::function<void()> wanted) : done(std::move(wanted)) {}
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() { end(); }
    void end() {
        tooLate.reset();
        if (const auto called = std::exchange(done, nullptr)) called();
    }

    std::function<void()> done;
    runloop::MainSource tooLate = {};
};

Measuring::Measuring(Seams seams) : seams_(std::move(seams)) {
    for (const sources::Part& part : seams_.parts) states_.push_back({part});
}

void Measuring::refresh(std::function<void()> done) {
    const auto round = std::make_shared<Round>([done = std::move(done), life = std::weak_ptr(life_)] {
        if (!life.expired()) done();
    });
    for (State& state : states_) begin(state, round);
    round->tooLate = runloop::MainSource::after(longestWait, [weak = std::weak_ptr(round)] {
        if (const auto late = weak.lock()) late->end();
    });
}

void Measuring::refresh(const std::string& part) {
    const auto found = std::ranges::find(states_, part, [](const State& state) { return state.part.name; });
    if (found == states_.end()) return;
    found->isWantedAgain = found->isRunning;
    begin(*found, nullptr);
}

void Measuring::begin(State& state, const std::shared_ptr<Round>& round) {
    if (std::exchange(state.isRunning, true)) return;
    // Told when the round goes on without it, so a little earlier.
    state.tooLate = runloop::MainSource::after(longestWait * 0.9, [this, &state] {
        state.isSlow = true;
        seams_.log("reading the " + state.part.name + " takes long; the rest goes on without it");
        seams_.change(state.part.absent);
    });
    runloop::runAside(
        life_,
        [this, &state, work = state.part.begin(), round = std::shared_ptr<Round>(round)]() mutable
        -> std::function<void()> {
            // Given away wholly: the round ends on the main thread, not with this function on its own.
            return [this, &state, change = work(), round = std::move(round)] {
                state.tooLate.reset();
                state.isRunning = state.isSlow = false;
                seams_.change(change);
                if (std::exchange(state.isWantedAgain, false)) begin(state, nullptr);
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
