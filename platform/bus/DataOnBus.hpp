#pragma once

#include <string>

#include <gio/gunixfdlist.h>

#include "Handles.hpp"
#include "bus/Data.hpp"

namespace zelto::bus {

/// A message's content; its descriptors are taken out of the list that came with it.
Result<Data> dataOf(GVariant* value, GUnixFDList* descriptors);

/// A value of a type as the bus writes it, "(ssss)" or "a{sv}"; a fault where the data is of another. What
/// may be anything ("v") gets the type of what is there. Descriptors are not sent.
Result<Variant> variantOf(const Data& data, const std::string& signature);

}  // namespace zelto::bus
