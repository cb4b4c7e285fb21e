#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "confinement/Confinement.hpp"
#include "ui/Nodes.hpp"

namespace zelto::pictures {

/// Decodes the file of a descriptor into a square of at most so many pixels a side.
using Decode = std::function<std::optional<ui::node::Image>(int file, int side)>;

/// The picture process's work: opens the regular files that are asked for over `socket`, of at most 128 MiB,
/// and gives each to a process of its own, which decodes it without any path, file or other process in reach,
/// in at most 3 seconds of processor time and 256 MiB, and of which nothing is taken but pixels. Keeps the
/// latest 64 results by device, inode, size and time. Until the socket's other side goes away.
void servePictures(int socket, const Decode& decode);

/// What the opening process may still do: open files for reading, and start a decoder.
confinement::Allowance openerAllowance();
/// What a decoding process may still do: nothing but with the file that it has.
confinement::Allowance decoderAllowance();

}  // namespace zelto::pictures
