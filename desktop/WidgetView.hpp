#pragma once

#include <functional>
#include <gtkmm/button.h>
#include <gtkmm/fixed.h>
#include <gtkmm/label.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Renderer.hpp"
#include "layout/DisplayList.hpp"
#include "layout/Layout.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::desktop {

/// Something to tap: draws nothing but that the pointer is over it or that it has the focus.
class TapArea : public Gtk::Button {
  public:
    /// A corner radius in the display's units.
    TapArea(double cornerRadius, bool showsHover);

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;

  private:
    double cornerRadius_;
    bool showsHover_;
};

/// What a widget shows, and where it can be tapped: its picture, with one area for all of it and one for each
/// link. What an entry changes is drawn, and a countdown once a second while it is seen.
class WidgetView : public Gtk::Fixed {
  public:
    struct Seams {
        drawing::Renderer& renderer;
        std::function<Date()> now;
        std::function<void(const std::string& url)> open;
        drawing::Corners corners = drawing::Corners::rounded;
        layout::Contrast contrast = layout::Contrast::normal;
    };
    WidgetView(Seams seams, double zoom);
    ~WidgetView() override;

    /// Its name for assistive technology.
    void name(const std::string& displayName);
    void resize(widgetkit::WidgetFamily family);
    void present(const widgetkit::ArchivedEntry& entry);
    /// Says something for so many seconds, over the picture.
    void say(const std::string& text, double seconds = 4);
    /// Says something to assistive technology only.
    void announce(const std::string& text);
    /// Why there is no picture, until there is one.
    void explain(const std::string& text);
    /// How old the picture is; empty while it is not.
    void setAge(const std::string& text);
    /// Shows for a moment which one it is.
    void flash();
    /// Whether anything of it is seen; a countdown stops otherwise.
    void setSeen(bool isSeen);
    /// What is drawn, for the ghost of a drag.
    const drawing::Picture& picture() const { return picture_; }

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;
    /// Tab comes to the widget itself and then to its links, wherever those lie.
    bool on_focus(Gtk::DirectionType direction) override;
    /// The widget's own size, whatever a message would like.
    void get_preferred_width_vfunc(int& minimum, int& natural) const override;
    void get_preferred_height_vfunc(int& minimum, int& natural) const override;

  private:
    Gtk::Label& labelFor(std::unique_ptr<Gtk::Label>& label, const char* style);
    void layOutAgain();
    void describe(Date now);
    void placeLinks();
    void drawAll();
    /// Draws what differs from what is drawn.
    void drawChanges(const layout::DisplayList& before);
    void tick();
    void waitForTick();
    double scale() const;

    Seams seams_;
    double zoom_;
    layout::Size size_;
    std::string name_;
    std::optional<widgetkit::ArchivedEntry> entry_;
    layout::DisplayList displayList_;
    drawing::Picture picture_;
    double drawnScale_ = 0;
    TapArea whole_;
    std::vector<std::unique_ptr<TapArea>> links_;
    std::unique_ptr<Gtk::Label> message_, announcement_, explanation_, age_;
    bool isSeen_ = true, isFlashing_ = false;
    struct Sources;
    std::unique_ptr<Sources> sources_;
};

}  // namespace zelto::desktop
