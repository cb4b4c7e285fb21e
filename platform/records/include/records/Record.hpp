#pragma once

#include <array>
#include <concepts>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "foundation/Bytes.hpp"
#include "foundation/Date.hpp"
#include "foundation/UUID.hpp"
#include "records/Schema.hpp"

namespace zelto::records {

/// The field table of a record; specialised by ZELTO_RECORD.
template <class T>
struct Record;

/// The texts of an enumeration's cases, in order; specialised by ZELTO_NAMES.
template <class E>
struct Names;

/// What a type with a text grammar of its own is called in messages; specialised beside the type.
template <class T>
struct TokenName;
template <>
struct TokenName<UUID> {
    static constexpr std::string_view name = "a UUID";
};

/// How outlines show a record in short, such as a colour by its digits; specialised beside the type, with
/// `static void print(const T&, std::string& out)`.
template <class T>
struct ShortText;

/// A value for a decoder to fill; what it holds in required members is never seen. Types that cannot be made
/// without arguments specialise it, and those for which that would be expensive.
template <class T>
T blank() {
    return T{};
}

template <class T>
const Schema& schemaOf();

template <class T>
concept Enumeration = requires {
    Names<T>::names;
};

/// The text of an enumeration's case.
template <Enumeration E>
constexpr std::string_view nameOf(E value) {
    return Names<E>::names[static_cast<std::size_t>(value)];
}
/// The case that a text names; absent when none does.
template <Enumeration E>
constexpr std::optional<E> named(std::string_view text) {
    for (std::size_t i = 0; i < Names<E>::names.size(); ++i)
        if (Names<E>::names[i] == text) return static_cast<E>(i);
    return std::nullopt;
}

namespace detail {

template <class T>
concept TokenText = requires(const T& value, std::string_view text) {
    { T::parse(text) } -> std::same_as<std::optional<T>>;
    { value.appendText(std::declval<std::string&>()) } -> std::same_as<void>;
    { TokenName<T>::name } -> std::convertible_to<std::string_view>;
};

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};

template <class Class, class Member, Member Class::*member>
void* memberAddress(void* record) {
    return &(static_cast<Class*>(record)->*member);
}
template <class Class, class Member, Member Class::*member>
const void* constMemberAddress(const void* record) {
    return &(static_cast<const Class*>(record)->*member);
}

template <class Class, class Member, Member Class::*member>
constexpr Schema::Field field(std::string_view name) {
    return {
        name,
        &schemaOf<Member>,
        &memberAddress<Class, Member, member>,
        &constMemberAddress<Class, Member, member>,
        IsOptional<Member>::value};
}

/// The trailing 0 closes the comma-separated list, which may be empty.
template <class... Fields>
constexpr auto fieldTable(Fields... fields) {
    constexpr std::size_t count = sizeof...(Fields) - 1;
    std::array<Schema::Field, count> table{};
    std::size_t end = 0;
    const auto put = [&]<class F>(F field) {
        if constexpr (std::is_same_v<F, Schema::Field>) table[end++] = field;
    };
    (put(fields), ...);
    return table;
}

/// Stands for any value where a record's members are counted.
struct AnyValue {
    template <class T>
    operator T() const;
};
/// How many members a record can be initialised with; those of bases and functions do not count.
template <class T, class... Found>
consteval std::size_t memberCount() {
    if constexpr (requires { T{Found{}..., AnyValue{}}; })
        return memberCount<T, Found..., AnyValue>();
    else
        return sizeof...(Found);
}

/// One case of an enumeration and its text.
template <class E>
struct NamedCase {
    E value;
    std::string_view name;
};
/// The texts alone; the cases must be listed in their order, from 0, so that each is found by its value.
template <class E, std::size_t count>
consteval std::array<std::string_view, count> namesInOrder(const NamedCase<E> (&cases)[count]) {
    std::array<std::string_view, count> names;
    for (std::size_t i = 0; i < count; ++i) {
        if (static_cast<std::size_t>(cases[i].value) != i) throw "cases are not listed in their order";
        names[i] = cases[i].name;
    }
    return names;
}

template <auto value>
consteval std::string_view valueSignature() {
    return __PRETTY_FUNCTION__;
}

/// Whether an enumeration has a case of that value. The compiler's name of a value tells: a number where
/// there is none.
template <class E, std::size_t value>
consteval bool hasCase() {
    constexpr std::string_view signature = valueSignature<static_cast<E>(value)>();
    constexpr std::size_t begin = signature.find("value = ") + 8;
    return signature[begin] != '(';
}

constexpr std::string_view unqualified(std::string_view name) {
    const auto colon = name.rfind(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

template <class T>
struct MakeSchema;

template <>
struct MakeSchema<bool> {
    static constexpr Schema schema{.kind = Schema::Kind::boolean, .name = "true or false"};
};
template <>
struct MakeSchema<std::int64_t> {
    static constexpr Schema schema{.kind = Schema::Kind::integer, .name = "an integer"};
};
template <>
struct MakeSchema<std::uint64_t> {
    static constexpr Schema schema{.kind = Schema::Kind::unsignedInteger, .name = "a non-negative integer"};
};
template <>
struct MakeSchema<double> {
    static constexpr Schema schema{.kind = Schema::Kind::real, .name = "a number"};
};
template <>
struct MakeSchema<Date> {
    static_assert(sizeof(Date) == sizeof(double) && std::is_standard_layout_v<Date>);
    static constexpr Schema schema{.kind = Schema::Kind::date, .name = "a date"};
};
template <>
struct MakeSchema<std::string> {
    static constexpr Schema schema{.kind = Schema::Kind::string, .name = "a string"};
};

/// Text grammars of types that have `parse` and `appendText`.
template <class T>
bool parseText(void* value, std::string_view text) {
    auto parsed = T::parse(text);
    if (!parsed) return false;
    *static_cast<T*>(value) = *std::move(parsed);
    return true;
}
template <class T>
void printText(const void* value, std::string& out) {
    static_cast<const T*>(value)->appendText(out);
}

template <>
struct MakeSchema<Bytes> {
    static constexpr Schema schema{
        .kind = Schema::Kind::bytes,
        .name = "base64 text",
        .parse = &parseText<Bytes>,
        .print = &printText<Bytes>};
};

template <TokenText T>
struct MakeSchema<T> {
    static constexpr Schema schema{
        .kind = Schema::Kind::token,
        .name = TokenName<T>::name,
        .parse = &parseText<T>,
        .print = &printText<T>};
};

template <Enumeration E>
struct MakeSchema<E> {
    static bool parse(void* value, std::string_view text) {
        const auto parsed = named<E>(text);
        if (parsed) *static_cast<E*>(value) = *parsed;
        return parsed.has_value();
    }
    static std::string_view caseName(const void* value) { return nameOf(*static_cast<const E*>(value)); }
    static constexpr Schema schema{
        .kind = Schema::Kind::enumeration,
        .name = Names<E>::expectation,
        .parse = &parse,
        .caseName = &caseName};
};

template <class T>
struct MakeSchema<std::optional<T>> {
    using Container = std::optional<T>;
    static void* append(void* c) { return &static_cast<Container*>(c)->emplace(blank<T>()); }
    static std::size_t count(const void* c) { return static_cast<const Container*>(c)->has_value() ? 1 : 0; }
    static const void* at(const void* c, std::size_t) { return &**static_cast<const Container*>(c); }
    static constexpr Schema schema{
        .kind = Schema::Kind::optional,
        .name = "an optional value",
        .element = &schemaOf<T>,
        .append = &append,
        .count = &count,
        .at = &at};
};

template <class T>
struct MakeSchema<std::vector<T>> {
    using Container = std::vector<T>;
    static void* append(void* c) {
        auto& list = *static_cast<Container*>(c);
        list.push_back(blank<T>());
        return &list.back();
    }
    static std::size_t count(const void* c) { return static_cast<const Container*>(c)->size(); }
    static const void* at(const void* c, std::size_t i) { return &(*static_cast<const Container*>(c))[i]; }
    static constexpr Schema schema{
        .kind = Schema::Kind::list,
        .name = "an array",
        .element = &schemaOf<T>,
        .append = &append,
        .count = &count,
        .at = &at};
};

template <class... Ts>
struct MakeSchema<std::variant<Ts...>> {
    using Container = std::variant<Ts...>;
    template <class T>
    static void* select(void* c) {
        return &static_cast<Container*>(c)->template emplace<T>(blank<T>());
    }
    static std::size_t count(const void* c) { return static_cast<const Container*>(c)->index(); }
    static const void* at(const void* c, std::size_t) {
        return std::visit(
            [](const auto& value) { return static_cast<const void*>(&value); },
            *static_cast<const Container*>(c));
    }
    static constexpr std::array<Schema::Case, sizeof...(Ts)> cases{
        Schema::Case{Record<Ts>::name, &schemaOf<Ts>, &select<Ts>}...};
    static constexpr Schema schema{
        .kind = Schema::Kind::choice,
        .name = "an object with one key",
        .count = &count,
        .at = &at,
        .cases = cases};
};

template <class T>
requires requires {
    Record<T>::fields;
}
struct MakeSchema<T> {
    static_assert(
        Record<T>::fields.size() == memberCount<T>(), "a member is missing in the record's field table");
    static_assert(Record<T>::fields.size() <= 64, "the decoder marks the fields that it has seen in 64 bits");
    static void print(const void* value, std::string& out) {
        if constexpr (requires { ShortText<T>::print; })
            ShortText<T>::print(*static_cast<const T*>(value), out);
    }
    static constexpr bool isShort = requires { ShortText<T>::print; };
    static constexpr Schema schema{
        .kind = Schema::Kind::record,
        .name = Record<T>::name,
        .print = isShort ? &print : nullptr,
        .fields = Record<T>::fields};
};

}  // namespace detail

template <class T>
const Schema& schemaOf() {
    return detail::MakeSchema<T>::schema;
}

}  // namespace zelto::records

// A macro applied to each of up to 64 names: the language cannot list a record's members by itself yet.
#define ZELTO_PARENTHESES ()
#define ZELTO_EXPAND(...) ZELTO_EXPAND_1(ZELTO_EXPAND_1(ZELTO_EXPAND_1(ZELTO_EXPAND_1(__VA_ARGS__))))
#define ZELTO_EXPAND_1(...) ZELTO_EXPAND_2(ZELTO_EXPAND_2(ZELTO_EXPAND_2(ZELTO_EXPAND_2(__VA_ARGS__))))
#define ZELTO_EXPAND_2(...) ZELTO_EXPAND_3(ZELTO_EXPAND_3(ZELTO_EXPAND_3(ZELTO_EXPAND_3(__VA_ARGS__))))
#define ZELTO_EXPAND_3(...) __VA_ARGS__
#define ZELTO_FOR_EACH(macro, ...) __VA_OPT__(ZELTO_EXPAND(ZELTO_FOR_EACH_STEP(macro, __VA_ARGS__)))
#define ZELTO_FOR_EACH_STEP(macro, first, ...) \
    macro(first) __VA_OPT__(ZELTO_FOR_EACH_AGAIN ZELTO_PARENTHESES(macro, __VA_ARGS__))
#define ZELTO_FOR_EACH_AGAIN() ZELTO_FOR_EACH_STEP

#define ZELTO_FIELD(member) \
    ::zelto::records::detail::field<Type, decltype(Type::member), &Type::member>(#member),
#define ZELTO_CASE(name) {Type::name, #name},

/// The field table of a record: its type and its members, in the order in which they are written.
#define ZELTO_RECORD(T, ...)                                                                              \
    template <>                                                                                           \
    struct zelto::records::Record<T> {                                                                    \
        using Type = T;                                                                                   \
        static constexpr std::string_view name = ::zelto::records::detail::unqualified(#T);               \
        static constexpr auto fields =                                                                    \
            ::zelto::records::detail::fieldTable(__VA_OPT__(ZELTO_FOR_EACH(ZELTO_FIELD, __VA_ARGS__)) 0); \
    }

/// The cases of an enumeration, all of them in their order, coded by their names; a list in another order
/// does not compile. `expected` is used in messages.
#define ZELTO_NAMES(E, expected, ...)                                                                   \
    template <>                                                                                         \
    struct zelto::records::Names<E> {                                                                   \
        using Type = E;                                                                                 \
        static constexpr std::string_view expectation = expected;                                       \
        static constexpr auto names =                                                                   \
            ::zelto::records::detail::namesInOrder<E>({ZELTO_FOR_EACH(ZELTO_CASE, __VA_ARGS__)});       \
        static_assert(!::zelto::records::detail::hasCase<E, names.size()>(), "a case is missing here"); \
    }
