#pragma once

#include <functional>
#include <stdexcept>
#include <utility>

namespace zelto {

/// Where an operation sends its answer: called exactly once, on any thread. A second call raises
/// std::logic_error; one that goes away unanswered tells the caller so.
template <class... Values>
class ReplyBlock {
  public:
    using Answer = std::function<void(Values...)>;

    ReplyBlock(Answer answer, std::function<void()> abandoned)
        : answer_(std::move(answer)), abandoned_(std::move(abandoned)) {}
    ReplyBlock(ReplyBlock&& other) noexcept
        : answer_(std::exchange(other.answer_, nullptr)), abandoned_(std::move(other.abandoned_)) {}
    ReplyBlock& operator=(ReplyBlock&&) = delete;
    ~ReplyBlock() {
        if (answer_ && abandoned_) abandoned_();
    }

    void operator()(Values... values) {
        const Answer answer = std::exchange(answer_, nullptr);
        if (!answer) throw std::logic_error("a reply block was called twice");
        answer(std::move(values)...);
    }

  private:
    Answer answer_;
    std::function<void()> abandoned_;
};

}  // namespace zelto
