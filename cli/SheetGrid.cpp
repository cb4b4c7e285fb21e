#include "cli/SheetGrid.hpp"

namespace zelto::cli {
namespace {

constexpr double pitch = 180;  // points from tile to tile
constexpr double gutter = 16;  // points between tiles
constexpr double border = 28;  // points around them

}  // namespace

bool SheetGrid::isFree(std::size_t row, std::size_t column, std::size_t rows, std::size_t columns) const {
    if (column + columns > columns_) return false;
    for (std::size_t r = row; r < row + rows && r < taken_.size(); ++r)
        for (std::size_t c = column; c < column + columns; ++c)
            if (taken_[r][c]) return false;
    return true;
}

layout::Point SheetGrid::place(WidgetFamily family) {
    const std::size_t columns = family == WidgetFamily::systemSmall ? 1 : 2;
    const std::size_t rows = family == WidgetFamily::systemLarge ? 2 : 1;
    for (std::size_t row = 0;; ++row) {
        for (std::size_t column = 0; column < columns_; ++column) {
            if (!isFree(row, column, rows, columns)) continue;
            while (taken_.size() < row + rows) taken_.emplace_back(columns_, false);
            for (std::size_t r = row; r < row + rows; ++r)
                for (std::size_t c = column; c < column + columns; ++c) taken_[r][c] = true;
            return {border + static_cast<double>(column) * pitch, border + static_cast<double>(row) * pitch};
        }
    }
}

layout::Size SheetGrid::size() const {
    std::size_t used = 0;
    for (const auto& row : taken_)
        for (std::size_t c = 0; c < columns_; ++c)
            if (row[c] && c + 1 > used) used = c + 1;
    return {
        2 * border + static_cast<double>(used) * pitch - gutter,
        2 * border + static_cast<double>(taken_.size()) * pitch - gutter};
}

}  // namespace zelto::cli
