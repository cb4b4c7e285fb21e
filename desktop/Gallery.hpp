#pragma once

#include <functional>
#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/drawingarea.h>
#include <gtkmm/gesturedrag.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/window.h>
#include <memory>
#include <string>
#include <vector>

#include "DragIcon.hpp"
#include "drawing/Renderer.hpp"
#include "host/Previews.hpp"

namespace zelto::desktop {

/// The window that offers the extension's widgets, with a look of each family. A click, a key or a drag adds
/// one.
class Gallery : public Gtk::Window {
  public:
    struct Seams {
        const host::Previews& previews;
        const DisplayBackend& backend;
        drawing::Renderer& renderer;
        std::function<Date()> now;
        /// Adds a widget, at a place of the first monitor or where there is room.
        std::function<void(
            const std::string& kind, widgetkit::WidgetFamily family, std::optional<host::Cell>)>
            add;
    };
    Gallery(Seams seams, const std::vector<widgetkit::WidgetDescription>& offered);
    ~Gallery() override;

    void offer(const std::vector<widgetkit::WidgetDescription>& widgets);

  protected:
    bool on_key_press_event(GdkEventKey* event) override;

  private:
    class Preview;

    Seams seams_;
    Gtk::ScrolledWindow scroller_;
    Gtk::Box list_{Gtk::ORIENTATION_VERTICAL, 18};
    std::vector<std::unique_ptr<Preview>> previews_;
};

}  // namespace zelto::desktop
