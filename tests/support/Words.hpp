#pragma once

#include <string>
#include <vector>

namespace zelto::test {

/// Words as the system's calls want them; good as long as the words are.
inline std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> out;
    for (auto& word : words) out.push_back(word.data());
    out.push_back(nullptr);
    return out;
}

}  // namespace zelto::test
