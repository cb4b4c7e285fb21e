#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"
#include "sources/Machine.hpp"

namespace zelto::agent {

/// Reads the machine's parts of the snapshot, each on a thread of its own, so that a slow one holds up no
/// other. For the main thread.
class Measuring {
  public:
    struct Seams {
        std::vector<sources::Part> parts;
        /// Makes a change on the snapshot.
        std::function<void(const sources::Change&)> change;
        runloop::Log log;
    };
    explicit Measuring(Seams seams);

    /// Reads all parts. `done` is called when each has answered or is read for longer than the longest wait;
    /// such a part counts as absent until it comes, and changes the snapshot then by itself.
    void refresh(std::function<void()> done);
    /// Reads one part, by its name.
    void refresh(const std::string& part);
    /// The parts that are being read for longer than the longest wait.
    std::vector<std::string> slow() const;

    static constexpr double longestWait = 1;  // seconds

  private:
    struct Round;
    struct State {
        sources::Part part;
        bool isRunning = false, isSlow = false;
        /// Asked for once more while it was being read: what it tells may be older than the question.
        bool isWantedAgain = false;
        runloop::MainSource tooLate = {};
        /// Those that wait for it.
        std::vector<std::shared_ptr<Round>> rounds = {};
    };
    void begin(State& state);

    const Seams seams_;
    std::vector<State> states_;
    std::shared_ptr<int> life_ = std::make_shared<int>(0);
};

}  // namespace zelto::agent
