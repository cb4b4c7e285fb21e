// Any bytes as a link that somebody wants opened: what is taken is one of the widgets' links.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <variant>

#include "agent/Links.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zelto::agent;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto link = parseLink(text);
    if (!link) return 0;
    if (const auto* join = std::get_if<JoinLink>(&*link)) {
        std::string scheme = join->page.substr(0, join->page.find(':'));
        for (char& c : scheme) c = static_cast<char>(c | 0x20);
        if (scheme != "http" && scheme != "https") std::abort();
        if (join->page.find('\0') != std::string::npos) std::abort();
    }
    if (const auto* awake = std::get_if<AwakeLink>(&*link))
        if (awake->minutes && (*awake->minutes < 1 || *awake->minutes > mostAwakeMinutes)) std::abort();
    if (const auto* open = std::get_if<OpenLink>(&*link))
        if (open->tab.find_first_not_of("abcdefghijklmnopqrstuvwxyz") != std::string::npos) std::abort();
    return 0;
}
