// The object identifiers of our keys, as encoded content.
#pragma once

#include <array>
#include <cstdint>

namespace tembra::crypto::oids {

// rsaEncryption 1.2.840.113549.1.1.1
constexpr std::array<std::uint8_t, 9> RSA_ENCRYPTION = {0x2A, 0x86, 0x48, 0x86, 0xF7,
                                                        0x0D, 0x01, 0x01, 0x01};
// ecPublicKey 1.2.840.10045.2.1
constexpr std::array<std::uint8_t, 7> EC_PUBLIC_KEY = {0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x02, 0x01};
// sm2 1.2.156.10197.1.301, the curve
constexpr std::array<std::uint8_t, 8> SM2_CURVE = {0x2A, 0x81, 0x1C, 0xCF, 0x55, 0x01, 0x82, 0x2D};
// sha256 2.16.840.1.101.3.4.2.1
constexpr std::array<std::uint8_t, 9> SHA256 = {0x60, 0x86, 0x48, 0x01, 0x65,
                                                0x03, 0x04, 0x02, 0x01};

} // namespace tembra::crypto::oids
