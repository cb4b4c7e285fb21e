#pragma once

#include <memory>

namespace zelto {

/// Owns a C library's object, which `release` gives back.
template <auto release>
struct Release {
    template <class T>
    void operator()(T* object) const {
        release(object);
    }
};
template <class T, auto release>
using Handle = std::unique_ptr<T, Release<release>>;

}  // namespace zelto
