#include "ui/Outline.hpp"

#include <cctype>

#include "foundation/NumberText.hpp"
#include "ui/ViewFields.hpp"

namespace zelto::ui {
namespace {

using Kind = records::Schema::Kind;

std::string quoted(const std::string& text) {
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (c == '\n')
            out += "\\n";
        else
            out += c;
    }
    return out + '"';
}

std::string lowerFirst(std::string_view name) {
    std::string out(name);
    if (out.size() > 1 && std::islower(static_cast<unsigned char>(out[1])) != 0)
        out[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(out[0])));
    return out;
}

std::string valueText(const records::Schema& schema, const void* value);

std::string printed(const records::Schema& schema, const void* value) {
    std::string out;
    schema.print(value, out);
    return out;
}

/// The fields of a record as "name=value", a lone field without its name; absent optionals and children left
/// out.
std::string fieldsText(const records::Schema& schema, const void* record) {
    std::string out;
    for (const auto& field : schema.fields) {
        const records::Schema& inner = field.schema();
        const void* member = schema.address(field, record);
        if (&inner == &records::schemaOf<Views>() ||
            (inner.kind == Kind::optional && inner.count(member) == 0))
            continue;
        if (!out.empty()) out += ' ';
        if (schema.fields.size() > 1) out += std::string(field.name) + '=';
        out += valueText(inner, member);
    }
    return out;
}

std::string valueText(const records::Schema& schema, const void* value) {
    switch (schema.kind) {
        case Kind::boolean: return *static_cast<const bool*>(value) ? "true" : "false";
        case Kind::integer: return std::to_string(*static_cast<const std::int64_t*>(value));
        case Kind::unsignedInteger: return std::to_string(*static_cast<const std::uint64_t*>(value));
        case Kind::real: return briefNumber(*static_cast<const double*>(value));
        case Kind::date: {
            std::string out;
            appendNumber(out, static_cast<const Date*>(value)->sinceReference);
            return out;
        }
        case Kind::string: return quoted(*static_cast<const std::string*>(value));
        case Kind::token: return printed(schema, value);
        case Kind::enumeration: return std::string(schema.caseName(value));
        case Kind::bytes: return std::to_string(static_cast<const Bytes*>(value)->bytes.size()) + " bytes";
        case Kind::optional: return valueText(schema.element(), schema.at(value, 0));
        case Kind::list: {
            std::string out = "[";
            for (std::size_t i = 0; i < schema.count(value); ++i)
                out += (i > 0 ? " " : "") + valueText(schema.element(), schema.at(value, i));
            return out + "]";
        }
        case Kind::record: {
            if (schema.print) return printed(schema, value);
            const std::string fields = fieldsText(schema, value);
            return lowerFirst(schema.name) + (fields.empty() ? "" : "(" + fields + ")");
        }
        case Kind::choice: return valueText(schema.cases[schema.count(value)].schema(), schema.at(value, 0));
    }
    return {};
}

void appendView(std::string& out, const View& view, std::size_t depth) {
    const records::Schema& nodes = records::schemaOf<Node>();
    const records::Schema& kind = nodes.cases[view.node.index()].schema();
    out.append(2 * depth, ' ');
    out += kind.name;
    if (const std::string fields = fieldsText(kind, nodes.at(&view.node, 0)); !fields.empty())
        out += ' ' + fields;
    for (const Modifier& modifier : view.modifiers) {
        const records::Schema& modifiers = records::schemaOf<Modifier>();
        const records::Schema& applied = modifiers.cases[modifier.index()].schema();
        out += " ." + lowerFirst(applied.name) + '(' + fieldsText(applied, modifiers.at(&modifier, 0)) + ')';
    }
    out += '\n';
    if (const Views* children = childrenOf(view.node))
        for (const View& child : *children) appendView(out, child, depth + 1);
}

}  // namespace

std::string outline(const View& view) {
    std::string out;
    appendView(out, view, 0);
    return out;
}

}  // namespace zelto::ui
