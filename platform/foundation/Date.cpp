#include "foundation/Date.hpp"

#include <chrono>

namespace zelto {

Date Date::now() {
    using namespace std::chrono;
    return since1970(duration<double>(system_clock::now().time_since_epoch()).count());
}

}  // namespace zelto
