// Turns the symbols' SVG files into a C++ table, so that drawing one needs no file, no XML and no path
// grammar.
//
//   symbol-table OUTPUT.cpp FILE.svg...
//
// A symbol is a list of <path> elements on a 24 × 24 grid with absolute M L H V C S A Z commands, painted
// with currentColor; its svg element tells the left and right end of its ink as data-ink="LEFT RIGHT".
// Anything else is refused.

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <numbers>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

[[noreturn]] void refuse(const std::string& what) {
    throw std::runtime_error(what);
}

/// Attributes of one element: the text between its name and its end.
std::map<std::string, std::string> attributes(std::string_view text) {
    std::map<std::string, std::string> out;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n/"), text.size()));
        if (text.empty()) return out;
        const auto equals = text.find("=\"");
        if (equals == std::string_view::npos) refuse("an attribute without a value");
        const auto end = text.find('"', equals + 2);
        if (end == std::string_view::npos) refuse("an attribute without an end");
        out[std::string(text.substr(0, equals))] = text.substr(equals + 2, end - equals - 2);
        text.remove_prefix(end + 1);
    }
}

struct Scanner {
    std::string_view text;

    void skipBlanks() { text.remove_prefix(std::min(text.find_first_not_of(" ,\t\r\n"), text.size())); }
    bool atNumber() {
        skipBlanks();
        return !text.empty() &&
               (std::isdigit(static_cast<unsigned char>(text[0])) != 0 || text[0] == '-' || text[0] == '.');
    }
    double number() {
        if (!atNumber()) refuse("a number was expected before '" + std::string(text.substr(0, 8)) + "'");
        // from_chars wants a digit before the point.
        std::string padded(text.substr(0, text.find_first_not_of("0123456789.-", 1)));
        if (const auto second = padded.find('-', 1); second != std::string::npos) padded.resize(second);
        const auto point = padded.find('.');
        if (point != std::string::npos)
            if (const auto again = padded.find('.', point + 1); again != std::string::npos)
                padded.resize(again);
        text.remove_prefix(padded.size());
        return std::stod(padded);
    }
};

struct PathWriter {
    std::ostringstream out;
    std::size_t count = 0;
    double x = 0, y = 0, startX = 0, startY = 0;
    double controlX = 0, controlY = 0;  // the last cubic's second control point, for S
    bool afterCubic = false;

    void put(double op, std::initializer_list<double> numbers) {
        out << op << ',';
        for (const double n : numbers) out << n << ',';
        out << ' ';
        count += 1 + numbers.size();
    }
    void move(double toX, double toY) {
        put(0, {toX, toY});
        startX = x = toX;
        startY = y = toY;
    }
    void line(double toX, double toY) {
        put(1, {toX, toY});
        x = toX;
        y = toY;
    }
    void cubic(double ax, double ay, double bx, double by, double toX, double toY) {
        put(2, {ax, ay, bx, by, toX, toY});
        controlX = bx;
        controlY = by;
        x = toX;
        y = toY;
    }
    void close() {
        put(3, {});
        x = startX;
        y = startY;
    }
    /// A circular or elliptic arc without rotation, as cubics of at most a quarter turn.
    void arc(double rx, double ry, bool large, bool sweep, double toX, double toY) {
        const double halfX = (x - toX) / 2, halfY = (y - toY) / 2;
        const double stretch = std::sqrt(halfX * halfX / (rx * rx) + halfY * halfY / (ry * ry));
        if (stretch > 1) {
            rx *= stretch;
            ry *= stretch;
        }
        const double a = rx * rx * halfY * halfY + ry * ry * halfX * halfX;
        const double factor =
            (large == sweep ? -1 : 1) * std::sqrt(std::max(0.0, (rx * rx * ry * ry - a) / a));
        const double cx = factor * rx * halfY / ry, cy = -factor * ry * halfX / rx;
        const double centerX = cx + (x + toX) / 2, centerY = cy + (y + toY) / 2;
        const double from = std::atan2((halfY - cy) / ry, (halfX - cx) / rx);
        double turn = std::atan2((-halfY - cy) / ry, (-halfX - cx) / rx) - from;
        if (sweep && turn < 0) turn += 2 * std::numbers::pi;
        if (!sweep && turn > 0) turn -= 2 * std::numbers::pi;
        const int pieces =
            std::max(1, static_cast<int>(std::ceil(std::fabs(turn) / (std::numbers::pi / 2) - 1e-9)));
        const double step = turn / pieces, k = 4.0 / 3 * std::tan(step / 4);
        for (int i = 0; i < pieces; ++i) {
            const double p = from + i * step, q = p + step;
            cubic(
                centerX + rx * (std::cos(p) - k * std::sin(p)),
                centerY + ry * (std::sin(p) + k * std::cos(p)),
                centerX + rx * (std::cos(q) + k * std::sin(q)),
                centerY + ry * (std::sin(q) - k * std::cos(q)),
                i + 1 == pieces ? toX : centerX + rx * std::cos(q),
                i + 1 == pieces ? toY : centerY + ry * std::sin(q));
        }
    }
};

