#include "tests/desktop/KWin.hpp"

#include <array>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <gio/gio.h>
#include <gio/gunixfdlist.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "foundation/Files.hpp"
#include "foundation/Handle.hpp"
#include "tests/desktop/Nobody.hpp"
#include "tests/desktop/RunningDesktop.hpp"

namespace zelto::test {
namespace {

/// The bus's address, once whoever runs as another user may come to it.
std::string opened(const PrivateBus& bus) {
    std::filesystem::permissions(bus.folder(), std::filesystem::perms(0755));
    return bus.address();
}

std::vector<std::string> variablesIn(const std::filesystem::path& folder, const std::string& bus) {
    std::vector<std::string> out{
        "PATH=/usr/bin:/bin",
        "LIBGL_ALWAYS_SOFTWARE=1",
        "LC_ALL=C.UTF-8",
        "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS=1",
        "KWIN_WAYLAND_NO_PERMISSION_CHECKS=1",
        "DBUS_SESSION_BUS_ADDRESS=" + bus};
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"})
        out.push_back(std::string(name) + "=" + folder.string());
    return out;
}

/// All that comes through a pipe.
std::string readAll(int fd) {
    std::string out;
    std::array<char, 65536> part{};
    for (ssize_t count = 0; (count = read(fd, part.data(), part.size())) > 0;)
        out.append(part.data(), static_cast<std::size_t>(count));
    return out;
}

}  // namespace

KWin::KWin()
    : variables_(variablesIn(folder_.path(), opened(bus_))),
      compositor_(
          asNobody(
              folder_.path(), {copyIn(folder_.path(), "/usr/bin/kwin_wayland"),
                               "--virtual",
                               "--width",
                               std::to_string(width),
                               "--height",
                               std::to_string(height),
                               "--no-lockscreen",
                               "--socket",
                               "wayland-test"}),
          variables_, folder_.path() / "compositor.log") {
    const bool isThere = eventually([&] {
        return std::filesystem::exists(folder_.path() / "wayland-test") && screenshot().width == width;
    });
    if (!isThere) throw std::runtime_error(readFile(folder_.path() / "compositor.log").value_or("no KWin"));
    devices_.emplace(folder_.path(), environment(), width, height);
}

std::vector<std::string> KWin::environment() const {
    return {
        "PATH=/usr/bin:/bin",
        "XDG_RUNTIME_DIR=" + folder_.path().string(),
        "WAYLAND_DISPLAY=wayland-test",
        "XDG_SESSION_TYPE=wayland",
        "XDG_CURRENT_DESKTOP=KDE"};
}

drawing::Picture KWin::screenshot() {
    using Connection = Handle<GDBusConnection, g_object_unref>;
    using Variant = Handle<GVariant, g_variant_unref>;
    const Connection connection(g_dbus_connection_new_for_address_sync(
        bus_.address().c_str(),
        static_cast<GDBusConnectionFlags>(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr,
        nullptr,
        nullptr));
    std::array<int, 2> ends{};
    if (!connection || pipe(ends.data()) != 0) return {};
    const FileDescriptor reading(ends[0]);
    std::string bytes;
    std::thread reader([&] { bytes = readAll(reading.get()); });
    const Handle<GUnixFDList, g_object_unref> fds(g_unix_fd_list_new());
    g_unix_fd_list_append(fds.get(), ends[1], nullptr);
    close(ends[1]);
    const Variant answer(g_dbus_connection_call_with_unix_fd_list_sync(
        connection.get(),
        "org.kde.KWin",
        "/org/kde/KWin/ScreenShot2",
        "org.kde.KWin.ScreenShot2",
        "CaptureActiveScreen",
        g_variant_new("(a{sv}h)", nullptr, 0),
        nullptr,
        G_DBUS_CALL_FLAGS_NONE,
        10000,
        fds.get(),
        nullptr,
        nullptr,
        nullptr));
    // Closes this side of the pipe: all of it has been read then.
    const_cast<Handle<GUnixFDList, g_object_unref>&>(fds).reset();
    reader.join();
    if (!answer) return {};
    const Variant about(g_variant_get_child_value(answer.get(), 0));
    guint32 columns = 0, rows = 0, stride = 0;
    g_variant_lookup(about.get(), "width", "u", &columns);
    g_variant_lookup(about.get(), "height", "u", &rows);
    g_variant_lookup(about.get(), "stride", "u", &stride);
    if (bytes.size() < std::size_t{stride} * rows) return {};
    drawing::Picture out;
    out.width = static_cast<int>(columns);
    out.height = static_cast<int>(rows);
    out.pixels.resize(std::size_t{columns} * rows);
    for (std::size_t y = 0; y < rows; ++y)
        std::memcpy(&out.pixels[y * columns], bytes.data() + y * stride, std::size_t{columns} * 4);
    for (std::uint32_t& pixel : out.pixels) pixel |= 0xFF000000U;
    return out;
}

}  // namespace zelto::test
