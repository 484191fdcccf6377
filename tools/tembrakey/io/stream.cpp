#include "tembrakey/io/stream.h"

#include "tembrakey/io/files.h"
#include "tembrakey/io/progress.h"

namespace tembra::tool {

std::uint64_t forEachPiece(const std::string &path, const std::string &what,
                           const std::function<void(crypto::ByteView)> &take) {
    InputFile file(path);
    Progress progress(what, file.size());
    crypto::SecretBytes piece(PIECE_SIZE);
    std::uint64_t total = 0;
    while (const std::size_t count = file.read(piece.data(), piece.size())) {
        take(crypto::ByteView(piece.data(), count));
        progress.advance(count);
        total += count;
    }
    return total;
}

} // namespace tembra::tool
