// PEM (RFC 7468) and base64.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "secret.h"

namespace tembra::crypto {

struct PemBlock {
    std::string label; // what stands after BEGIN
    SecretBytes data;
};

// Base64 on one line. Decoding skips white space and refuses everything else outside the alphabet
// and wrong padding.
std::string encodeBase64(ByteView data);
std::optional<SecretBytes> decodeBase64(std::string_view text);

// One block, in lines of 64 characters, ended by a line feed.
std::string encodePem(std::string_view label, ByteView data);

// Every block of a text in order; text around the blocks is skipped. Empty when a block is broken
// or has header lines, as encrypted keys of the traditional form do.
std::optional<std::vector<PemBlock>> decodePem(std::string_view text);

} // namespace tembra::crypto
