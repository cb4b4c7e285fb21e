#pragma once

// The field tables of the view tree, which drive the archive and the outline.

#include "ui/View.hpp"

template <>
inline zelto::ui::View zelto::records::blank<zelto::ui::View>() {
    return {.node = ui::node::Text{}, .modifiers = {}};
}

ZELTO_RECORD(zelto::ui::node::Text, text);
ZELTO_RECORD(zelto::ui::node::Countdown, end);
ZELTO_RECORD(zelto::ui::node::Symbol, name);
ZELTO_RECORD(zelto::ui::node::Image, width, height, pixels);
ZELTO_RECORD(zelto::ui::node::Spacer, minLength);
ZELTO_RECORD(zelto::ui::node::Shape, geometry, trim, paint);
ZELTO_RECORD(zelto::ui::node::VStack, alignment, spacing, children);
ZELTO_RECORD(zelto::ui::node::HStack, alignment, spacing, children);
ZELTO_RECORD(zelto::ui::node::ZStack, children);
ZELTO_RECORD(zelto::ui::node::Grid, columns, columnSpacing, rowSpacing, alignment, children);

ZELTO_RECORD(zelto::ui::modifier::Font, size, weight, design, digits);
ZELTO_RECORD(zelto::ui::modifier::Foreground, style);
ZELTO_RECORD(zelto::ui::modifier::LineLimit, lines);
ZELTO_RECORD(zelto::ui::modifier::MinimumScale, factor);
ZELTO_RECORD(zelto::ui::modifier::Padding, top, leading, bottom, trailing);
ZELTO_RECORD(zelto::ui::modifier::Frame, width, height);
ZELTO_RECORD(zelto::ui::modifier::Stretch, width, height);
ZELTO_RECORD(zelto::ui::modifier::ScaledToFill);
ZELTO_RECORD(zelto::ui::modifier::Rotation, degrees);
ZELTO_RECORD(zelto::ui::modifier::Background, geometry, style);
ZELTO_RECORD(zelto::ui::modifier::ClipShape, geometry);
ZELTO_RECORD(zelto::ui::modifier::Link, url);
ZELTO_RECORD(zelto::ui::modifier::WidgetURL, url);
ZELTO_RECORD(zelto::ui::modifier::ContainerBackground, gradient);

ZELTO_RECORD(zelto::ui::modifier::AccessibilityLabel, label);

ZELTO_RECORD(zelto::ui::View, node, modifiers);
