// PEM (RFC 7468).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "secret.h"

namespace tembra::crypto {

struct PemBlock {
    std::string label;
    SecretBytes data;
};

// One block, in lines of 64 characters, ended by a line feed.
std::string encodePem(std::string_view label, ByteView data);

// All blocks of a text in order; text around them is skipped. Empty if a block is cut off or
// damaged, or has header lines, as encrypted keys of the traditional form do.
std::optional<std::vector<PemBlock>> decodePem(std::string_view text);

} // namespace tembra::crypto
