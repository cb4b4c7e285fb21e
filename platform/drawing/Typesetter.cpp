#include "platform/drawing/Typesetter.hpp"

#include <cmath>
#include <map>
#include <tuple>
#include <unordered_map>

#include <pango/pangofc-fontmap.h>

#include "platform/drawing/Symbols.hpp"
#include "platform/drawing/TypesetText.hpp"

namespace zelto::drawing {
namespace {

/// From this size on, in points, the cut that is drawn for large sizes is used.
constexpr double displaySize = 20;
/// The rounded design is the regular cut, stroked this wide (in em), made smaller by what the stroke adds so
/// that its capitals keep their height, and set wider by as much.
constexpr double roundingStroke = 0.062;
constexpr double capHeight = 0.7273;
constexpr double roundedScale = 1 - roundingStroke / capHeight;

/// How many texts are kept set; a widget has a dozen, most of which recur with every entry.
constexpr std::size_t mostTexts = 1024;

PangoWeight pangoWeight(ui::Weight weight) {
    switch (weight) {
        case ui::Weight::regular: return PANGO_WEIGHT_NORMAL;
        case ui::Weight::semibold: return PANGO_WEIGHT_SEMIBOLD;
        case ui::Weight::bold: return PANGO_WEIGHT_BOLD;
    }
    return PANGO_WEIGHT_NORMAL;
}

double points(int pangoUnits) {
    return static_cast<double>(pangoUnits) / PANGO_SCALE;
}

bool isRounded(const ui::modifier::Font& font) {
    return font.design == ui::Design::rounded;
}

FontDescription describe(const ui::modifier::Font& font) {
    FontDescription description(pango_font_description_new());
    const bool rounded = isRounded(font);
    pango_font_description_set_family_static(
        description.get(), font.size >= displaySize && !rounded ? "Inter Display" : "Inter");
    pango_font_description_set_weight(
        description.get(), rounded ? PANGO_WEIGHT_NORMAL : pangoWeight(font.weight));
    pango_font_description_set_absolute_size(
        description.get(), font.size * (rounded ? roundedScale : 1) * PANGO_SCALE);
    return description;
}

using FontKey = std::tuple<double, ui::Weight, ui::Design, ui::Digits>;

struct TextKey {
    std::string text;
    FontKey font;
    double width;  // -1 for none
    std::int64_t lines;
    bool operator==(const TextKey&) const = default;
};
struct TextKeyHash {
    std::size_t operator()(const TextKey& key) const {
        const auto mix = [](std::size_t a, std::size_t b) { return a * 0x9E3779B97F4A7C15U + b; };
        std::size_t hash = std::hash<std::string>()(key.text);
        hash = mix(hash, std::hash<double>()(std::get<0>(key.font)));
        hash = mix(hash, static_cast<std::size_t>(std::get<1>(key.font)));
        hash = mix(hash, std::hash<double>()(key.width));
        return mix(hash, static_cast<std::size_t>(key.lines));
    }
};

}  // namespace

struct Typesetter::State {
    FontMap fontMap{pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT)};
    TextContext context;
    std::map<FontKey, FontDescription> fonts;
    std::map<FontKey, double> lineHeights;
    std::unordered_map<TextKey, TypesetText, TextKeyHash> texts;

    State() {
        // One point is one unit, glyphs stand where their advances put them, nothing is fitted to pixels: the
        // same lengths come out at every scale.
        pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap.get()), 72);
        context.reset(pango_font_map_create_context(fontMap.get()));
        pango_context_set_round_glyph_positions(context.get(), FALSE);
        const FontOptions options(cairo_font_options_create());
        cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
        pango_cairo_context_set_font_options(context.get(), options.get());
        pango_context_set_language(context.get(), pango_language_from_string("pt"));
    }

    const PangoFontDescription* description(const ui::modifier::Font& font) {
        auto& kept = fonts[{font.size, font.weight, font.design, font.digits}];
        if (!kept) kept = describe(font);
        return kept.get();
    }

    TypesetText set(
        std::string_view text, const ui::modifier::Font& font, std::optional<double> width,
        std::int64_t lines) {
        TypesetText out;
        out.layout.reset(pango_layout_new(context.get()));
        PangoLayout* layout = out.layout.get();
        pango_layout_set_font_description(layout, description(font));
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        pango_layout_set_auto_dir(layout, TRUE);
        if (width) {
            // Rounded up: a width that a text has just been told to have must hold it.
            pango_layout_set_width(layout, static_cast<int>(std::ceil(*width * PANGO_SCALE)));
            pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
            if (lines > 0) {
                pango_layout_set_height(layout, static_cast<int>(-lines));
                pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
            }
        }
        const TextAttributes attributes(pango_attr_list_new());
        // A word that is broken because nothing else helps gets no hyphen that nobody wrote.
        pango_attr_list_insert(attributes.get(), pango_attr_insert_hyphens_new(FALSE));
        if (isRounded(font)) {
            out.roundingStroke = roundingStroke * font.size;
            pango_attr_list_insert(
                attributes.get(),
                pango_attr_letter_spacing_new(static_cast<int>(out.roundingStroke * PANGO_SCALE)));
        }
        if (font.digits == ui::Digits::monospaced)
            pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("tnum=1"));
        pango_layout_set_attributes(layout, attributes.get());
        PangoRectangle logical;
        pango_layout_get_extents(layout, nullptr, &logical);
        out.extent = {
            {points(logical.width), points(logical.height)}, points(pango_layout_get_baseline(layout))};
        return out;
    }
};

Typesetter::Typesetter() : state_(std::make_unique<State>()) {}
Typesetter::~Typesetter() = default;

const TypesetText& Typesetter::typeset(
    std::string_view text, const ui::modifier::Font& font, std::optional<double> width, std::int64_t lines) {
    TextKey key{
        std::string(text), {font.size, font.weight, font.design, font.digits}, width ? *width : -1, lines};
    const auto found = state_->texts.find(key);
    if (found != state_->texts.end()) return found->second;
    if (state_->texts.size() >= mostTexts) state_->texts.clear();
    return state_->texts.emplace(std::move(key), state_->set(text, font, width, lines)).first->second;
}

layout::TextExtent Typesetter::measure(
    std::string_view text, const ui::modifier::Font& font, std::optional<double> width, std::int64_t lines) {
    return typeset(text, font, width, lines).extent;
}

double Typesetter::lineHeight(const ui::modifier::Font& font) {
    auto& height = state_->lineHeights[{font.size, font.weight, font.design, font.digits}];
    if (height == 0) height = typeset("0", font, {}, 0).extent.size.height;
    return height;
}

layout::Size Typesetter::symbolSize(std::string_view name, double fontSize) {
    const double side = symbolSide(fontSize);
    const Symbol* symbol = symbolNamed(name);
    return {symbol ? (symbol->right - symbol->left) / 24 * side : side, side};
}

}  // namespace zelto::drawing
