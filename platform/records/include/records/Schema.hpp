#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zelto::records {

/// What a type looks like to everything that walks values: the JSON decoder and encoder, and the outline.
/// One immutable description per type, made at compile time from the type's field table (Record.hpp).
///
/// Values are reached through `void*`, so that the walkers are ordinary code compiled once; a schema is only
/// ever paired with a pointer to a value of its own type.
struct Schema {
    enum class Kind : std::uint8_t {
        boolean,          // bool
        integer,          // std::int64_t
        unsignedInteger,  // std::uint64_t
        real,             // double
        date,             // Date, written as its seconds since the reference date
        string,           // std::string, UTF-8
        token,            // written as a string with a grammar of its own: UUID, URL
        enumeration,      // written as its case's name
        bytes,            // Bytes, written as base64 text
        optional,         // std::optional; `count` is 0 or 1
        list,             // std::vector
        record,           // named fields
        choice,           // std::variant: an object with one key, the name of the case; `count` is its index
    };

    /// A function, not a reference: types may contain themselves.
    using Reference = const Schema& (*)();

    struct Field {
        std::string_view name;
        Reference schema;
        void* (*address)(void* record);
        const void* (*member)(const void* record);
        bool isOptional;
    };
    struct Case {
        std::string_view name;
        Reference schema;
        void* (*select)(void* choice);
    };

    Kind kind;
    /// In messages "a UUID", "an integer"; for records and cases the type's own name.
    std::string_view name;

    // token, bytes, enumeration
    bool (*parse)(void* value, std::string_view text) = nullptr;
    // token, bytes; also a record that outlines show in short
    void (*print)(const void* value, std::string& out) = nullptr;
    // enumeration
    std::string_view (*caseName)(const void* value) = nullptr;
    // optional, list, choice
    Reference element = nullptr;
    void* (*append)(void* container) = nullptr;  // a blank element, also for an optional
    std::size_t (*count)(const void* container) = nullptr;
    const void* (*at)(const void* container, std::size_t index) = nullptr;
    // record, choice
    std::span<const Field> fields = {};
    std::span<const Case> cases = {};

    const void* address(const Field& field, const void* record) const { return field.member(record); }
};

}  // namespace zelto::records
