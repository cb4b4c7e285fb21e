// Any bytes as the file of the desktop's layout, and as a stored timeline: what is accepted can be arranged,
// and survives being written and read again.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "host/DesktopLayoutStore.hpp"
#include "host/EntryStore.hpp"

namespace {

namespace fs = std::filesystem;
using namespace zelto;

fs::path scratch() {
    static const fs::path folder = [] {
        std::string name = (fs::temp_directory_path() / "zelto-fuzz-XXXXXX").string();
        return fs::path(mkdtemp(name.data()));
    }();
    return folder;
}

void put(const fs::path& file, std::string_view text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const fs::path folder = scratch() / "config";
    put(folder / "desktop.json", text);
    host::DesktopLayoutStore store(folder);
    if (const auto layout = store.load()) {
        if (store.wasEdited()) std::abort();
        if (layout->arranged({{"A", 5, 4}, {"B", 1, 1}}).size() != layout->widgets.size()) std::abort();
        if (!store.save(*layout) || store.load().value() != *layout) std::abort();
    }
    static const host::Look look{"K", widgetkit::WidgetFamily::systemSmall};
    static const host::EntryStore entries(scratch() / "cache");
    put(scratch() / "cache/K.systemSmall.1.json", text);
    if (const auto timeline = entries.load(look); timeline && timeline->entries.empty()) std::abort();
    for (const auto& file : fs::directory_iterator(folder)) fs::remove(file);
    return 0;
}
