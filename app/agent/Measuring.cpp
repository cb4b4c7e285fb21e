#include "agent/Measuring.hpp"

#include <algorithm>
#include <utility>

#include "runloop/Aside.hpp"

namespace zelto::agent {

/// Done when no part holds it any more.
struct Measuring::Round {
    explicit Round(std::function<void()> wanted) : done(std::move(wanted)) {}
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() { done(); }

    std::function<void()> done;
};

Measuring::Measuring(Seams seams) : seams_(std::move(seams)) {
    for (const sources::Part& part : seams_.parts) states_.push_back({part});
}

void Measuring::refresh(std::function<void()> done) {
    const auto round = std::make_shared<Round>([done = std::move(done), life = std::weak_ptr(life_)] {
        if (!life.expired()) done();
    });
    for (State& state : states_) {
        // One that is being read already answers this round too; one that hangs holds up none.
        if (!state.isSlow) state.rounds.push_back(round);
        begin(state);
    }
}

void Measuring::refresh(const std::string& part) {
    const auto found = std::ranges::find(states_, part, [](const State& state) { return state.part.name; });
    if (found == states_.end()) return;
    found->isWantedAgain = found->isRunning;
    begin(*found);
}

void Measuring::begin(State& state) {
    if (std::exchange(state.isRunning, true)) return;
    state.tooLate = runloop::MainSource::after(longestWait, [this, &state] {
        state.isSlow = true;
        seams_.log("reading the " + state.part.name + " takes long; the rest goes on without it");
        seams_.change(state.part.absent);
        state.rounds.clear();
    });
    runloop::runAside(life_, [this, &state, work = state.part.begin()]() -> std::function<void()> {
        return [this, &state, change = work()] {
            state.tooLate.reset();
            state.isRunning = state.isSlow = false;
            seams_.change(change);
            state.rounds.clear();
            if (std::exchange(state.isWantedAgain, false)) begin(state);
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
