#pragma once

// The words that a widget's body is written with.

#include <concepts>
#include <optional>
#include <ranges>
#include <string>
#include <utility>

#include "ui/View.hpp"

namespace zelto::ui {

// ---- what may stand in a list of children ----

// A view; a component (a plain struct with a body()); an optional view, which leaves no trace when absent;
// several views, spliced in.

template <class T>
concept Component = requires(const T& component) {
    { component.body() } -> std::same_as<View>;
};

namespace detail {
void append(Views& out, View view);
void append(Views& out, std::optional<View> view);
void append(Views& out, Views views);
template <Component T>
void append(Views& out, const T& component) {
    append(out, component.body());
}
}  // namespace detail

template <class T>
concept Child = requires(Views& out, T&& child) {
    detail::append(out, std::forward<T>(child));
};

template <Child... Children>
Views list(Children&&... children) {
    Views out;
    out.reserve(sizeof...(children));
    (detail::append(out, std::forward<Children>(children)), ...);
    return out;
}

/// What `make` gives, when the condition holds.
template <class Make>
std::optional<View> when(bool condition, Make make) {
    return condition ? std::optional<View>(make()) : std::nullopt;
}
/// What `make` gives for the value, when there is one.
template <class T, class Make>
std::optional<View> ifPresent(const std::optional<T>& value, Make make) {
    return value ? std::optional<View>(make(*value)) : std::nullopt;
}
/// What `make` gives for each element, in order.
template <std::ranges::input_range Range, class Make>
Views forEach(Range&& range, Make make) {
    Views out;
    for (const auto& element : range) detail::append(out, make(element));
    return out;
}

// ---- leaves ----

View Text(std::string text);
View Countdown(Date end);
View Symbol(std::string name);
View Image(node::Image image);
View Spacer(std::optional<double> minLength = {});
/// A symbol followed by a text.
View Label(std::string symbol, std::string text);
View Filled(Geometry geometry, Style style);
View Stroked(Geometry geometry, Stroke stroke);
/// Only the part of the outline from its start to the fraction `trim`.
View Stroked(Geometry geometry, double trim, Stroke stroke);

// ---- containers ----

struct VStackOptions {
    HAlign alignment = HAlign::center;
    std::optional<double> spacing = {};
};
struct HStackOptions {
    VAlign alignment = VAlign::center;
    std::optional<double> spacing = {};
};
struct GridOptions {
    std::int64_t columns;
    double rowSpacing;
    HAlign alignment = HAlign::center;
};
View stack(VStackOptions options, Views children);
View stack(HStackOptions options, Views children);
View overlay(Views children);
View grid(GridOptions options, Views children);

template <Child... Children>
View VStack(VStackOptions options, Children&&... children) {
    return stack(options, list(std::forward<Children>(children)...));
}
template <Child... Children>
View HStack(HStackOptions options, Children&&... children) {
    return stack(options, list(std::forward<Children>(children)...));
}
template <Child... Children>
View ZStack(Children&&... children) {
    return overlay(list(std::forward<Children>(children)...));
}
template <Child... Children>
View Grid(GridOptions options, Children&&... children) {
    return grid(options, list(std::forward<Children>(children)...));
}

}  // namespace zelto::ui
