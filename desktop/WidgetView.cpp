#include "WidgetView.hpp"

#include <algorithm>
#include <cmath>
#include <gtkmm/cssprovider.h>
#include <map>
#include <utility>

#include "PaintPicture.hpp"
#include "drawing/Paths.hpp"
#include "layout/ChangedArea.hpp"
#include "layout/Layout.hpp"
#include "runloop/MainLoop.hpp"
#include "ui/Reading.hpp"
#include "ui/TimerText.hpp"

namespace zelto::desktop {
namespace {

constexpr double flashSeconds = 1.5;
constexpr double linkCornerRadius = 7;  // points

int rounded(double value) {
    return static_cast<int>(std::lround(value));
}

/// One look for all, whatever the desktop's theme: nothing of a button but its behaviour.
Glib::RefPtr<Gtk::CssProvider> plainStyle(double zoom) {
    static std::map<double, Glib::RefPtr<Gtk::CssProvider>> styles;
    auto& style = styles[zoom];
    if (style) return style;
    style = Gtk::CssProvider::create();
    const auto points = [zoom](int length) { return std::to_string(rounded(length * zoom)) + "px"; };
    style->load_from_data(
        "button { padding: 0; margin: 0; border: none; min-width: 0; min-height: 0; background: none;"
        " box-shadow: none; outline: none; transition: none; }"
        "label { color: white; font-family: Inter; font-size: " +
        points(11) +
        "; }"
        "label.message { background-color: rgba(20, 20, 24, 0.92); border-radius: " +
        points(10) + "; padding: " + points(6) +
        "; }"
        "label.age { background-color: rgba(20, 20, 24, 0.8); border-radius: " +
        points(7) + "; padding: " + points(1) + " " + points(5) + "; font-size: " + points(9) +
        "; }"
        "label.announcement { opacity: 0; font-size: 1px; }");
    return style;
}

void addPlainStyle(Gtk::Widget& widget, double zoom) {
    widget.get_style_context()->add_provider(plainStyle(zoom), GTK_STYLE_PROVIDER_PRIORITY_USER);
}

/// The outline that widgets have too.
void addOutline(
    const Cairo::RefPtr<Cairo::Context>& context, double inset, double width, double height, double radius) {
    context->begin_new_path();
    drawing::addContinuousRectangle(
        context->cobj(), {inset, inset, width - 2 * inset, height - 2 * inset}, radius - inset);
}

}  // namespace

struct WidgetView::Sources {
    runloop::MainSource tick, message, flash;
};

TapArea::TapArea(double cornerRadius, bool showsHover)
    : cornerRadius_(cornerRadius), showsHover_(showsHover) {
    addPlainStyle(*this, 1);
    set_can_focus(true);
    set_focus_on_click(false);
}

bool TapArea::on_draw(const Cairo::RefPtr<Cairo::Context>& context) {
    const double width = get_allocated_width(), height = get_allocated_height();
    const auto state = get_state_flags();
    if (showsHover_ && (state & (Gtk::STATE_FLAG_PRELIGHT | Gtk::STATE_FLAG_ACTIVE)) != 0) {
        addOutline(context, 0, width, height, cornerRadius_);
        context->set_source_rgba(1, 1, 1, (state & Gtk::STATE_FLAG_ACTIVE) != 0 ? 0.28 : 0.14);
        context->fill();
    }
    if (has_visible_focus()) {
        addOutline(context, 1.5, width, height, cornerRadius_);
        context->set_source_rgb(0.31, 0.55, 0.97);
        context->set_line_width(3);
        context->stroke();
    }
    return true;
}

WidgetView::WidgetView(Seams seams, double zoom)
    : seams_(std::move(seams)),
      zoom_(zoom),
      whole_(drawing::containerCornerRadius * zoom, false),
      sources_(std::make_unique<Sources>()) {
    put(whole_, 0, 0);
    whole_.signal_clicked().connect([this] {
        if (displayList_.widgetURL) seams_.open(*displayList_.widgetURL);
    });
    whole_.show();
    get_accessible()->set_role(Atk::ROLE_GROUPING);
    property_scale_factor().signal_changed().connect([this] {
        if (entry_) drawAll();
    });
}

WidgetView::~WidgetView() = default;

void WidgetView::name(const std::string& displayName) {
    name_ = displayName;
    get_accessible()->set_name(displayName);
    whole_.get_accessible()->set_name(displayName);
    // Links without a name have the widget's.
    placeLinks();
}

void WidgetView::resize(widgetkit::WidgetFamily family) {
    const ui::Size size = widgetkit::sizeOf(family);
    size_ = size;
    set_size_request(rounded(size.width * zoom_), rounded(size.height * zoom_));
    whole_.set_size_request(rounded(size.width * zoom_), rounded(size.height * zoom_));
    if (entry_) layOutAgain();
}

void WidgetView::present(const widgetkit::ArchivedEntry& entry) {
    entry_ = entry;
    explanation_.reset();
    layOutAgain();
}

void WidgetView::layOutAgain() {
    const Date now = seams_.now();
    const auto before = std::exchange(
        displayList_,
        layout::layOut(
            entry_->view,
            {.size = size_, .now = now, .contrast = seams_.contrast},
            seams_.renderer.measuring()));
    describe(now);
    if (before.links != displayList_.links) placeLinks();
    whole_.get_accessible()->set_role(displayList_.widgetURL ? Atk::ROLE_LINK : Atk::ROLE_PANEL);
    drawChanges(before);
}

void WidgetView::drawChanges(const layout::DisplayList& before) {
    if (drawnScale_ != scale()) {
        drawAll();
        return;
    }
    const layout::Rect area = layout::changedArea(before, displayList_);
    if (area.width <= 0) return;
    if (area.width == size_.width && area.height == size_.height) {
        drawAll();
        return;
    }
    seams_.renderer.redraw(displayList_, drawnScale_, seams_.corners, area, picture_);
    // A pixel more on each side: frames need not lie on whole ones.
    queue_draw_area(
        static_cast<int>(area.x * zoom_) - 1,
        static_cast<int>(area.y * zoom_) - 1,
        static_cast<int>(area.width * zoom_) + 3,
        static_cast<int>(area.height * zoom_) + 3);
}

/// What is read of it aloud.
void WidgetView::describe(Date now) {
    const std::string text = ui::joined(ui::readingTexts(entry_->view, now));
    get_accessible()->set_description(text);
    // Where the keys are is what is read.
    whole_.get_accessible()->set_description(text);
}

void WidgetView::placeLinks() {
    // The areas stay while the links do, so that the focus does.
    while (links_.size() > displayList_.links.size()) links_.pop_back();
    while (links_.size() < displayList_.links.size()) {
        const std::size_t index = links_.size();
        auto& link = links_.emplace_back(std::make_unique<TapArea>(linkCornerRadius * zoom_, true));
        link->signal_clicked().connect([this, index] { seams_.open(displayList_.links.at(index).url); });
        link->get_accessible()->set_role(Atk::ROLE_LINK);
        put(*link, 0, 0);
        link->show();
    }
    for (std::size_t i = 0; i < links_.size(); ++i) {
        const auto& [frame, url, text] = displayList_.links[i];
        links_[i]->set_size_request(rounded(frame.width * zoom_), rounded(frame.height * zoom_));
        move(*links_[i], rounded(frame.x * zoom_), rounded(frame.y * zoom_));
        links_[i]->get_accessible()->set_name(text.empty() ? name_ : text);
    }
}

double WidgetView::scale() const {
    return zoom_ * get_scale_factor();
}

void WidgetView::drawAll() {
    drawnScale_ = scale();
    seams_.renderer.draw(displayList_, drawnScale_, seams_.corners, picture_);
    queue_draw();
}

void WidgetView::get_preferred_width_vfunc(int& minimum, int& natural) const {
    minimum = natural = rounded(size_.width * zoom_);
}

void WidgetView::get_preferred_height_vfunc(int& minimum, int& natural) const {
    minimum = natural = rounded(size_.height * zoom_);
}

Gtk::Label& WidgetView::labelFor(std::unique_ptr<Gtk::Label>& label, const char* style) {
    if (!label) {
        label = std::make_unique<Gtk::Label>();
        label->set_line_wrap();
        label->set_max_width_chars(1);
        addPlainStyle(*label, zoom_);
        label->get_style_context()->add_class(style);
        put(*label, 0, 0);
    }
    return *label;
}

void WidgetView::say(const std::string& text, double seconds) {
    Gtk::Label& message = labelFor(message_, "message");
    const int width = rounded((size_.width - 24) * zoom_);
    // Told to assistive technology each time that it comes.
    message.hide();
    message.get_accessible()->set_role(Atk::ROLE_NOTIFICATION);
    message.set_text(text);
    message.set_size_request(width, -1);
    message.show();
    int least = 0, natural = 0;
    message.get_preferred_height_for_width(width, least, natural);
    move(message, rounded(12 * zoom_), rounded(size_.height * zoom_) - natural - rounded(12 * zoom_));
    sources_->message = runloop::MainSource::after(seconds, [this] { message_->hide(); });
}

void WidgetView::announce(const std::string& text) {
    Gtk::Label& announcement = labelFor(announcement_, "announcement");
    announcement.hide();
    announcement.get_accessible()->set_role(Atk::ROLE_NOTIFICATION);
    announcement.get_accessible()->set_name(text);
    announcement.set_text(text);
    announcement.set_size_request(1, 1);
    announcement.show();
}

void WidgetView::explain(const std::string& text) {
    if (entry_) return;
    Gtk::Label& explanation = labelFor(explanation_, "explanation");
    const int width = rounded((size_.width - 32) * zoom_);
    explanation.set_text((name_.empty() ? "" : name_ + "\n") + text);
    explanation.set_justify(Gtk::JUSTIFY_CENTER);
    explanation.set_size_request(width, -1);
    explanation.show();
    int least = 0, natural = 0;
    explanation.get_preferred_height_for_width(width, least, natural);
    move(explanation, rounded(16 * zoom_), (rounded(size_.height * zoom_) - natural) / 2);
    whole_.get_accessible()->set_description(text);
}

void WidgetView::setAge(const std::string& text) {
    if (text.empty()) {
        age_.reset();
        return;
    }
    Gtk::Label& age = labelFor(age_, "age");
    age.set_line_wrap(false);
    age.set_max_width_chars(-1);
    age.set_text(text);
    age.show();
    int least = 0, natural = 0;
    age.get_preferred_width(least, natural);
    move(age, (rounded(size_.width * zoom_) - natural) / 2, rounded(3 * zoom_));
}

void WidgetView::flash() {
    isFlashing_ = true;
    queue_draw();
    sources_->flash = runloop::MainSource::after(flashSeconds, [this] {
        isFlashing_ = false;
        queue_draw();
    });
}

bool WidgetView::on_focus(Gtk::DirectionType direction) {
    if (direction != Gtk::DIR_TAB_FORWARD && direction != Gtk::DIR_TAB_BACKWARD)
        return Gtk::Fixed::on_focus(direction);
    std::vector<Gtk::Widget*> areas{&whole_};
    for (const auto& link : links_) areas.push_back(link.get());
    if (direction == Gtk::DIR_TAB_BACKWARD) std::ranges::reverse(areas);
    const auto current = std::ranges::find_if(areas, [](Gtk::Widget* area) { return area->is_focus(); });
    const auto next = current == areas.end() ? areas.begin() : current + 1;
    if (next == areas.end()) return false;
    (*next)->grab_focus();
    return true;
}

void WidgetView::setSeen(bool isSeen) {
    isSeen_ = isSeen;
    if (isSeen && entry_) tick();
}

bool WidgetView::on_draw(const Cairo::RefPtr<Cairo::Context>& context) {
    if (entry_ && picture_.width > 0) {
        if (drawnScale_ != scale()) drawAll();
        context->set_operator(Cairo::OPERATOR_SOURCE);
        const double units = get_scale_factor();
        paintPicture(context, picture_, picture_.width / units, picture_.height / units);
        context->set_operator(Cairo::OPERATOR_OVER);
    } else {
        addOutline(
            context, 0, size_.width * zoom_, size_.height * zoom_, drawing::containerCornerRadius * zoom_);
        context->set_source_rgb(0.11, 0.11, 0.13);
        context->fill();
    }
    if (isFlashing_) {
        addOutline(
            context, 2, size_.width * zoom_, size_.height * zoom_, drawing::containerCornerRadius * zoom_);
        context->set_source_rgb(0.31, 0.55, 0.97);
        context->set_line_width(4);
        context->stroke();
    }
    waitForTick();
    return Gtk::Fixed::on_draw(context);
}

/// Waits for the next second of a countdown, from the drawing of one second to the next: what is never drawn
/// because nobody sees it stops by itself.
void WidgetView::waitForTick() {
    if (!isSeen_) return;
    const Date now = seams_.now();
    std::optional<Date> next;
    for (const auto& item : displayList_.items)
        if (const auto* countdown = std::get_if<layout::PlacedCountdown>(&item)) {
            const Date change = ui::nextTimerChange(countdown->end, now);
            next = next ? std::min(*next, change) : change;
        }
    if (next) sources_->tick = runloop::MainSource::after(*next - now, [this] { tick(); });
}

void WidgetView::tick() {
    if (isSeen_ && entry_) layOutAgain();
}

}  // namespace zelto::desktop
