// Takes the confinement's place in a build of the extension that is only there to be compared with.

#include "confinement/Confinement.hpp"

namespace zelto::confinement {

std::vector<std::string> confine(const Allowance&) {
    return {"everything"};
}

void closeDescriptors(unsigned) {}

}  // namespace zelto::confinement
