#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "widgetkit/Widget.hpp"

namespace zelto::widgetkit {

/// What a widget shows, for hosts that want to know when to ask again.
struct WidgetContents {
    std::vector<std::string> files;
    bool live = false;
};

/// What surrounds a service.
struct ServiceSeams {
    /// The locale and zone of requests that name none.
    texts::Environment environment;
    std::function<Date()> now = {};
    /// The middle of an image file, when it is there by the deadline; none without it.
    std::function<std::optional<ui::node::Image>(
        const std::string& path, std::chrono::steady_clock::time_point deadline)>
        thumbnail = {};
    /// By kind; the `bundle` reply tells it of those that are here.
    std::map<std::string, WidgetContents> contents = {};
    /// What the `bundle` reply tells of the process.
    std::optional<Confinement> confinement = {};
};

/// Answers requests for a list of widgets. Its operations may run on any thread.
class Service {
  public:
    Service(std::vector<WidgetConfiguration> widgets, ServiceSeams seams);

    /// The reply to one line, itself a line without its end. Views are cut to the budget (ViewBounds.hpp). A
    /// request that makes no sense, or for which memory runs out, gets an error.
    std::string answer(std::string_view line) const;

    /// Reads requests from `input` and writes replies to `output`, each as soon as it is ready, until the
    /// input ends and the last reply is out. Requests are worked on side by side. False when the output
    /// broke.
    bool serve(int input, int output) const;

    /// A request line that is longer is refused.
    static constexpr std::size_t longestLine = std::size_t{64} * 1024;

  private:
    Reply reply(const Request& request) const;

    std::vector<WidgetConfiguration> widgets_;
    ServiceSeams seams_;
};

}  // namespace zelto::widgetkit
