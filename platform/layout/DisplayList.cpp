#include "layout/DisplayList.hpp"

#include <cmath>

#include "foundation/NumberText.hpp"
#include "ui/Outline.hpp"

namespace zelto::layout {
namespace {

std::string number(double value) {
    const double rounded = std::round(value * 100) / 100;
    return briefNumber(rounded == 0 ? 0 : rounded);  // never "-0"
}
std::string text(const Rect& r) {
    return number(r.x) + "," + number(r.y) + " " + number(r.width) + "×" + number(r.height);
}
std::string text(const ui::Style& style) {
    return ui::hexText(std::get<ui::Color>(style));
}

struct Line {
    std::string operator()(const PlacedText& t) const {
        std::string out = "text " + text(t.frame) + " \"" + t.text + "\" " + number(t.font.size);
        if (t.scale != 1) out += " scaled " + number(t.scale);
        if (t.width) out += " within " + number(*t.width);
        if (t.lines != 0) out += " lines " + std::to_string(t.lines);
        return out + " " + ui::hexText(t.color);
    }
    std::string operator()(const PlacedCountdown& c) const { return "countdown " + (*this)(c.text); }
    std::string operator()(const PlacedSymbol& s) const {
        return "symbol " + text(s.frame) + " " + s.name + " " + number(s.fontSize) + " " +
               ui::hexText(s.color);
    }
    std::string operator()(const PlacedShape& s) const {
        std::string out = "shape " + text(s.frame) + " " + geometryName(s.geometry);
        if (s.trim) out += " trim " + number(*s.trim);
        if (const auto* stroke = std::get_if<ui::Stroke>(&s.paint))
            return out + " stroke " + number(stroke->lineWidth) + " " + text(stroke->style);
        return out + " fill " + text(std::get<ui::Fill>(s.paint).style);
    }
    std::string operator()(const PlacedImage& i) const { return "image " + text(i.frame); }
    std::string operator()(const BeginClip& c) const {
        return "clip " + text(c.frame) + " " + geometryName(c.geometry);
    }
    std::string operator()(const BeginRotation& r) const { return "rotate " + number(r.degrees); }
    std::string operator()(const End&) const { return "end"; }

    static std::string geometryName(const ui::Geometry& geometry) {
        struct Name {
            std::string operator()(const ui::Circle&) const { return "circle"; }
            std::string operator()(const ui::Capsule&) const { return "capsule"; }
            std::string operator()(const ui::RoundedRectangle& r) const {
                return "rounded " + number(r.radius);
            }
            std::string operator()(const ui::Polyline& p) const {
                return "polyline of " + std::to_string(p.fractions.size());
            }
        };
        return std::visit(Name{}, geometry);
    }
};

}  // namespace

std::string dump(const DisplayList& displayList) {
    std::string out = "size " + number(displayList.size.width) + "×" + number(displayList.size.height) + "\n";
    for (const DisplayItem& item : displayList.items) out += std::visit(Line{}, item) + "\n";
    for (const LinkArea& link : displayList.links)
        out += "link " + text(link.frame) + " " + link.url + " \"" + link.name + "\"\n";
    if (displayList.widgetURL) out += "widgetURL " + *displayList.widgetURL + "\n";
    return out;
}

}  // namespace zelto::layout
