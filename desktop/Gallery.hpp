#pragma once

#include <functional>
#include <gtkmm/box.h>
#include <gtkmm/button.h>
#include <gtkmm/drawingarea.h>
#include <gtkmm/gesturedrag.h>
#include <gtkmm/label.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/searchentry.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "DragIcon.hpp"
#include "drawing/Renderer.hpp"
#include "host/WidgetHost.hpp"

namespace zelto::desktop {

/// The page that offers the extension's widgets, with a look of each family, to be found by name. A click, a
/// key or a drag adds one.
class Gallery : public Gtk::Box {
  public:
    struct Seams {
        host::WidgetHost& host;
        const DisplayBackend& backend;
        drawing::Renderer& renderer;
        std::function<Date()> now;
        /// Adds a widget, in a slot or where there is room.
        std::function<void(
            const std::string& kind, widgetkit::WidgetFamily family, std::optional<host::Slot>)>
            add;
    };
    explicit Gallery(Seams seams);
    ~Gallery() override;

    void offer(const std::vector<widgetkit::WidgetDescription>& widgets);
    /// Puts the keys where a name is typed.
    void search() { search_.grab_focus(); }

  private:
    class Preview;
    struct Row {
        Gtk::Widget* widget;
        std::string texts;
    };

    void find();

    Seams seams_;
    Gtk::SearchEntry search_;
    Gtk::ScrolledWindow scroller_;
    Gtk::Box list_{Gtk::ORIENTATION_VERTICAL, 18};
    Gtk::Label nothingFound_;
    std::vector<Row> rows_;
    std::vector<std::unique_ptr<Preview>> previews_;
};

}  // namespace zelto::desktop
