// What an assistive technology sees of a program: accessible-tree NAME prints its objects, one a line,
// indented: role, "name", and behind a dash its description.

#include <atspi/atspi.h>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

std::string taken(gchar* text) {
    std::string out = text ? text : "";
    g_free(text);
    return out;
}

void print(AtspiAccessible* object, int depth) {
    const std::string name = taken(atspi_accessible_get_name(object, nullptr));
    const std::string role = taken(atspi_accessible_get_role_name(object, nullptr));
    const std::string description = taken(atspi_accessible_get_description(object, nullptr));
    std::printf(
        "%*s%s \"%s\"%s%s\n",
        depth * 2,
        "",
        role.c_str(),
        name.c_str(),
        description.empty() ? "" : " - ",
        description.c_str());
    const int count = atspi_accessible_get_child_count(object, nullptr);
    for (int i = 0; i < count; ++i) {
        AtspiAccessible* child = atspi_accessible_get_child_at_index(object, i, nullptr);
        if (!child) continue;
        print(child, depth + 1);
        g_object_unref(child);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || atspi_init() > 1) return 2;
    AtspiAccessible* desktop = atspi_get_desktop(0);
    const int count = atspi_accessible_get_child_count(desktop, nullptr);
    for (int i = 0; i < count; ++i) {
        AtspiAccessible* program = atspi_accessible_get_child_at_index(desktop, i, nullptr);
        if (program && taken(atspi_accessible_get_name(program, nullptr)) == argv[1]) print(program, 0);
    }
}
