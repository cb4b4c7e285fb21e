#include "platform/xpc/Interface.hpp"

#include <algorithm>

namespace zelto::xpc {
namespace {

const char* signatureOf(ValueKind kind) {
    switch (kind) {
        case ValueKind::data: return "ay";
        case ValueKind::text: return "s";
        case ValueKind::integer: return "x";
    }
    return "";
}

std::string describe(const std::vector<ValueKind>& kinds, const char* direction) {
    std::string out;
    for (const ValueKind kind : kinds)
        out += std::string("<arg type=\"") + signatureOf(kind) + "\" direction=\"" + direction + "\"/>";
    return out;
}

}  // namespace

std::string Interface::objectPath() const {
    std::string path = "/" + service;
    std::ranges::replace(path, '.', '/');
    return path;
}

std::string Interface::introspection() const {
    std::string out = "<node><interface name=\"" + service + "\">";
    for (const Method& method : methods)
        out += "<method name=\"" + method.name + "\">" + describe(method.arguments, "in") +
               describe(method.results, "out") + "</method>";
    return out + "</interface></node>";
}

}  // namespace zelto::xpc
