// Encryption and decryption of a file with a raw key, for the two commands.
#pragma once

#include <string>

#include "crypto/secret.h"
#include "tembrakey/cli/arguments.h"
#include "tembrakey/provider/session.h"

namespace tembra::tool {

// Bytes in a block, a key and an initialisation vector of every cipher.
constexpr std::size_t BLOCK_SIZE = 16;

// The options for a raw key and its cipher.
class CipherOptions {
public:
    ~CipherOptions();

    void declare(Arguments &arguments);
    bool keyGiven() const { return !m_keyHex.empty() || !m_keyFile.empty(); }

    int algorithm() const;           // ORVEL_PKI_ALGORITHM_
    crypto::SecretBytes key() const; // 16 bytes; throws Failure
    crypto::Bytes iv() const;        // 16 bytes, or none for ECB; throws Failure
    bool padded() const { return m_pad; }

private:
    bool chained() const;

    std::string m_algorithm = "sm4-cbc";
    std::string m_keyHex;
    std::string m_keyFile;
    std::string m_iv;
    bool m_pad = false;
};

// Encrypts or decrypts one file into another. Returns the bytes written. Throws Failure.
std::uint64_t runCipher(const Device &device, const CipherOptions &choice, bool encrypt,
                        const std::string &input, const std::string &output);

} // namespace tembra::tool
