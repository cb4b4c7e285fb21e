#include "DataOnBus.hpp"

#include <limits>
#include <utility>

#include <gio/gio.h>

namespace zelto::bus {
namespace {

/// Deeper than any interface; a message of another program's is not trusted to end.
constexpr int mostDepth = 16;

Data descriptorAt(gint32 index, GUnixFDList* descriptors) {
    if (!descriptors || index < 0 || index >= g_unix_fd_list_get_length(descriptors)) return {};
    return std::make_shared<FileDescriptor>(g_unix_fd_list_get(descriptors, index, nullptr));
}

Data read(GVariant* value, GUnixFDList* descriptors, int depth);

Data readContainer(GVariant* value, GUnixFDList* descriptors, int depth) {
    const gsize count = g_variant_n_children(value);
    const auto child = [&](GVariant* of, gsize i) { return Variant(g_variant_get_child_value(of, i)); };
    const bool isDictionary = g_variant_is_of_type(value, G_VARIANT_TYPE_DICTIONARY) != FALSE;
    if (isDictionary) {
        Data::Map map;
        for (gsize i = 0; i < count; ++i) {
            const auto entry = child(value, i);
            if (const auto key = read(child(entry.get(), 0).get(), nullptr, depth + 1).text())
                map.insert_or_assign(*key, read(child(entry.get(), 1).get(), descriptors, depth + 1));
        }
        return map;
    }
    Data::List list;
    list.reserve(count);
    for (gsize i = 0; i < count; ++i) list.push_back(read(child(value, i).get(), descriptors, depth + 1));
    return list;
}

Data read(GVariant* value, GUnixFDList* descriptors, int depth) {
    if (depth > mostDepth) return {};
    switch (g_variant_classify(value)) {
        case G_VARIANT_CLASS_BOOLEAN: return g_variant_get_boolean(value) != FALSE;
        case G_VARIANT_CLASS_BYTE: return std::int64_t{g_variant_get_byte(value)};
        case G_VARIANT_CLASS_INT16: return std::int64_t{g_variant_get_int16(value)};
        case G_VARIANT_CLASS_UINT16: return std::int64_t{g_variant_get_uint16(value)};
        case G_VARIANT_CLASS_INT32: return std::int64_t{g_variant_get_int32(value)};
        case G_VARIANT_CLASS_UINT32: return std::int64_t{g_variant_get_uint32(value)};
        case G_VARIANT_CLASS_INT64: return std::int64_t{g_variant_get_int64(value)};
        case G_VARIANT_CLASS_UINT64: return std::uint64_t{g_variant_get_uint64(value)};
        case G_VARIANT_CLASS_DOUBLE: return g_variant_get_double(value);
        case G_VARIANT_CLASS_STRING:
        case G_VARIANT_CLASS_OBJECT_PATH:
        case G_VARIANT_CLASS_SIGNATURE: return std::string(g_variant_get_string(value, nullptr));
        case G_VARIANT_CLASS_HANDLE: return descriptorAt(g_variant_get_handle(value), descriptors);
        case G_VARIANT_CLASS_VARIANT:
            return read(Variant(g_variant_get_variant(value)).get(), descriptors, depth + 1);
        case G_VARIANT_CLASS_MAYBE: return {};
        case G_VARIANT_CLASS_ARRAY:
        case G_VARIANT_CLASS_TUPLE:
        case G_VARIANT_CLASS_DICT_ENTRY: return readContainer(value, descriptors, depth);
    }
    return {};
}

/// A floating value of a type; null where the data is of another.
GVariant* pack(const Data& data, const GVariantType* type);

GVariant* packInteger(const Data& data, char type) {
    if (type == 't' && std::holds_alternative<std::uint64_t>(data.content()))
        return g_variant_new_uint64(std::get<std::uint64_t>(data.content()));
    const auto integer = data.integer();
    if (!integer) return nullptr;
    const auto fits = [&](auto least, auto most) {
        return *integer >= static_cast<std::int64_t>(least) && *integer <= static_cast<std::int64_t>(most);
    };
    switch (type) {
        case 'y': return fits(0, 255) ? g_variant_new_byte(static_cast<guint8>(*integer)) : nullptr;
        case 'i':
            return fits(std::numeric_limits<gint32>::min(), std::numeric_limits<gint32>::max())
                       ? g_variant_new_int32(static_cast<gint32>(*integer))
                       : nullptr;
        case 'u':
            return fits(0, std::numeric_limits<guint32>::max())
                       ? g_variant_new_uint32(static_cast<guint32>(*integer))
                       : nullptr;
        case 't': return *integer >= 0 ? g_variant_new_uint64(static_cast<guint64>(*integer)) : nullptr;
        default: return g_variant_new_int64(*integer);
    }
}

/// The type that data has by itself.
const char* ownType(const Data& data) {
    constexpr const char* types[] = {"()", "b", "x", "t", "d", "s", "av", "a{sv}", "()"};
    return types[data.content().index()];
}

GVariant* packList(const Data& data, const GVariantType* type) {
    if (!std::holds_alternative<Data::List>(data.content())) return nullptr;
    const bool isTuple = g_variant_type_is_tuple(type) != FALSE;
    if (isTuple && g_variant_type_n_items(type) != data.list().size()) return nullptr;
    GVariantBuilder builder;
    g_variant_builder_init(&builder, type);
    const GVariantType* item = isTuple ? g_variant_type_first(type) : g_variant_type_element(type);
    for (const Data& each : data.list()) {
        GVariant* packed = pack(each, item);
        if (!packed) {
            g_variant_builder_clear(&builder);
            return nullptr;
        }
        g_variant_builder_add_value(&builder, packed);
        if (isTuple) item = g_variant_type_next(item);
    }
    return g_variant_builder_end(&builder);
}

GVariant* packMap(const Data& data, const GVariantType* type) {
    const GVariantType* entry = g_variant_type_element(type);
    GVariantBuilder builder;
    g_variant_builder_init(&builder, type);
    for (const auto& [key, value] : data.map()) {
        GVariant* packed = pack(value, g_variant_type_value(entry));
        if (!packed) {
            g_variant_builder_clear(&builder);
            return nullptr;
        }
        g_variant_builder_add_value(
            &builder, g_variant_new_dict_entry(g_variant_new_string(key.c_str()), packed));
    }
    return g_variant_builder_end(&builder);
}

GVariant* pack(const Data& data, const GVariantType* type) {
    const char letter = g_variant_type_peek_string(type)[0];
    switch (letter) {
        case 'b': return data.flag() ? g_variant_new_boolean(*data.flag() ? TRUE : FALSE) : nullptr;
        case 'd': return data.number() ? g_variant_new_double(*data.number()) : nullptr;
        case 's':
            return data.text() && g_utf8_validate(data.text()->c_str(), -1, nullptr)
                       ? g_variant_new_string(data.text()->c_str())
                       : nullptr;
        case 'o':
            return data.text() && g_variant_is_object_path(data.text()->c_str())
                       ? g_variant_new_object_path(data.text()->c_str())
                       : nullptr;
        case 'v': {
            const Handle<GVariantType, g_variant_type_free> own(g_variant_type_new(ownType(data)));
            GVariant* packed = pack(data, own.get());
            return packed ? g_variant_new_variant(packed) : nullptr;
        }
        case '(': return packList(data, type);
        case 'a':
            return g_variant_type_is_subtype_of(type, G_VARIANT_TYPE("a{s*}")) ? packMap(data, type)
                                                                               : packList(data, type);
        case 'y':
        case 'i':
        case 'u':
        case 'x':
        case 't': return packInteger(data, letter);
        default: return nullptr;
    }
}

}  // namespace

Result<Data> dataOf(GVariant* value, GUnixFDList* descriptors) {
    return read(value, descriptors, 0);
}

Result<Variant> variantOf(const Data& data, const std::string& signature) {
    if (g_variant_type_string_is_valid(signature.c_str())) {
        const Handle<GVariantType, g_variant_type_free> type(g_variant_type_new(signature.c_str()));
        if (GVariant* packed = pack(data, type.get())) return Variant(g_variant_ref_sink(packed));
    }
    return Error{ErrorKind::badPayload, "arguments of another shape than " + signature};
}

}  // namespace zelto::bus
