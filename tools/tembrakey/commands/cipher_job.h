// Encryption and decryption of a file with a raw key, for the two commands.
#pragma once

#include <string>

#include "crypto/secret.h"
#include "tembrakey/cli/command.h"
#include "tembrakey/provider/session.h"

namespace tembra::tool {

// Of all the ciphers, and of their keys and initialisation vectors; bytes.
constexpr std::size_t BLOCK_SIZE = 16;

// The arguments that describe a raw key and its cipher.
class CipherChoice {
public:
    ~CipherChoice();

    void describe(Arguments &arguments);
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

// Carries in to out through the token. Returns the bytes written. Throws Failure.
std::uint64_t runCipher(const Device &device, const CipherChoice &choice, bool encrypt,
                        const std::string &in, const std::string &out);

// The result of a command that writes its output to out, "-" being standard output.
void reportOutput(const Console &console, std::uint64_t bytes, const std::string &out);
// Refuses --json when the output itself goes to standard output.
void requireSeparateOutput(const Console &console, const std::string &out);

} // namespace tembra::tool
