// zelto-pictures: opens and decodes image files for a process that may do neither. It is started by the
// widget extension with a socket as its standard input, over which paths come and pixels go.

#include <cstdio>
#include <exception>
#include <string_view>

#include <sys/socket.h>
#include <unistd.h>

#include "confinement/Confinement.hpp"
#include "imaging/Thumbnail.hpp"
#include "pictures/PictureServer.hpp"

namespace {

constexpr const char* usage =
    "Usage: zelto-pictures\n"
    "\n"
    "Decodes pictures for zelto-widgets, which starts it with a socket as its standard input. It has\n"
    "no use of its own.\n"
    "\n"
    "  --version  print the version\n";

bool isPacketSocket(int fd) {
    int type = 0;
    socklen_t size = sizeof(type);
    return getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string_view option = argc > 1 ? argv[1] : "";
    if (option == "--version") {
        std::puts("zelto-pictures " ZELTO_VERSION);
        return 0;
    }
    if (option == "--help" || option == "-h") {
        std::fputs(usage, stdout);
        return 0;
    }
    if (!option.empty() || !isPacketSocket(STDIN_FILENO)) {
        std::fputs(usage, stderr);
        return 2;
    }
    try {
        zelto::imaging::prepare();
        zelto::confinement::closeDescriptors(STDERR_FILENO + 1);
        zelto::confinement::confine(zelto::pictures::openerAllowance());
        zelto::pictures::servePictures(STDIN_FILENO, zelto::imaging::decode);
        return 0;
    } catch (const std::exception&) {
        return 1;
    }
}
