#pragma once

#include <cstddef>

#include "layout/Geometry.hpp"

namespace zelto::layout {

/// What an algorithm may ask of the children that it lays out, by their index.
class Children {
  public:
    virtual ~Children() = default;
    virtual Size measure(std::size_t child, const ProposedSize& proposal) = 0;
    /// From the top of the child's frame; its bottom edge when it holds no text.
    virtual double firstBaseline(std::size_t child, const ProposedSize& proposal) = 0;
};

}  // namespace zelto::layout
