#include "WidgetWindow.hpp"

#include <algorithm>
#include <cmath>
#include <gtkmm/checkmenuitem.h>
#include <gtkmm/radiomenuitem.h>
#include <gtkmm/separatormenuitem.h>
#include <utility>

#include "Outline.hpp"
#include "Strings.hpp"
#include "runloop/MainLoop.hpp"

namespace zelto::desktop {
namespace {

constexpr double dragThreshold = 8;  // in the display's units

}  // namespace

WidgetWindow::WidgetWindow(Seams seams, const host::PlacedWidget& widget)
    : LowWindow(seams.backend, "zelto-widget"),
      seams_(std::move(seams)),
      widget_(widget),
      view_(seams_.view, seams_.backend.zoom()) {
    set_title(widget.kind);
    view_.name(widget.kind);
    add_events(Gdk::BUTTON_PRESS_MASK | Gdk::ENTER_NOTIFY_MASK | Gdk::VISIBILITY_NOTIFY_MASK);
    add(view_);
    view_.show();

    drag_ = Gtk::GestureDrag::create(*this);
    // Before the areas below it, so that a tap that becomes a drag opens nothing.
    drag_->set_propagation_phase(Gtk::PHASE_CAPTURE);
    drag_->signal_drag_begin().connect([this](double, double) { clicked(); });
    drag_->signal_drag_update().connect([this](double dx, double dy) { update(dx, dy); });
    drag_->signal_drag_end().connect([this](double dx, double dy) { end(dx, dy); });

    menu_.attach_to_widget(*this);
    view_.resize(widget.family);
}

void WidgetWindow::arrange(const host::ArrangedWidget& arranged) {
    const auto& [widget, slot] = arranged;
    const MonitorArea& area = seams_.backend.areas()[slot.monitor];
    if (widget.family != widget_.family) view_.resize(widget.family);
    const bool isThere = get_visible() && area == area_ && slot == slot_;
    widget_ = widget;
    area_ = area;
    slot_ = slot;
    if (isThere) return;
    seams_.backend.place(*this, slot);
    show();
    seams_.backend.keepBelow(*this);
    tellSeen();
}

void WidgetWindow::describe(const widgetkit::WidgetDescription& description) {
    description_ = description;
    set_title(description.displayName);
    view_.name(description.displayName);
}

void WidgetWindow::makeMenu() {
    for (Gtk::Widget* item : menu_.get_children()) menu_.remove(*item);
    const auto append = [this](Gtk::MenuItem* item, auto action) {
        item->signal_activate().connect(action);
        menu_.append(*Gtk::manage(item));
        return item;
    };
    Gtk::RadioMenuItem::Group sizes;
    if (description_)
        for (const widgetkit::WidgetFamily family : description_->families) {
            auto* item = new Gtk::RadioMenuItem(sizes, strings::nameOf(family));
            item->set_active(family == widget_.family);
            append(item, [this, item, family] {
                if (item->get_active()) setFamily(family);
            });
        }
    menu_.append(*Gtk::manage(new Gtk::SeparatorMenuItem));
    addMonitors();
    auto* lock = new Gtk::CheckMenuItem(strings::lockPositions);
    lock->set_active(seams_.host.settings().locked.value_or(false));
    append(lock, [this, lock] {
        auto settings = seams_.host.settings();
        settings.locked = lock->get_active() ? std::optional(true) : std::nullopt;
        seams_.host.set(settings);
    });
    append(new Gtk::MenuItem(strings::reload), [this] { reloadWidget(); });
    if (const auto help = seams_.linkHelp()) append(new Gtk::MenuItem(strings::howToOpen), help);
    append(new Gtk::MenuItem(strings::addWidgets), [this] { seams_.showGallery(); });
    append(new Gtk::MenuItem(strings::remove), [this] { removeWidget(); });
    menu_.show_all();
}

void WidgetWindow::addMonitors() {
    const auto& areas = seams_.backend.areas();
    if (areas.size() < 2) return;
    auto* monitors = Gtk::manage(new Gtk::Menu);
    for (std::size_t i = 0; i < areas.size(); ++i) {
        if (i == slot_.monitor) continue;
        auto* item = Gtk::manage(new Gtk::MenuItem(strings::monitorName(areas[i].name, i)));
        item->signal_activate().connect([this, i] { sendTo(i, slot_.cell); });
        monitors->append(*item);
    }
    auto* moveTo = Gtk::manage(new Gtk::MenuItem(strings::moveTo));
    moveTo->set_submenu(*monitors);
    menu_.append(*moveTo);
}

bool WidgetWindow::on_button_press_event(GdkEventButton* event) {
    if (event->type != GDK_BUTTON_PRESS || event->button != GDK_BUTTON_SECONDARY)
        return LowWindow::on_button_press_event(event);
    clicked();
    makeMenu();
    menu_.popup_at_pointer(reinterpret_cast<GdkEvent*>(event));
    return true;
}

void WidgetWindow::showMenu() {
    makeMenu();
    menu_.popup_at_widget(&view_, Gdk::GRAVITY_CENTER, Gdk::GRAVITY_NORTH_WEST, nullptr);
}

/// A window manager gives the keys to whom it manages.
void WidgetWindow::clicked() {
    if (seams_.backend.windowKind() == WindowKind::unmanaged) seams_.backend.giveKeys(*this);
}

bool WidgetWindow::on_key_press_event(GdkEventKey* event) {
    struct Key {
        guint symbol;
        GdkModifierType modifier;
        std::function<bool()> action;
    };
    const auto done = [](auto action) {
        return [action] {
            action();
            return true;
        };
    };
    const auto moved = [&](int columns, int rows) {
        return done([this, columns, rows] { step(columns, rows); });
    };
    const auto walked = [this](Gtk::DirectionType direction, Step beyond) {
        return [this, direction, beyond] { return walk(direction, beyond); };
    };
    constexpr auto none = GdkModifierType(0);
    const Key keys[] = {
        {GDK_KEY_Menu, none, done([this] { showMenu(); })},
        {GDK_KEY_F10, GDK_SHIFT_MASK, done([this] { showMenu(); })},
        {GDK_KEY_z, GDK_CONTROL_MASK, done([this] { seams_.undo(); })},
        {GDK_KEY_Delete, none, done([this] { removeWidget(); })},
        {GDK_KEY_F5, none, done([this] { reloadWidget(); })},
        {GDK_KEY_Insert, none, done([this] { seams_.showGallery(); })},
        {GDK_KEY_plus, none, done([this] { stepFamily(+1); })},
        {GDK_KEY_equal, none, done([this] { stepFamily(+1); })},
        {GDK_KEY_KP_Add, none, done([this] { stepFamily(+1); })},
        {GDK_KEY_minus, none, done([this] { stepFamily(-1); })},
        {GDK_KEY_KP_Subtract, none, done([this] { stepFamily(-1); })},
        {GDK_KEY_Left, GDK_CONTROL_MASK, moved(-1, 0)},
        {GDK_KEY_Right, GDK_CONTROL_MASK, moved(+1, 0)},
        {GDK_KEY_Up, GDK_CONTROL_MASK, moved(0, -1)},
        {GDK_KEY_Down, GDK_CONTROL_MASK, moved(0, +1)},
        {GDK_KEY_Left, none, walked(Gtk::DIR_LEFT, Step::left)},
        {GDK_KEY_Right, none, walked(Gtk::DIR_RIGHT, Step::right)},
        {GDK_KEY_Up, none, walked(Gtk::DIR_UP, Step::up)},
        {GDK_KEY_Down, none, walked(Gtk::DIR_DOWN, Step::down)},
        {GDK_KEY_Tab, none, walked(Gtk::DIR_TAB_FORWARD, Step::next)},
        {GDK_KEY_ISO_Left_Tab, none, walked(Gtk::DIR_TAB_BACKWARD, Step::previous)},
        {GDK_KEY_Escape, none, done([this] { cancelDrag(); })}};
    // Shift is how some keyboards come to a plus.
    constexpr auto telling = GdkModifierType(GDK_CONTROL_MASK | GDK_MOD1_MASK);
    for (const Key& key : keys)
        if (key.symbol == event->keyval &&
            (event->state & static_cast<guint>(telling | key.modifier)) == static_cast<guint>(key.modifier))
            return key.action() || LowWindow::on_key_press_event(event);
    return LowWindow::on_key_press_event(event);
}

bool WidgetWindow::walk(Gtk::DirectionType direction, Step beyond) {
    return view_.child_focus(direction) || seams_.walk(beyond);
}

void WidgetWindow::takeKeysAt(bool isFirst) {
    takeKeys();
    unset_focus();
    view_.child_focus(isFirst ? Gtk::DIR_TAB_FORWARD : Gtk::DIR_TAB_BACKWARD);
}

/// A compositor closes what was on a monitor that went away; the widget comes back on another one.
bool WidgetWindow::on_delete_event(GdkEventAny*) {
    runloop::postToMainThread([this, isThere = std::weak_ptr(life_)] {
        if (isThere.expired()) return;
        hide();
        tellSeen();
        seams_.closed();
    });
    return true;
}

bool WidgetWindow::on_visibility_notify_event(GdkEventVisibility* event) {
    isCovered_ = event->state == GDK_VISIBILITY_FULLY_OBSCURED;
    tellSeen();
    return false;
}

void WidgetWindow::tellSeen() {
    const auto window = get_window();
    const bool isSeen =
        get_visible() && !isCovered_ && seams_.isScreenSeen() && !(window && seams_.isHidden(window->gobj()));
    if (std::exchange(isSeen_, isSeen) == isSeen) return;
    view_.setSeen(isSeen);
    seams_.host.setSeen(widget_.id, isSeen);
}

bool WidgetWindow::on_enter_notify_event(GdkEventCrossing* event) {
    // Not from one part of it to another.
    if (event->detail != GDK_NOTIFY_INFERIOR) seams_.entered();
    return LowWindow::on_enter_notify_event(event);
}

void WidgetWindow::on_size_allocate(Gtk::Allocation& allocation) {
    LowWindow::on_size_allocate(allocation);
    const std::pair size{get_allocated_width(), get_allocated_height()};
    if (seams_.backend.isTranslucent() || std::exchange(shaped_, size) == size) return;
    shapeToOutline(*this, seams_.backend.zoom());
}

host::Slot WidgetWindow::target(double dx, double dy) const {
    const auto& backend = seams_.backend;
    std::size_t monitor = slot_.monitor;
    layout::Point point = backend.position(slot_.cell);
    point.x += dx;
    point.y += dy;
    if (backend.hasOneSpace()) {
        // The widget's middle says which monitor is meant.
        const ui::Size size = widgetkit::sizeOf(widget_.family);
        const double x = area_->x + point.x, y = area_->y + point.y;
        monitor = backend
                      .monitorAt(
                          static_cast<int>(x + size.width * backend.zoom() / 2),
                          static_cast<int>(y + size.height * backend.zoom() / 2))
                      .value_or(monitor);
        const MonitorArea& area = backend.areas()[monitor];
        point = {x - area.x, y - area.y};
    }
    return backend.slotAt(monitor, point, widget_.family);
}

Landing WidgetWindow::landing(host::Slot slot) const {
    if (slot == slot_) return Landing::free;
    const auto inTheWay = seams_.host.inTheWay(widget_.id, slot);
    return !inTheWay ? Landing::refused : *inTheWay == 0 ? Landing::free : Landing::swap;
}

void WidgetWindow::update(double dx, double dy) {
    if (!dragIcon_) {
        if (std::hypot(dx, dy) < dragThreshold) return;
        if (isLocked()) {
            drag_->set_state(Gtk::EVENT_SEQUENCE_CLAIMED);
            drag_->set_state(Gtk::EVENT_SEQUENCE_DENIED);
            return;
        }
        // From here on it is no tap.
        drag_->set_state(Gtk::EVENT_SEQUENCE_CLAIMED);
        dragIcon_ = std::make_unique<DragIcon>(seams_.backend, widget_.family, view_.picture());
    }
    const host::Slot slot = target(dx, dy);
    dragIcon_->place(slot, landing(slot));
}

void WidgetWindow::cancelDrag() {
    if (!dragIcon_) return;
    dragIcon_.reset();
    drag_->set_state(Gtk::EVENT_SEQUENCE_DENIED);
}

void WidgetWindow::end(double dx, double dy) {
    if (!dragIcon_) return;
    dragIcon_.reset();
    moveTo(target(dx, dy));
}

void WidgetWindow::step(int columns, int rows) {
    if (isLocked()) return;
    const host::Cell wanted{slot_.cell.column + columns, slot_.cell.row + rows};
    // As far as the monitor goes, and then to the next one.
    const auto& backend = seams_.backend;
    const host::Slot slot = backend.slotAt(slot_.monitor, backend.position(wanted), widget_.family);
    if (slot != slot_) {
        moveTo(slot);
        return;
    }
    const auto monitor = backend.beside(slot_.monitor, columns, rows);
    if (!monitor) return;
    const auto entered = [](int direction, std::int64_t tile) {
        return direction > 0 ? 0 : direction < 0 ? host::farthestTile : tile;
    };
    sendTo(*monitor, {entered(columns, slot_.cell.column), entered(rows, slot_.cell.row)});
}

bool WidgetWindow::isLocked() {
    const bool isLocked = seams_.host.settings().locked.value_or(false);
    if (isLocked) view_.say(strings::locked);
    return isLocked;
}

void WidgetWindow::moveTo(host::Slot slot) {
    if (slot != slot_) tellMoved(seams_.host.move(widget_.id, slot));
}

void WidgetWindow::sendTo(std::size_t monitor, host::Cell cell) {
    if (isLocked()) return;
    const bool hadKeys = has_toplevel_focus();
    tellMoved(seams_.host.send(widget_.id, monitor, cell));
    if (hadKeys) keepKeys();
}

void WidgetWindow::stepFamily(int direction) {
    if (!description_) return;
    const auto& families = description_->families;
    const auto current = std::ranges::find(families, widget_.family);
    const auto index = current - families.begin() + direction;
    if (current != families.end() && index >= 0 && index < std::ssize(families))
        setFamily(families[static_cast<std::size_t>(index)]);
}

void WidgetWindow::setFamily(widgetkit::WidgetFamily family) {
    if (family == widget_.family) return;
    if (seams_.host.setFamily(widget_.id, family))
        view_.announce(strings::resized(name(), family));
    else
        view_.say(strings::noRoom);
}

void WidgetWindow::reloadWidget() {
    // A widget that is gone by now wants nothing.
    static_cast<void>(seams_.host.reload(widget_.id));
}

void WidgetWindow::removeWidget() {
    static_cast<void>(seams_.host.remove(widget_.id));
}

void WidgetWindow::tellMoved(const Result<void>& done) {
    if (!done) {
        view_.say(strings::noRoom);
        return;
    }
    const std::string monitor =
        strings::monitorName(seams_.backend.areas()[slot_.monitor].name, slot_.monitor);
    view_.announce(strings::moved(name(), strings::place(monitor, slot_.cell.column, slot_.cell.row)));
}

}  // namespace zelto::desktop
