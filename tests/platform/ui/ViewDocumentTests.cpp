// The tables of docs/extension-protocol.md name every node, modifier, shape and enumeration with its keys.

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "tests/support/Paths.hpp"
#include "ui/ViewFields.hpp"

namespace zelto::test {

using namespace records;
namespace {

/// The types that have a name of their own on the page, and what it calls them.
std::string nameOfType(const Schema& schema) {
    static const std::map<const Schema*, std::string> names{
        {&schemaOf<ui::View>(), "view"},
        {&schemaOf<ui::Geometry>(), "geometry"},
        {&schemaOf<ui::Paint>(), "paint"},
        {&schemaOf<ui::Style>(), "style"},
        {&schemaOf<ui::Color>(), "`Color`"},
        {&schemaOf<ui::LinearGradient>(), "`LinearGradient`"},
        {&schemaOf<ui::HAlign>(), "`HAlign`"},
        {&schemaOf<ui::VAlign>(), "`VAlign`"},
        {&schemaOf<ui::Weight>(), "`Weight`"},
        {&schemaOf<ui::Design>(), "`Design`"},
        {&schemaOf<ui::Digits>(), "`Digits`"},
        {&schemaOf<ui::LineCap>(), "`LineCap`"},
        {&schemaOf<ui::LineJoin>(), "`LineJoin`"}};
    if (const auto named = names.find(&schema); named != names.end()) return named->second;
    switch (schema.kind) {
        case Schema::Kind::optional: return "optional " + nameOfType(schema.element());
        case Schema::Kind::list: return "array of " + nameOfType(schema.element());
        case Schema::Kind::record:
        case Schema::Kind::choice: return "a type that the page does not know";
        default: {
            const std::string name(schema.name);
            const bool hasArticle = name.starts_with("a ") || name.starts_with("an ");
            return hasArticle ? name.substr(name.find(' ') + 1) : name;
        }
    }
}

std::string row(const Schema& record) {
    std::string keys;
    for (const Schema::Field& field : record.fields) {
        if (!keys.empty()) keys += "; ";
        keys += "`" + std::string(field.name) + "` " + nameOfType(field.schema());
    }
    return "| `" + std::string(record.name) + "` | " + keys + " |";
}

void addCases(const Schema& choice, std::vector<std::string>& rows) {
    for (const Schema::Case& each : choice.cases) rows.push_back(row(each.schema()));
}

template <class E>
std::string enumeration() {
    std::string cases;
    for (const std::string_view name : Names<E>::names) {
        if (!cases.empty()) cases += ", ";
        cases += "`" + std::string(name) + "`";
    }
    return "| " + nameOfType(schemaOf<E>()) + " | " + cases + " |";
}

TEST(ViewDocument, ListsEveryKindWithItsKeys) {
    std::vector<std::string> expected;
    addCases(schemaOf<ui::Node>(), expected);
    addCases(schemaOf<ui::Modifier>(), expected);
    addCases(schemaOf<ui::Geometry>(), expected);
    addCases(schemaOf<ui::Paint>(), expected);
    addCases(schemaOf<ui::Style>(), expected);
    expected.push_back(row(schemaOf<ui::LinearGradient>()));
    expected.push_back(enumeration<ui::HAlign>());
    expected.push_back(enumeration<ui::VAlign>());
    expected.push_back(enumeration<ui::Weight>());
    expected.push_back(enumeration<ui::Design>());
    expected.push_back(enumeration<ui::Digits>());
    expected.push_back(enumeration<ui::LineCap>());
    expected.push_back(enumeration<ui::LineJoin>());

    const auto page = readFile(dataFolder().parent_path().parent_path() / "docs/extension-protocol.md");
    ASSERT_TRUE(page);
    const auto begin = page->find("\n## Views\n"), end = page->find("\n## Bounds\n");
    ASSERT_NE(begin, std::string::npos);
    ASSERT_NE(end, std::string::npos);
    std::istringstream section(page->substr(begin, end - begin));
    std::vector<std::string> listed;
    for (std::string line; std::getline(section, line);) {
        if (!line.starts_with("| `")) continue;
        // Without the last column, which is for people.
        const auto keys = line.find(" | ");
        const auto meaning = keys == std::string::npos ? keys : line.find("| ", keys + 2);
        listed.push_back(line.substr(0, meaning == std::string::npos ? meaning : meaning + 1));
    }
    EXPECT_EQ(listed, expected);
}

}  // namespace
}  // namespace zelto::test
