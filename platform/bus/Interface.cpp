#include "bus/Interface.hpp"

#include <algorithm>

namespace zelto::bus {
namespace {

std::string describe(const std::vector<Parameter>& parameters, std::string_view more) {
    std::string out;
    for (const auto& [name, signature] : parameters)
        out.append("<arg name=\"")
            .append(name)
            .append("\" type=\"")
            .append(signature)
            .append("\"")
            .append(more)
            .append("/>");
    return out;
}

}  // namespace

std::string objectPathOf(std::string_view service) {
    std::string path = "/" + std::string(service);
    std::ranges::replace(path, '.', '/');
    return path;
}

std::string Interface::introspection() const {
    std::string out = "<node><interface name=\"" + service + "\">";
    for (const Method& method : methods)
        out += "<method name=\"" + std::string(method.name) + "\">" +
               describe(method.arguments, " direction=\"in\"") +
               describe(method.results, " direction=\"out\"") + "</method>";
    for (const Property& property : properties)
        out += "<property name=\"" + std::string(property.name) + "\" type=\"b\" access=\"read\"/>";
    for (const SignalDescription& signal : signals)
        out += "<signal name=\"" + std::string(signal.name) + "\">" + describe(signal.arguments, "") +
               "</signal>";
    return out + "</interface></node>";
}

}  // namespace zelto::bus
