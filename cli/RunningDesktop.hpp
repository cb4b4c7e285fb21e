#pragma once

#include <string>
#include <vector>

namespace zelto::cli {

/// Whether `zelto desktop WORD` talks to the widgets that are there, rather than to start them.
bool isDesktopVerb(const std::string& word);
/// For people: what such words there are.
std::string desktopVerbTexts();
/// Does it; the status.
int runDesktopVerb(const std::vector<std::string>& words);

}  // namespace zelto::cli
