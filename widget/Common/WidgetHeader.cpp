#include "Common/WidgetHeader.hpp"

#include "Common/DeepLink.hpp"
#include "Common/Palette.hpp"
#include "ui/Building.hpp"

namespace zelto::widget {

using namespace ui;

View WidgetHeader::body() const {
    return HStack(
        {.spacing = 4},
        Symbol(icon).foreground(color),
        Text(title).font(11, Weight::bold).lineLimit(1),
        Spacer(),
        ifPresent(trailing, [](const auto& text) {
            return Text(text).font(9).foreground(secondary).lineLimit(1).minimumScale(0.6);
        }));
}

View OpenAppNote::body() const {
    return Label("exclamationmark.circle", "Abra o Zelto para atualizar").font(9).foreground(secondary);
}

std::function<View(View)> zeltoRoot(std::string_view path) {
    return [link = deepLink(path)](View view) {
        return std::move(view)
            .widgetURL(link)
            .foreground(Palette::white)
            .containerBackground(Palette::background);
    };
}

}  // namespace zelto::widget
