// Prints the overview, medium, as an SVG document with live text: the picture that the whole-process
// benchmark hands to rsvg-convert.

#include <iostream>
#include <numbers>

#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"
#include "platform/drawing/Symbols.hpp"
#include "ui/Outline.hpp"
#include "widget/Widgets/OverviewWidget.hpp"

namespace zelto {

using namespace texts;
using namespace widget;
using namespace widgetkit;
namespace {

std::string paintOf(const char* attribute, const ui::Color& color) {
    return std::string(attribute) + "=\"" + ui::hexText(color.withOpacity(1)) + "\" " + attribute +
           "-opacity=\"" + std::to_string(color.opacity) + "\"";
}

struct Writer {
    layout::TextMeasuring& measuring;

    void operator()(const layout::PlacedText& text) const {
        const auto extent = measuring.measure(text.text, text.font, {}, 0);
        constexpr const char* weights[] = {"400", "600", "700"};
        std::cout << "<text x=\"" << text.frame.x << "\" y=\"" << text.frame.y + extent.baseline
                  << "\" font-family=\"" << (text.font.size >= 20 ? "Inter Display" : "Inter")
                  << "\" font-size=\"" << text.font.size * text.scale << "\" font-weight=\""
                  << weights[static_cast<std::size_t>(text.font.weight)] << "\" "
                  << paintOf("fill", text.color) << ">" << text.text << "</text>\n";
    }
    void operator()(const layout::PlacedCountdown& countdown) const { (*this)(countdown.text); }
    void operator()(const layout::PlacedSymbol& placed) const {
        const auto* symbol = drawing::symbolNamed(placed.name);
        const double unit = drawing::symbolSide(placed.fontSize) / 24;
        for (const auto& path : symbol->paths) {
            std::cout << "<path transform=\"translate(" << placed.frame.x - symbol->left * unit << " "
                      << placed.frame.y << ") scale(" << unit << ")\" stroke-width=\"" << path.strokeWidth
                      << "\" " << paintOf("stroke", placed.color) << " fill=\"none\" d=\"";
            for (std::size_t i = 0; i < path.data.size();) {
                constexpr const char* names = "MLCZ";
                constexpr std::size_t counts[] = {2, 2, 6, 0};
                const auto operation = static_cast<std::size_t>(path.data[i]);
                std::cout << names[operation];
                for (std::size_t k = 1; k <= counts[operation]; ++k) std::cout << path.data[i + k] << " ";
                i += 1 + counts[operation];
            }
            std::cout << "\"/>\n";
        }
    }
    void operator()(const layout::PlacedShape& shape) const {
        const auto& stroke = std::get<ui::Stroke>(shape.paint);
        const double radius = std::min(shape.frame.width, shape.frame.height) / 2;
        const double length = 2 * std::numbers::pi * radius;
        std::cout << "<circle cx=\"" << shape.frame.center().x << "\" cy=\"" << shape.frame.center().y
                  << "\" r=\"" << radius << "\" fill=\"none\" stroke-width=\"" << stroke.lineWidth << "\" "
                  << paintOf("stroke", std::get<ui::Color>(stroke.style));
        if (shape.trim)
            std::cout << " stroke-linecap=\"round\" stroke-dasharray=\"" << length * *shape.trim << " "
                      << length << "\" transform=\"rotate(-90 " << shape.frame.center().x << " "
                      << shape.frame.center().y << ")\"";
        std::cout << "/>\n";
    }
    void operator()(const layout::PlacedImage&) const {}
    void operator()(const layout::BeginClip&) const {}
    void operator()(const layout::BeginRotation&) const {}
    void operator()(const layout::End&) const {}
};

int print() {
    const ZeltoEntry entry{
        .date = {794941500},
        .live =
            {.battery = 73,
             .charging = true,
             .cpu = 0.37,
             .memory = 0.68,
             .disk = 0.89,
             .diskFree = 112'400'000'000},
        .snapshot = nullptr};
    const Formatting formatting({"pt_BR", "America/Sao_Paulo"});
    const EnvironmentValues environment{
        WidgetFamily::systemMedium, formatting, [&entry] { return entry.date; }};
    drawing::Renderer renderer;
    const auto displayList = layout::layOut(
        OverviewView{environment, entry}.body(),
        {.size = {344, 164}, .now = entry.date},
        renderer.measuring());
    std::cout << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"344\" "
                 "height=\"164\"><defs><linearGradient id=\"b\" x2=\"0\" "
                 "y2=\"1\"><stop stop-color=\""
              << ui::hexText(displayList.background->top) << "\"/><stop offset=\"1\" stop-color=\""
              << ui::hexText(displayList.background->bottom)
              << "\"/></linearGradient></defs><rect width=\"344\" height=\"164\" fill=\"url(#b)\"/>\n";
    for (const auto& item : displayList.items) std::visit(Writer{renderer.measuring()}, item);
    std::cout << "</svg>\n";
    return std::cout ? 0 : 1;
}

}  // namespace
}  // namespace zelto

int main() {
    return zelto::print();
}