PathWriter readPath(std::string_view d) {
    PathWriter path;
    Scanner in{d};
    char command = 0;
    for (in.skipBlanks(); !in.text.empty(); in.skipBlanks()) {
        if (!in.atNumber()) {
            command = in.text[0];
            in.text.remove_prefix(1);
        }
        bool cubic = false;
        switch (command) {
            case 'M': {
                const double x = in.number(), y = in.number();
                path.move(x, y);
                command = 'L';
                break;
            }
            case 'L': {
                const double x = in.number(), y = in.number();
                path.line(x, y);
                break;
            }
            case 'H': path.line(in.number(), path.y); break;
            case 'V': path.line(path.x, in.number()); break;
            case 'C':
            case 'S': {
                double ax = path.afterCubic ? 2 * path.x - path.controlX : path.x;
                double ay = path.afterCubic ? 2 * path.y - path.controlY : path.y;
                if (command == 'C') {
                    ax = in.number();
                    ay = in.number();
                }
                const double bx = in.number(), by = in.number(), x = in.number(), y = in.number();
                path.cubic(ax, ay, bx, by, x, y);
                cubic = true;
                break;
            }
            case 'A': {
                const double rx = in.number(), ry = in.number(), rotation = in.number();
                const bool large = in.number() != 0, sweep = in.number() != 0;
                const double x = in.number(), y = in.number();
                if (rotation != 0) refuse("a rotated arc");
                path.arc(rx, ry, large, sweep, x, y);
                break;
            }
            case 'Z':
                path.close();
                command = 0;
                break;
            default: refuse(std::string("path command '") + command + "'");
        }
        path.afterCubic = cubic;
    }
    return path;
}

double number(const std::string& text) {
    Scanner in{text};
    return in.number();
}

std::string identifier(std::string name) {
    for (char& c : name)
        if (c == '.' || c == '@') c = '_';
    return "symbol_" + name;
}

void writeSymbol(const std::filesystem::path& file, std::ostream& numbers, std::ostream& table) {
    std::ifstream in(file);
    std::stringstream content;
    content << in.rdbuf();
    const std::string text = content.str();
    const std::string name = file.stem().string();

    std::vector<std::string> strokes;
    double left = 0, right = 24;
    for (auto open = text.find('<'); open != std::string::npos; open = text.find('<', open + 1)) {
        const auto end = text.find('>', open);
        if (end == std::string::npos) refuse("an element without an end");
        const std::string element = text.substr(open + 1, end - open - 1);
        if (element[0] == '/') continue;
        const auto blank = element.find(' ');
        const std::string tag = element.substr(0, blank);
        auto values = attributes(std::string_view(element).substr(blank));
        if (tag == "svg") {
            Scanner ink{values.at("data-ink")};
            left = ink.number();
            right = ink.number();
            continue;
        }
        if (tag != "path") refuse("element <" + tag + ">");
        const PathWriter path = readPath(values.at("d"));
        const std::string id = identifier(name) + "_" + std::to_string(strokes.size());
        numbers << "constexpr std::array<double, " << path.count << "> " << id << "{" << path.out.str()
                << "};\n";
        const bool stroked = values.contains("stroke") && values["stroke"] != "none";
        std::ostringstream row;
        row << "{" << id << ", " << (values["fill"] == "currentColor" ? "true" : "false") << ", "
            << (values["fill-rule"] == "evenodd" ? "true" : "false") << ", "
            << (stroked ? number(values.at("stroke-width")) : 0) << ", "
            << (values["stroke-linecap"] == "round" ? "true" : "false") << ", "
            << (values["stroke-linejoin"] == "round" ? "true" : "false") << "}";
        strokes.push_back(row.str());
    }
    numbers << "constexpr std::array<SymbolPath, " << strokes.size() << "> " << identifier(name) << "{{";
    for (const auto& stroke : strokes) numbers << stroke << ", ";
    numbers << "}};\n";
    table << "    Symbol{\"" << name << "\", " << left << ", " << right << ", " << identifier(name) << "},\n";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: symbol-table OUTPUT.cpp FILE.svg...\n";
        return 2;
    }
    std::ostringstream numbers, table;
    numbers.precision(10);
    for (int i = 2; i < argc; ++i) {
        try {
            writeSymbol(argv[i], numbers, table);
        } catch (const std::exception& error) {
            std::cerr << argv[i] << ": " << error.what() << '\n';
            return 1;
        }
    }
    std::ofstream out(argv[1]);
    out << "#include \"Symbols.hpp\"\n\n#include <array>\n\nnamespace zelto::drawing "
           "{\nnamespace {\n"
        << numbers.str() << "constexpr std::array symbols{\n"
        << table.str()
        << "};\n}  // namespace\n\nstd::span<const Symbol> allSymbols() { return symbols; }\n\n}  // "
           "namespace zelto::drawing\n";
    return out ? 0 : 1;
}
