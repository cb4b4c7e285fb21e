#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace zelto::test {

inline bool has(const std::string& outline, const std::string& piece) {
    return outline.find(piece) != std::string::npos;
}

/// The texts of an outline, in order.
inline std::vector<std::string> texts(const std::string& outline) {
    std::vector<std::string> out;
    for (auto at = outline.find("Text \""); at != std::string::npos; at = outline.find("Text \"", at + 1))
        out.push_back(outline.substr(at + 6, outline.find('"', at + 6) - at - 6));
    return out;
}
inline bool shows(const std::string& outline, const std::string& text) {
    const auto all = texts(outline);
    return std::ranges::find(all, text) != all.end();
}
inline int count(const std::string& outline, const std::string& piece) {
    int n = 0;
    for (auto at = outline.find(piece); at != std::string::npos; at = outline.find(piece, at + 1)) ++n;
    return n;
}
/// The colour of the first ring's arc.
inline std::string arcColor(const std::string& outline) {
    return outline.substr(outline.find("style=", outline.find("trim=")) + 6, 7);
}

}  // namespace zelto::test
