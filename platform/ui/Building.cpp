#include "ui/Building.hpp"

#include <iterator>

namespace zelto::ui {
namespace {

/// Between the symbol and the text of a label, in points.
constexpr double labelSpacing = 5;
/// Between the columns of a grid, in points.
constexpr double gridColumnSpacing = 8;

View leaf(Node node) {
    return {.node = std::move(node), .modifiers = {}};
}

}  // namespace

namespace detail {
void append(Views& out, View view) {
    out.push_back(std::move(view));
}
void append(Views& out, std::optional<View> view) {
    if (view) out.push_back(*std::move(view));
}
void append(Views& out, Views views) {
    out.insert(out.end(), std::make_move_iterator(views.begin()), std::make_move_iterator(views.end()));
}
}  // namespace detail

View Text(std::string text) {
    return leaf(node::Text{std::move(text)});
}
View Countdown(Date end) {
    return leaf(node::Countdown{end});
}
View Symbol(std::string name) {
    return leaf(node::Symbol{std::move(name)});
}
View Image(node::Image image) {
    return leaf(std::move(image));
}
View Spacer(std::optional<double> minLength) {
    return leaf(node::Spacer{minLength});
}
View Label(std::string symbol, std::string text) {
    return HStack({.spacing = labelSpacing}, Symbol(std::move(symbol)), Text(std::move(text)));
}
View Filled(Geometry geometry, Style style) {
    return leaf(node::Shape{std::move(geometry), {}, Fill{style}});
}
View Stroked(Geometry geometry, Stroke stroke) {
    return leaf(node::Shape{std::move(geometry), {}, stroke});
}
View Stroked(Geometry geometry, double trim, Stroke stroke) {
    return leaf(node::Shape{std::move(geometry), trim, stroke});
}

View stack(VStackOptions options, Views children) {
    return leaf(node::VStack{options.alignment, options.spacing, std::move(children)});
}
View stack(HStackOptions options, Views children) {
    return leaf(node::HStack{options.alignment, options.spacing, std::move(children)});
}
View overlay(Views children) {
    return leaf(node::ZStack{std::move(children)});
}
View grid(GridOptions options, Views children) {
    return leaf(node::Grid{
        options.columns, gridColumnSpacing, options.rowSpacing, options.alignment, std::move(children)});
}

}  // namespace zelto::ui
