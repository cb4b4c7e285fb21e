#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ui/Modifiers.hpp"
#include "ui/Nodes.hpp"

namespace zelto::ui {

enum class Edges : std::uint8_t { all, horizontal, vertical };

/// A finished piece of a widget: plain data that one process builds and another draws.
struct View {
    Node node;
    /// In the order in which they apply: the first is the innermost.
    std::vector<Modifier> modifiers;

    // Each returns the view with one more modifier.
    [[nodiscard]] View font(double size, Weight = Weight::regular, Design = Design::standard) &&;
    [[nodiscard]] View monospacedDigits(double size, Weight = Weight::regular) &&;
    [[nodiscard]] View foreground(Style) &&;
    [[nodiscard]] View lineLimit(std::int64_t lines) &&;
    [[nodiscard]] View minimumScale(double factor) &&;
    [[nodiscard]] View padding(Edges, double points) &&;
    [[nodiscard]] View frame(modifier::Frame) &&;
    [[nodiscard]] View stretched(modifier::Stretch) &&;
    [[nodiscard]] View scaledToFill() &&;
    [[nodiscard]] View rotation(double degrees) &&;
    [[nodiscard]] View background(Geometry, Style) &&;
    [[nodiscard]] View clipShape(Geometry) &&;
    [[nodiscard]] View link(std::string url) &&;
    [[nodiscard]] View widgetURL(std::string url) &&;
    [[nodiscard]] View containerBackground(LinearGradient) &&;
    [[nodiscard]] View accessibilityLabel(std::string label) &&;
    /// A treatment of the caller's own: a function from view to view.
    template <class Treatment>
    [[nodiscard]] View apply(Treatment treatment) && {
        return treatment(std::move(*this));
    }

    // Defaulted in View.cpp: clang 14 crashes on an in-class "= default" of a recursive value type.
    bool operator==(const View&) const;
};

/// The children of a stack, or none.
const Views* childrenOf(const Node& node);
Views* childrenOf(Node& node);

}  // namespace zelto::ui
