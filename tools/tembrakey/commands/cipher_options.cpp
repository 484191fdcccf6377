#include "crypto/hex.h"
#include "tembra_key_prov.h"
#include "tembrakey/commands/cipher.h"
#include "tembrakey/io/files.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

struct CipherName {
    const char *name;
    int algorithm;
    bool chained;
};

const CipherName CIPHERS[] = {
    {"sm4-cbc", ORVEL_PKI_ALGORITHM_SMS4_CBC, true},
    {"sm4-ecb", ORVEL_PKI_ALGORITHM_SMS4_ECB, false},
    {"sm1-cbc", ORVEL_PKI_ALGORITHM_SM1_CBC, true},
    {"sm1-ecb", ORVEL_PKI_ALGORITHM_SM1_ECB, false},
    {"ssf33-cbc", ORVEL_PKI_ALGORITHM_SSF33_CBC, true},
    {"ssf33-ecb", ORVEL_PKI_ALGORITHM_SSF33_ECB, false},
};

const CipherName &cipherNamed(const std::string &name) {
    for (const CipherName &one : CIPHERS)
        if (name == one.name)
            return one;
    return CIPHERS[0]; // the command line knows only the names above
}

crypto::SecretBytes fromHex(std::string_view text) {
    auto bytes = crypto::fromHex(text);
    if (!bytes)
        return {};
    crypto::SecretBytes secret(bytes->begin(), bytes->end());
    crypto::wipe(bytes->data(), bytes->size());
    return secret;
}

} // namespace

CipherOptions::~CipherOptions() {
    crypto::wipe(m_keyHex.data(), m_keyHex.size());
}

void CipherOptions::declare(Arguments &arguments) {
    arguments
        .choice("--algo", m_algorithm, "cipher and mode (default: sm4-cbc)",
                {"sm4-cbc", "sm4-ecb", "sm1-cbc", "sm1-ecb", "ssf33-cbc", "ssf33-ecb"})
        .text("--key-file FILE", m_keyFile, "file with the key: 16 bytes, or 32 hex digits")
        .text("--key-hex HEX", m_keyHex,
              "key in 32 hex digits; other users of the machine can see it")
        .excludes("--key-file")
        .text("--iv HEX", m_iv, "CBC: initialisation vector in 32 hex digits")
        .flag("--pad", m_pad, "use PKCS #7 padding (without it, lengths must be multiples of 16)");
}

int CipherOptions::algorithm() const {
    return cipherNamed(m_algorithm).algorithm;
}

bool CipherOptions::chained() const {
    return cipherNamed(m_algorithm).chained;
}

crypto::SecretBytes CipherOptions::key() const {
    if (!keyGiven())
        throw Failure(ExitCode::usage, tr("a key is required: use --key-file or --key-hex"));
    crypto::SecretBytes key = m_keyFile.empty() ? fromHex(m_keyHex) : readWhole(m_keyFile);
    if (key.size() > BLOCK_SIZE && !m_keyFile.empty()) {
        while (!key.empty() && (key.back() == '\n' || key.back() == '\r'))
            key.pop_back();
        key = fromHex(crypto::asText(key));
    }
    if (key.size() != BLOCK_SIZE)
        throw Failure(ExitCode::usage, tr("the key must be 16 bytes"));
    return key;
}

crypto::Bytes CipherOptions::iv() const {
    if (!chained())
        return {};
    const auto iv = crypto::fromHex(m_iv);
    if (!iv || iv->size() != BLOCK_SIZE)
        throw Failure(ExitCode::usage, tr("CBC needs --iv with 32 hex digits"));
    return *iv;
}

} // namespace tembra::tool
