#pragma once

#include <string>
#include <vector>

#include "foundation/Date.hpp"
#include "widgetkit/WidgetFamily.hpp"

namespace zelto::cli {

/// A file's bytes, or standard input's for "-", of more than `mostBytes` only one more than those. Raises
/// Failure.
std::string readInput(const std::string& path, std::size_t mostBytes = std::string().max_size());

/// Writes a whole file, or standard output for "-". Raises Failure.
void writeOutput(const std::string& path, const std::string& bytes);

/// ISO 8601 with an offset, or seconds since 2001. Raises Failure, which names the option.
Date parseDate(const std::string& text, const std::string& option);

/// "small", "medium" or "large". Raises Failure.
widgetkit::WidgetFamily parseFamily(const std::string& text);

/// "small", "medium" or "large".
std::string familyName(widgetkit::WidgetFamily family);

/// "small, medium"
std::string familyNames(const std::vector<widgetkit::WidgetFamily>& families);

}  // namespace zelto::cli
