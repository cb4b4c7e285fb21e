#pragma once

#include <algorithm>
#include <vector>

#include "platform/layout/Children.hpp"

namespace zelto::test {

/// A child that takes what it is offered between two lengths, and of its ideal one when nothing is.
struct FixedChild {
    layout::Size least, most;
    double baseline = 0;

    static FixedChild of(double width, double height, double baseline = 0) {
        return {{width, height}, {width, height}, baseline};
    }
};

class FixedChildren : public layout::Children {
  public:
    explicit FixedChildren(std::vector<FixedChild> children) : children_(std::move(children)) {}

    layout::Size measure(std::size_t child, const layout::ProposedSize& proposal) override {
        const auto& [least, most, baseline] = children_[child];
        return {
            std::clamp(proposal.width.value_or(most.width), least.width, most.width),
            std::clamp(proposal.height.value_or(most.height), least.height, most.height)};
    }
    double firstBaseline(std::size_t child, const layout::ProposedSize&) override {
        return children_[child].baseline;
    }

  private:
    std::vector<FixedChild> children_;
};

}  // namespace zelto::test
