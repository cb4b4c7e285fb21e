#include <iostream>

#include "Commands.hpp"
#include "Extension.hpp"
#include "Failure.hpp"
#include "Input.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::cli {

void gallery(const GalleryOptions& options) {
    const auto widgets = Extension(options.extension).widgets();
    if (options.json) {
        std::cout << records::encodeJSON(widgets).value_or("") << '\n';
        return;
    }
    for (const widgetkit::WidgetDescription& widget : widgets)
        std::cout << widget.kind << "  " << familyNames(widget.families) << "\n    " << widget.displayName
                  << "\n    " << widget.description << '\n';
}

}  // namespace zelto::cli
