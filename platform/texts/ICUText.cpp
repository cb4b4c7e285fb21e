#include "ICUText.hpp"

namespace zelto::texts::icuText {

std::u16string utf16(std::string_view text) {
    std::u16string out(text.size(), u'\0');  // never longer in UTF-16 units than in bytes
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strFromUTF8(
        out.data(),
        static_cast<std::int32_t>(out.size()),
        &length,
        text.data(),
        static_cast<std::int32_t>(text.size()),
        &status);
    out.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return out;
}

std::string utf8(std::u16string_view text) {
    std::string out(text.size() * 3, '\0');  // at most three bytes for each UTF-16 unit
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t length = 0;
    u_strToUTF8(
        out.data(),
        static_cast<std::int32_t>(out.size()),
        &length,
        text.data(),
        static_cast<std::int32_t>(text.size()),
        &status);
    out.resize(U_FAILURE(status) ? 0 : static_cast<std::size_t>(length));
    return out;
}

}  // namespace zelto::texts::icuText
