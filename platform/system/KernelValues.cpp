#include "system/KernelValues.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <system_error>

#include "foundation/Files.hpp"

namespace zelto::system {

namespace fs = std::filesystem;

std::optional<std::string> kernelLine(const fs::path& file) {
    auto text = readFile(file);
    if (text) text->erase(std::min(text->find('\n'), text->size()));
    return text;
}

std::optional<std::int64_t> kernelInteger(const fs::path& file) {
    const auto text = kernelLine(file);
    std::int64_t value = 0;
    if (!text || text->empty()) return std::nullopt;
    const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), value);
    if (error != std::errc() || end != text->data() + text->size()) return std::nullopt;
    return value;
}

std::optional<double> leadingNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::vector<fs::path> entriesOf(const fs::path& folder) {
    std::vector<fs::path> entries;
    std::error_code error;
    for (fs::directory_iterator each(folder, error); !error && each != fs::directory_iterator();
         each.increment(error))
        entries.push_back(each->path());
    std::ranges::sort(entries);
    return entries;
}

}  // namespace zelto::system
