#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "records/Record.hpp"

namespace zelto::texts {

/// A URL, held as its encoded (ASCII) text.
class URL {
  public:
    URL() = default;

    /// Reads a URL or a relative reference. Characters that its part of the grammar does not allow are
    /// percent-encoded (and then an existing %XX of that part once more), a host goes through IDNA. Absent
    /// for the empty text, a bad scheme, port or host, and text that is not UTF-8.
    static std::optional<URL> parse(std::string_view text);

    const std::string& text() const { return text_; }
    void appendText(std::string& out) const { out += text_; }
    bool operator==(const URL&) const = default;

  private:
    explicit URL(std::string text) : text_(std::move(text)) {}

    std::string text_;
};

/// `text` with every byte but the ASCII letters and digits written as %XX, upper case.
std::string percentEncodedAlphanumerics(std::string_view text);

}  // namespace zelto::texts

template <>
struct zelto::records::TokenName<zelto::texts::URL> {
    static constexpr std::string_view name = "a URL";
};
