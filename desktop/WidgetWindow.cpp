#include "WidgetWindow.hpp"

#include <algorithm>
#include <cmath>
#include <gtkmm/checkmenuitem.h>
#include <gtkmm/separatormenuitem.h>

#include "MainThread.hpp"
#include "Outline.hpp"
#include "Words.hpp"

namespace zelto::desktop {
namespace {

constexpr double dragThreshold = 8;  // in the display's units

}  // namespace

WidgetWindow::WidgetWindow(Seams seams, const host::PlacedWidget& widget)
    : seams_(std::move(seams)), widget_(widget), face_(seams_.face, seams_.surroundings.zoom()) {
    seams_.surroundings.prepare(*this, "zelto-widget", true);
    set_title(widget.kind);
    face_.name(widget.kind);
    add_events(Gdk::BUTTON_PRESS_MASK | Gdk::VISIBILITY_NOTIFY_MASK);
    add(face_);
    face_.show();

    drag_ = Gtk::GestureDrag::create(*this);
    // Before the areas below it, so that a tap that becomes a drag opens nothing.
    drag_->set_propagation_phase(Gtk::PHASE_CAPTURE);
    drag_->signal_drag_update().connect([this](double dx, double dy) { update(dx, dy); });
    drag_->signal_drag_end().connect([this](double dx, double dy) { end(dx, dy); });

    menu_.attach_to_widget(*this);
    face_.resize(widget.family);
}

void WidgetWindow::arrange(const host::ArrangedWidget& arranged) {
    const auto& [widget, slot] = arranged;
    const Desk& desk = seams_.surroundings.desks()[slot.monitor];
    if (widget.family != widget_.family) face_.resize(widget.family);
    const bool isThere = get_visible() && desk == desk_ && slot == slot_;
    widget_ = widget;
    desk_ = desk;
    slot_ = slot;
    if (isThere) return;
    seams_.surroundings.place(*this, slot);
    show();
}

void WidgetWindow::describe(const WidgetDescription& description) {
    description_ = description;
    set_title(description.displayName);
    face_.name(description.displayName);
}

void WidgetWindow::makeMenu() {
    for (Gtk::Widget* item : menu_.get_children()) menu_.remove(*item);
    const auto append = [this](Gtk::MenuItem* item, auto action) {
        item->signal_activate().connect(action);
        menu_.append(*Gtk::manage(item));
        return item;
    };
    if (description_)
        for (const WidgetFamily family : description_->families) {
            auto* item = new Gtk::CheckMenuItem(words::nameOf(family));
            item->set_draw_as_radio();
            item->set_active(family == widget_.family);
            append(item, [this, family] { setFamily(family); });
        }
    menu_.append(*Gtk::manage(new Gtk::SeparatorMenuItem));
    append(new Gtk::MenuItem(words::reload), [this] { reloadWidget(); });
    append(new Gtk::MenuItem(words::addWidgets), [this] { seams_.showGallery(); });
    append(new Gtk::MenuItem(words::remove), [this] { removeWidget(); });
    menu_.show_all();
}

bool WidgetWindow::on_button_press_event(GdkEventButton* event) {
    if (event->type != GDK_BUTTON_PRESS || event->button != GDK_BUTTON_SECONDARY)
        return Gtk::Window::on_button_press_event(event);
    makeMenu();
    menu_.popup_at_pointer(reinterpret_cast<GdkEvent*>(event));
    return true;
}

void WidgetWindow::showMenu() {
    makeMenu();
    menu_.popup_at_widget(&face_, Gdk::GRAVITY_CENTER, Gdk::GRAVITY_NORTH_WEST, nullptr);
}

bool WidgetWindow::on_key_press_event(GdkEventKey* event) {
    const bool isControl = (event->state & GDK_CONTROL_MASK) != 0;
    const bool isShift = (event->state & GDK_SHIFT_MASK) != 0;
    switch (event->keyval) {
        case GDK_KEY_Menu: showMenu(); return true;
        case GDK_KEY_F10:
            if (isShift) {
                showMenu();
                return true;
            }
            break;
        case GDK_KEY_Delete: removeWidget(); return true;
        case GDK_KEY_F5: reloadWidget(); return true;
        case GDK_KEY_Insert: seams_.showGallery(); return true;
        case GDK_KEY_plus: stepFamily(+1); return true;
        case GDK_KEY_minus: stepFamily(-1); return true;
        case GDK_KEY_Left:
            if (isControl) {
                step(-1, 0);
                return true;
            }
            break;
        case GDK_KEY_Right:
            if (isControl) {
                step(+1, 0);
                return true;
            }
            break;
        case GDK_KEY_Up:
            if (isControl) {
                step(0, -1);
                return true;
            }
            break;
        case GDK_KEY_Down:
            if (isControl) {
                step(0, +1);
                return true;
            }
            break;
        default: break;
    }
    return Gtk::Window::on_key_press_event(event);
}

/// A compositor closes what was on a monitor that went away; the widget comes back on another one.
bool WidgetWindow::on_delete_event(GdkEventAny*) {
    postToMainThread([this, isThere = std::weak_ptr(life_)] {
        if (isThere.expired()) return;
        hide();
        seams_.closed();
    });
    return true;
}

bool WidgetWindow::on_visibility_notify_event(GdkEventVisibility* event) {
    face_.setSeen(event->state != GDK_VISIBILITY_FULLY_OBSCURED);
    return false;
}

void WidgetWindow::on_size_allocate(Gtk::Allocation& allocation) {
    Gtk::Window::on_size_allocate(allocation);
    if (!seams_.surroundings.isTranslucent()) shapeToOutline(*this, seams_.surroundings.zoom());
}

host::Slot WidgetWindow::target(double dx, double dy) const {
    const auto& surroundings = seams_.surroundings;
    std::size_t monitor = slot_.monitor;
    layout::Point point = surroundings.position(slot_.cell);
    point.x += dx;
    point.y += dy;
    if (surroundings.placing() == Placing::hints) {
        // The widget's middle says which monitor is meant.
        const ui::Size size = sizeOf(widget_.family);
        const double x = desk_->x + point.x, y = desk_->y + point.y;
        monitor = surroundings
                      .deskAt(
                          static_cast<int>(x + size.width * surroundings.zoom() / 2),
                          static_cast<int>(y + size.height * surroundings.zoom() / 2))
                      .value_or(monitor);
        const Desk& desk = surroundings.desks()[monitor];
        point = {x - desk.x, y - desk.y};
    }
    return surroundings.slotAt(monitor, point, widget_.family);
}

void WidgetWindow::update(double dx, double dy) {
    if (!ghost_) {
        if (std::hypot(dx, dy) < dragThreshold) return;
        // From here on it is no tap.
        drag_->set_state(Gtk::EVENT_SEQUENCE_CLAIMED);
        ghost_ = std::make_unique<Ghost>(seams_.surroundings, widget_.family, face_.picture());
    }
    ghost_->place(target(dx, dy));
}

void WidgetWindow::end(double dx, double dy) {
    if (!ghost_) return;
    ghost_.reset();
    moveTo(target(dx, dy));
}

void WidgetWindow::step(std::int64_t columns, std::int64_t rows) {
    const host::Cell wanted{slot_.cell.column + columns, slot_.cell.row + rows};
    // As far as the monitor goes.
    const auto& surroundings = seams_.surroundings;
    moveTo(surroundings.slotAt(slot_.monitor, surroundings.position(wanted), widget_.family));
}

void WidgetWindow::moveTo(host::Slot slot) {
    if (slot != slot_) tell(seams_.host.move(widget_.id, slot));
}

void WidgetWindow::stepFamily(int direction) {
    if (!description_) return;
    const auto& families = description_->families;
    const auto current = std::ranges::find(families, widget_.family);
    const auto index = current - families.begin() + direction;
    if (current != families.end() && index >= 0 && index < std::ssize(families))
        setFamily(families[static_cast<std::size_t>(index)]);
}

void WidgetWindow::setFamily(WidgetFamily family) {
    tell(seams_.host.setFamily(widget_.id, family));
}

void WidgetWindow::reloadWidget() {
    // A widget that is gone by now wants nothing.
    static_cast<void>(seams_.host.reload(widget_.id));
}

void WidgetWindow::removeWidget() {
    static_cast<void>(seams_.host.remove(widget_.id));
}

void WidgetWindow::tell(const Result<void>& done) {
    if (!done) face_.say(words::noRoom);
}

}  // namespace zelto::desktop
