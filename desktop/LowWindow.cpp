#include "LowWindow.hpp"

namespace zelto::desktop {
namespace {

constexpr double keysPatience = 0.5;  // seconds

}  // namespace

LowWindow::LowWindow(const DisplayBackend& backend, const std::string& name) : backend_(backend) {
    backend_.prepare(*this, name, true);
}

void LowWindow::takeKeys() {
    set_focus_visible(true);
    if (!has_toplevel_focus()) keepKeys();
}

void LowWindow::keepKeys() {
    backend_.giveKeys(*this);
    // Nothing is to keep it above others, whatever the compositor does.
    keysLate_ = runloop::MainSource::after(keysPatience, [this] { backend_.keysCame(*this); });
}

void LowWindow::letKeysGo() {
    if (!has_toplevel_focus()) return;
    backend_.letKeysGo(*this);
    keysLate_ = runloop::MainSource::after(keysPatience, [this] { backend_.keysCame(*this); });
}

bool LowWindow::on_focus_in_event(GdkEventFocus* event) {
    keysLate_.reset();
    backend_.keysCame(*this);
    return Gtk::Window::on_focus_in_event(event);
}

}  // namespace zelto::desktop
