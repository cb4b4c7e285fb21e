#include "ui/View.hpp"

namespace zelto::ui {
namespace {

View with(View&& view, Modifier modifier) {
    view.modifiers.push_back(std::move(modifier));
    return std::move(view);
}

}  // namespace

bool View::operator==(const View&) const = default;
namespace node {
bool VStack::operator==(const VStack&) const = default;
bool HStack::operator==(const HStack&) const = default;
bool ZStack::operator==(const ZStack&) const = default;
bool Grid::operator==(const Grid&) const = default;
}  // namespace node

View View::font(double size, Weight weight, Design design) && {
    return with(std::move(*this), modifier::Font{size, weight, design, Digits::proportional});
}
View View::monospacedDigits(double size, Weight weight) && {
    return with(std::move(*this), modifier::Font{size, weight, Design::standard, Digits::monospaced});
}
View View::foreground(Style style) && {
    return with(std::move(*this), modifier::Foreground{style});
}
View View::lineLimit(std::int64_t lines) && {
    return with(std::move(*this), modifier::LineLimit{lines});
}
View View::minimumScale(double factor) && {
    return with(std::move(*this), modifier::MinimumScale{factor});
}
View View::padding(Edges edges, double points) && {
    const double horizontal = edges == Edges::vertical ? 0 : points;
    const double vertical = edges == Edges::horizontal ? 0 : points;
    return with(std::move(*this), modifier::Padding{vertical, horizontal, vertical, horizontal});
}
View View::frame(modifier::Frame frame) && {
    return with(std::move(*this), frame);
}
View View::stretched(modifier::Stretch stretch) && {
    return with(std::move(*this), stretch);
}
View View::scaledToFill() && {
    return with(std::move(*this), modifier::ScaledToFill{});
}
View View::rotation(double degrees) && {
    return with(std::move(*this), modifier::Rotation{degrees});
}
View View::background(Geometry geometry, Style style) && {
    return with(std::move(*this), modifier::Background{std::move(geometry), style});
}
View View::clipShape(Geometry geometry) && {
    return with(std::move(*this), modifier::ClipShape{std::move(geometry)});
}
View View::link(std::string url) && {
    return with(std::move(*this), modifier::Link{std::move(url)});
}
View View::widgetURL(std::string url) && {
    return with(std::move(*this), modifier::WidgetURL{std::move(url)});
}
View View::containerBackground(LinearGradient gradient) && {
    return with(std::move(*this), modifier::ContainerBackground{gradient});
}
View View::accessibilityLabel(std::string label) && {
    return with(std::move(*this), modifier::AccessibilityLabel{std::move(label)});
}

namespace {

template <class List>
constexpr auto childrenOfContent = [](auto& content) -> List* {
    if constexpr (requires { content.children; })
        return &content.children;
    else
        return nullptr;
};

}  // namespace

const Views* childrenOf(const Node& node) {
    return std::visit(childrenOfContent<const Views>, node);
}
Views* childrenOf(Node& node) {
    return std::visit(childrenOfContent<Views>, node);
}

}  // namespace zelto::ui
