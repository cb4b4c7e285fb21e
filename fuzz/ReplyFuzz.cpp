// Any bytes as an extension's reply: whatever passes the host's checks can be laid out and drawn.

#include <cstdint>
#include <cstdlib>

#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"
#include "ui/Outline.hpp"
#include "widgetkit/Messages.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto;
    using namespace zelto::widgetkit;
    static drawing::Renderer renderer;
    const auto reply = decodeReply({reinterpret_cast<const char*>(data), size});
    if (!reply) return 0;
    const auto show = [](const ui::View& view) {
        const auto displayList =
            layout::layOut(view, {.size = {164, 164}, .now = {800000000}}, renderer.measuring());
        if (layout::dump(displayList).empty() || ui::outline(view).empty()) std::abort();
        renderer.draw(displayList, 0.5);
    };
    if (reply->entry) show(reply->entry->view);
    if (reply->timeline) show(reply->timeline->entries.front().view);
    return 0;
}
