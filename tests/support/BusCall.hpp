#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/Process.hpp"

namespace zelto::test {

/// Calls a method of a service's one object as any program of the bus's users may, by the bus's own tool.
inline Finished callOnBus(
    const std::string& address, const std::string& service, const std::string& method,
    const std::vector<std::string>& arguments = {}) {
    std::string object = "/" + service;
    std::ranges::replace(object, '.', '/');
    std::vector<std::string> words{
        "/usr/bin/env",
        "gdbus",
        "call",
        "--address",
        address,
        "--dest",
        service,
        "--object-path",
        object,
        "--method",
        method};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return run(words);
}

/// What a service tells of a property, or why not.
inline std::string propertyOnBus(
    const std::string& address, const std::string& service, const std::string& name) {
    const auto called = callOnBus(address, service, "org.freedesktop.DBus.Properties.Get", {service, name});
    return called.output + called.errors;
}

}  // namespace zelto::test
