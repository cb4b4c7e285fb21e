#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/Bytes.hpp"
#include "foundation/ReplyBlock.hpp"
#include "foundation/Result.hpp"

// How processes call each other: a service is a bus name that offers one object with one interface, and an
// interface is a table of methods. A row names a method, its arguments and its results, and holds what
// carries it out; the types on the bus are those of that function.

namespace zelto::bus {

/// What travels: a text in UTF-8 ("s"), an integer ("x"), or bytes ("ay").
using Value = std::variant<std::string, std::int64_t, Bytes>;
/// Arguments or results, in order.
using Values = std::vector<Value>;

template <class T>
concept Travels = std::same_as<T, std::string> || std::same_as<T, std::int64_t> || std::same_as<T, Bytes>;

/// The bus's name of a type.
template <Travels T>
constexpr std::string_view signatureOf() {
    if constexpr (std::same_as<T, std::string>)
        return "s";
    else if constexpr (std::same_as<T, std::int64_t>)
        return "x";
    else
        return "ay";
}

/// An argument or a result that is larger, in bytes, is refused on both sides.
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
using Result = zelto::Result<T, Error>;

/// Takes the results of a call, or why there are none; on any thread.
using Answer = ReplyBlock<Result<Values>>;

struct Parameter {
    std::string_view name;
    std::string_view signature;
};

/// One row of an interface; made by `method`.
struct Method {
    std::string_view name;
    std::vector<Parameter> arguments;
    std::vector<Parameter> results;
    /// Gets arguments of just these types.
    std::function<void(Values&& arguments, Answer&& answer)> handler;
};

/// Whether something is so, for everybody on the bus whom the listener serves to read and to follow.
struct Property {
    std::string_view name;
    /// On any thread.
    std::function<bool()> value;
};

/// What everybody on the bus whom it concerns is told without having asked.
struct SignalDescription {
    std::string_view name;
    std::vector<Parameter> arguments;
};

/// An interface of the same name as the service, on the object whose path is that name with slashes.
struct Interface {
    std::string service;
    std::vector<Method> methods = {};
    std::vector<Property> properties = {};
    std::vector<SignalDescription> signals = {};

    /// As the bus describes interfaces.
    std::string introspection() const;
};

std::string objectPathOf(std::string_view service);

namespace detail {

template <class... Ts>
struct Types {
    static constexpr std::size_t count = sizeof...(Ts);
    static std::vector<Parameter> describe(const std::array<std::string_view, count>& names) {
        [[maybe_unused]] std::size_t i = 0;
        return {Parameter{names[i++], signatureOf<Ts>()}...};
    }
};

/// Calls a function with values of just its argument types, behind what else it wants first.
template <class... Arguments, class Function, class... First>
decltype(auto) applyValues(Types<Arguments...>, Function& function, Values& values, First&&... first) {
    return [&]<std::size_t... i>(std::index_sequence<i...>)->decltype(auto) {
        return function(std::forward<First>(first)..., std::get<Arguments>(std::move(values[i]))...);
    }
    (std::index_sequence_for<Arguments...>());
}

template <class T>
Result<Values> valuesOf(Result<T> result) {
    if (!result) return std::move(result).fault();
    Values values;
    if constexpr (!std::is_void_v<T>) values.emplace_back(*std::move(result));
    return values;
}

/// How a function answers a call: by what it returns, or later through a reply block, its first argument.
template <class Call>
struct Shape;

template <class Class, class T, class... Args>
struct Shape<Result<T> (Class::*)(Args...) const> {
    using Arguments = Types<std::decay_t<Args>...>;
    using Results = std::conditional_t<std::is_void_v<T>, Types<>, Types<T>>;
    template <class Function>
    static void call(Function& function, Values& values, Answer& answer) {
        answer(valuesOf(applyValues(Arguments{}, function, values)));
    }
};

template <class Class, class T, class... Args>
struct Shape<void (Class::*)(ReplyBlock<Result<T>>, Args...) const> {
    using Arguments = Types<std::decay_t<Args>...>;
    using Results = std::conditional_t<std::is_void_v<T>, Types<>, Types<T>>;
    template <class Function>
    static void call(Function& function, Values& values, Answer& answer) {
        const auto shared = std::make_shared<Answer>(std::move(answer));
        // When the block goes away unanswered, so does the answer behind it, which says so.
        ReplyBlock<Result<T>> reply(
            [shared](Result<T> result) { (*shared)(valuesOf(std::move(result))); }, {});
        applyValues(Arguments{}, function, values, std::move(reply));
    }
};

template <class Function>
using ShapeOf = Shape<decltype(&Function::operator())>;

/// Just so many names.
template <std::size_t count>
struct Names {
    template <std::convertible_to<std::string_view>... Each>
    requires(sizeof...(Each) == count) constexpr Names(Each... each) : names{each...} {}
    std::array<std::string_view, count> names;
};

}  // namespace detail

/// A row: a method, the names of its arguments and of its results, and the function that carries it out. It
/// takes the arguments by their types and returns a Result; or it takes a ReplyBlock of the Result first, and
/// answers through that, perhaps later.
template <class Function>
Method method(
    std::string_view name, detail::Names<detail::ShapeOf<Function>::Arguments::count> arguments,
    detail::Names<detail::ShapeOf<Function>::Results::count> results, Function function) {
    using Shape = detail::ShapeOf<Function>;
    return {
        name,
        Shape::Arguments::describe(arguments.names),
        Shape::Results::describe(results.names),
        [function = std::move(function)](Values&& values, Answer&& answer) {
            Shape::call(function, values, answer);
        }};
}

}  // namespace zelto::bus
