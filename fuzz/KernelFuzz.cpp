// Any bytes as the kernel's files.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "Bytes.hpp"
#include "widget/Common/LiveReader.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace fs = std::filesystem;
    using namespace zelto;
    static const fs::path root = [] {
        std::string name = (fs::temp_directory_path() / "zelto-fuzz-XXXXXX").string();
        return fs::path(mkdtemp(name.data()));
    }();
    const auto put = [](const char* file, const std::string& text) {
        fs::create_directories((root / file).parent_path());
        std::ofstream(root / file, std::ios::binary) << text;
    };
    FuzzBytes in{data, size};
    put("proc/stat", in.take(in.byte()));
    put("proc/meminfo", in.take(in.byte() * std::size_t{2}));
    put("sys/block/zram0/mm_stat", in.take(in.byte()));
    for (const char* file :
         {"type",
          "present",
          "capacity",
          "energy_now",
          "energy_full",
          "charge_now",
          "charge_full",
          "status"}) {
        const std::string text = in.take(in.byte() % 24U);
        const bool isType = std::string_view(file) == "type";
        put((std::string("sys/class/power_supply/BAT0/") + file).c_str(),
            isType && text.empty() ? "Battery\n" : text);
    }
    auto readings = system::SystemReadings::ofLinux(root);
    readings.sleep = [](auto) {};
    const auto live = widget::LiveReader::read(readings);
    if (!(live.cpu >= 0 && live.cpu <= 1) || !(live.memory >= 0 && live.memory <= 1)) std::abort();
    return 0;
}
