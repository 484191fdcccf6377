// Carrying a file through a transformation piece by piece.
#pragma once

#include <functional>
#include <string>

#include "crypto/secret.h"

namespace tembra::tool {

// Bytes in one piece, a multiple of every block size.
constexpr std::size_t PIECE_SIZE = 1 << 18;

// Hands the file's bytes to take, in pieces of pieceSize except for the last, with a progress bar
// that says what (translated) is going on. Returns the number of bytes. Throws Failure.
std::uint64_t forEachPiece(const std::string &path, const std::string &what,
                           const std::function<void(crypto::ByteView)> &take);

} // namespace tembra::tool
