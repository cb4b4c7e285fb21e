#include "SettingsPage.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include "Strings.hpp"

namespace zelto::desktop {
namespace {

/// What can be chosen; a value that is none of them, from the file, is shown as the nearest.
constexpr std::array<std::pair<double, const char*>, 6> scales{
    {{0.75, "75 %"}, {1, "100 %"}, {1.25, "125 %"}, {1.5, "150 %"}, {2, "200 %"}, {3, "300 %"}}};
constexpr std::array<std::pair<double, const char*>, 6> refreshes{
    {{5, "a cada 5 s"},
     {10, "a cada 10 s"},
     {30, "a cada 30 s"},
     {60, "a cada minuto"},
     {300, "a cada 5 minutos"},
     {0, "só quando for preciso"}}};

template <std::size_t n>
int nearest(const std::array<std::pair<double, const char*>, n>& choices, double value) {
    const auto found = std::ranges::min_element(
        choices, {}, [value](const auto& choice) { return std::abs(choice.first - value); });
    return static_cast<int>(found - choices.begin());
}

}  // namespace

SettingsPage::SettingsPage(host::WidgetHost& host) : host_(host) {
    set_border_width(24);
    set_row_spacing(14);
    set_column_spacing(24);
    locked_.set_label(strings::lockPositions);
    attach(locked_, 0, 0, 2, 1);
    scale_.append(strings::scaleOfDesktop);
    for (const auto& [value, text] : scales) scale_.append(text);
    for (const auto& [value, text] : refreshes) refresh_.append(text);
    margin_.set_range(0, host::largestMargin);
    margin_.set_increments(4, 20);
    line(1, strings::scale, scale_);
    line(2, strings::refresh, refresh_);
    line(3, strings::margin, margin_);
    linksTitle_.set_text(strings::linksTitle);
    linksTitle_.get_style_context()->add_class("title");
    linksTitle_.set_margin_top(18);
    linksHelp_.set_text(strings::linksHelp);
    linksHelp_.set_line_wrap();
    linksCommand_.set_text(strings::linksCommand);
    linksCommand_.set_selectable();
    int row = 4;
    for (Gtk::Label* label : {&linksTitle_, &linksHelp_, &linksCommand_}) {
        label->set_xalign(0);
        attach(*label, 0, row++, 2, 1);
    }
    present(host_.settings());
    locked_.signal_toggled().connect([this] { changed(); });
    scale_.signal_changed().connect([this] { changed(); });
    refresh_.signal_changed().connect([this] { changed(); });
    margin_.signal_value_changed().connect([this] { changed(); });
}

void SettingsPage::line(int row, const char* text, Gtk::Widget& control) {
    auto* label = Gtk::manage(new Gtk::Label(text));
    label->set_xalign(0);
    label->set_hexpand();
    label->set_mnemonic_widget(control);
    attach(*label, 0, row, 1, 1);
    attach(control, 1, row, 1, 1);
    control.get_accessible()->set_name(text);
}

void SettingsPage::present(const host::DesktopSettings& settings) {
    isShowing_ = true;
    locked_.set_active(settings.locked.value_or(false));
    scale_.set_active(settings.scale ? 1 + nearest(scales, *settings.scale) : 0);
    refresh_.set_active(nearest(refreshes, settings.refresh.value_or(host::defaultRefresh)));
    margin_.set_value(settings.margin.value_or(0));
    isShowing_ = false;
}

void SettingsPage::changed() {
    if (isShowing_) return;
    // What is not touched keeps a value that cannot be chosen here.
    host::DesktopSettings settings = host_.settings();
    settings.locked = locked_.get_active() ? std::optional(true) : std::nullopt;
    const int scale = scale_.get_active_row_number();
    if (scale != (settings.scale ? 1 + nearest(scales, *settings.scale) : 0))
        settings.scale =
            scale > 0 ? std::optional(scales[static_cast<std::size_t>(scale - 1)].first) : std::nullopt;
    const int refresh = refresh_.get_active_row_number();
    if (refresh != nearest(refreshes, settings.refresh.value_or(host::defaultRefresh)))
        settings.refresh = refreshes[static_cast<std::size_t>(refresh)].first;
    const double margin = margin_.get_value();
    settings.margin = margin > 0 ? std::optional(margin) : std::nullopt;
    host_.set(settings);
}

}  // namespace zelto::desktop
