#include "host/Folders.hpp"

namespace zelto::host {

Folders Folders::of(const PersonalFolders& personal) {
    return {
        personal.folder("XDG_CONFIG_HOME", ".config") / "zelto",
        personal.folder("XDG_CACHE_HOME", ".cache") / "zelto"};
}

Folders Folders::current() {
    return of(PersonalFolders::current());
}

}  // namespace zelto::host
