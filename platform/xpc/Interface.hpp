#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

// How processes call each other: a service is a bus name that offers one object with one interface.

namespace zelto::xpc {

/// What an argument or a result is on the bus: an array of bytes, a text, or a 64-bit integer, which stands
/// in Values as its decimal digits.
enum class ValueKind : std::uint8_t { data, text, integer };

struct Method {
    std::string name;
    std::vector<ValueKind> arguments;
    std::vector<ValueKind> results;
};

/// An interface of the same name as the service, on the object whose path is that name with slashes.
struct Interface {
    std::string service;
    std::vector<Method> methods;

    std::string objectPath() const;
    /// As the bus describes interfaces.
    std::string introspection() const;
};

/// Arguments or results, in order.
using Values = std::vector<std::string>;

/// An argument or a result that is larger is refused on both sides.
inline constexpr std::size_t largestPayload = std::size_t{1024} * 1024;

enum class ErrorKind : std::uint8_t {
    noBus,           // the bus itself cannot be reached
    peerAbsent,      // nobody offers the service
    deadlinePassed,  // no answer in time
    peerDied,        // the other side ended in the middle of the call
    accessDenied,    // the other side does not serve this user
    badPayload,      // what was sent, or what came back, does not decode
    tooLarge,        // a payload above the bound
    nameTaken,       // another process already offers the service
    refused,         // any other error of the other side
};

struct Error {
    ErrorKind kind;
    std::string text;
};

template <class T>
using Result = std::variant<T, Error>;

}  // namespace zelto::xpc
