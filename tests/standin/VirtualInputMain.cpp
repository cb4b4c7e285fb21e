// A pointer and a keyboard for compositors without them: virtual-input WIDTH HEIGHT reads "move X Y",
// "press BUTTON", "release BUTTON" and "key CODE MODIFIERS" (buttons and keys by their kernel codes,
// modifiers as bits: 1 shift, 4 control), and answers each with "ok".

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <wayland-client.h>
#include <xkbcommon/xkbcommon.h>

#include <sys/mman.h>
#include <unistd.h>

namespace {

// The compositor's interfaces for virtual devices, as far as they are used here. A request's place in its
// list is its number on the wire.
extern const wl_interface pointerInterface, keyboardInterface;
const wl_interface* pointerTypes[] = {&wl_seat_interface, &pointerInterface};
const wl_interface* keyboardTypes[] = {&wl_seat_interface, &keyboardInterface};
const wl_interface* plainTypes[] = {nullptr, nullptr, nullptr, nullptr, nullptr};

const wl_message pointerManagerRequests[] = {{"create_virtual_pointer", "?on", pointerTypes}};
const wl_message pointerRequests[] = {
    {"motion", "uff", plainTypes},
    {"motion_absolute", "uuuuu", plainTypes},
    {"button", "uuu", plainTypes},
    {"axis", "uuf", plainTypes},
    {"frame", "", plainTypes}};
const wl_message keyboardManagerRequests[] = {{"create_virtual_keyboard", "on", keyboardTypes}};
const wl_message keyboardRequests[] = {
    {"keymap", "uhu", plainTypes}, {"key", "uuu", plainTypes}, {"modifiers", "uuuu", plainTypes}};

const wl_interface pointerInterface{"zwlr_virtual_pointer_v1", 1, 5, pointerRequests, 0, nullptr};
const wl_interface keyboardInterface{"zwp_virtual_keyboard_v1", 1, 3, keyboardRequests, 0, nullptr};
const wl_interface pointerManagerInterface{
    "zwlr_virtual_pointer_manager_v1", 1, 1, pointerManagerRequests, 0, nullptr};
const wl_interface keyboardManagerInterface{
    "zwp_virtual_keyboard_manager_v1", 1, 1, keyboardManagerRequests, 0, nullptr};

// KWin has one of its own for both.
const wl_message fakeRequests[] = {
    {"authenticate", "ss", plainTypes},
    {"pointer_motion", "ff", plainTypes},
    {"button", "uu", plainTypes},
    {"axis", "uf", plainTypes},
    {"touch_down", "2uff", plainTypes},
    {"touch_motion", "2uff", plainTypes},
    {"touch_up", "2u", plainTypes},
    {"touch_cancel", "2", plainTypes},
    {"touch_frame", "2", plainTypes},
    {"pointer_motion_absolute", "3ff", plainTypes},
    {"keyboard_key", "4uu", plainTypes}};
const wl_interface fakeInterface{"org_kde_kwin_fake_input", 4, 11, fakeRequests, 0, nullptr};

struct Globals {
    wl_proxy* fake = nullptr;
    wl_proxy* pointers = nullptr;
    wl_proxy* keyboards = nullptr;
    wl_proxy* seat = nullptr;
};

void found(void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
    auto& globals = *static_cast<Globals*>(data);
    const auto bind = [&](wl_proxy*& proxy, const wl_interface& wanted) {
        if (std::strcmp(interface, wanted.name) == 0)
            proxy = static_cast<wl_proxy*>(
                wl_registry_bind(registry, name, &wanted, static_cast<std::uint32_t>(wanted.version)));
    };
    bind(globals.fake, fakeInterface);
    bind(globals.pointers, pointerManagerInterface);
    bind(globals.keyboards, keyboardManagerInterface);
    if (std::strcmp(interface, wl_seat_interface.name) == 0)
        globals.seat = static_cast<wl_proxy*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
}
void gone(void*, wl_registry*, std::uint32_t) {}

/// A file with the usual keyboard's layout.
int keymapFile(std::uint32_t& size) {
    xkb_context* context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    const xkb_rule_names us{"evdev", "pc105", "us", "", ""};
    xkb_keymap* keymap = xkb_keymap_new_from_names(context, &us, XKB_KEYMAP_COMPILE_NO_FLAGS);
    char* text = xkb_keymap_get_as_string(keymap, XKB_KEYMAP_FORMAT_TEXT_V1);
    size = static_cast<std::uint32_t>(std::strlen(text) + 1);
    const int fd = memfd_create("keymap", MFD_CLOEXEC);
    if (write(fd, text, size) != static_cast<ssize_t>(size)) std::exit(1);
    std::free(text);
    xkb_keymap_unref(keymap);
    xkb_context_unref(context);
    return fd;
}

/// A key with its modifiers (1 shift, 4 control), by the kernel's codes.
void fakeKey(wl_proxy* fake, std::uint32_t code, std::uint32_t modifiers) {
    constexpr std::uint32_t shift = 42, control = 29;
    const auto tell = [fake](std::uint32_t key, bool isDown) {
        wl_proxy_marshal_flags(fake, 10, nullptr, 4, 0, key, isDown ? 1U : 0U);
    };
    if (modifiers & 1) tell(shift, true);
    if (modifiers & 4) tell(control, true);
    tell(code, true);
    tell(code, false);
    if (modifiers & 4) tell(control, false);
    if (modifiers & 1) tell(shift, false);
}

int serveFake(wl_display* display, wl_proxy* fake) {
    wl_proxy_marshal_flags(fake, 0, nullptr, 4, 0, "test", "test");
    wl_display_roundtrip(display);
    std::cout << "ready" << std::endl;
    std::string word;
    while (std::cin >> word) {
        std::uint32_t first = 0, second = 0;
        std::cin >> first;
        if (word == "key" || word == "move") std::cin >> second;
        if (word == "key")
            fakeKey(fake, first, second);
        else if (word == "move")
            wl_proxy_marshal_flags(
                fake,
                9,
                nullptr,
                4,
                0,
                wl_fixed_from_int(static_cast<int>(first)),
                wl_fixed_from_int(static_cast<int>(second)));
        else
            wl_proxy_marshal_flags(fake, 2, nullptr, 4, 0, first, word == "press" ? 1U : 0U);
        wl_display_roundtrip(display);
        std::cout << "ok" << std::endl;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const auto width = static_cast<std::uint32_t>(std::stoul(argv[1]));
    const auto height = static_cast<std::uint32_t>(std::stoul(argv[2]));
    wl_display* display = wl_display_connect(nullptr);
    if (!display) return 1;
    Globals globals;
    const wl_registry_listener listener{found, gone};
    wl_registry_add_listener(wl_display_get_registry(display), &listener, &globals);
    wl_display_roundtrip(display);
    if (globals.fake) return serveFake(display, globals.fake);
    if (!globals.pointers || !globals.keyboards || !globals.seat) return 1;
    wl_proxy* pointer = wl_proxy_marshal_flags(
        globals.pointers,
        0,
        &pointerInterface,
        1,
        0,
        static_cast<void*>(nullptr),
        static_cast<void*>(nullptr));
    wl_proxy* keyboard = wl_proxy_marshal_flags(
        globals.keyboards, 0, &keyboardInterface, 1, 0, globals.seat, static_cast<void*>(nullptr));
    std::uint32_t size = 0;
    const int keymap = keymapFile(size);
    wl_proxy_marshal_flags(
        keyboard, 0, nullptr, 1, 0, std::uint32_t{XKB_KEYMAP_FORMAT_TEXT_V1}, keymap, size);
    wl_display_roundtrip(display);
    std::cout << "ready" << std::endl;

    std::uint32_t time = 0;
    std::string word;
    while (std::cin >> word) {
        time += 20;
        std::uint32_t first = 0, second = 0;
        std::cin >> first;
        if (word == "key") {
            std::cin >> second;
            const auto modify = [&](std::uint32_t bits) {
                wl_proxy_marshal_flags(keyboard, 2, nullptr, 1, 0, bits, 0U, 0U, 0U);
            };
            modify(second);
            wl_proxy_marshal_flags(keyboard, 1, nullptr, 1, 0, time, first, 1U);
            wl_proxy_marshal_flags(keyboard, 1, nullptr, 1, 0, time + 5, first, 0U);
            modify(0);
        } else if (word == "move") {
            std::cin >> second;
            wl_proxy_marshal_flags(pointer, 1, nullptr, 1, 0, time, first, second, width, height);
        } else {
            wl_proxy_marshal_flags(pointer, 2, nullptr, 1, 0, time, first, word == "press" ? 1U : 0U);
        }
        wl_proxy_marshal_flags(pointer, 4, nullptr, 1, 0);
        wl_display_roundtrip(display);
        std::cout << "ok" << std::endl;
    }
}
