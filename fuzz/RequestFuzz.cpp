// Any bytes as a request line: the extension answers each with a reply that a host takes.

#include <cstdint>
#include <cstdlib>

#include "widget/Widgets/ZeltoWidgetBundle.hpp"
#include "widgetkit/Service.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    static const auto now = [] { return Date{800'000'000}; };
    static const widgetkit::Service service(
        widget::ZeltoWidgetBundle{{.now = now,
                                   .live = [] { return widget::placeholderLiveData(); },
                                   .snapshot = []() -> std::optional<shared::WidgetSnapshot> {
                                       return shared::WidgetSnapshot::sample(now());
                                   }}}
            .body(),
        {.environment = {"pt_BR", "America/Sao_Paulo"}, .now = now});
    const auto line = service.answer({reinterpret_cast<const char*>(data), size});
    const auto reply = widgetkit::decodeReply(line);
    if (!reply) std::abort();
    if (reply->error && reply->error->starts_with("out of bounds")) std::abort();
    return 0;
}
