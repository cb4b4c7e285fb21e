#pragma once

#include <functional>

#include "tests/support/Looks.hpp"
#include "tests/support/Trees.hpp"

namespace zelto::test {

/// A look at the sample, `age` seconds old, after an edit.
inline Look sample(
    const std::function<void(shared::WidgetSnapshot&)>& edit = [](auto&) {}, double age = 0) {
    Look look{.snapshot = shared::WidgetSnapshot::sample(wednesday - age)};
    edit(*look.snapshot);
    return look;
}
/// A look without a snapshot.
inline Look without() {
    return {};
}

}  // namespace zelto::test
