#include "crypto/hex.h"
#include "tembra_key_prov.h"
#include "tembrakey/commands/cipher_job.h"
#include "tembrakey/io/files.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

namespace {

struct CipherName {
    const char *name;
    int algorithm;
    bool chained;
};

const CipherName ciphers[] = {
    {"sm4-cbc", ORVEL_PKI_ALGORITHM_SMS4_CBC, true},
    {"sm4-ecb", ORVEL_PKI_ALGORITHM_SMS4_ECB, false},
    {"sm1-cbc", ORVEL_PKI_ALGORITHM_SM1_CBC, true},
    {"sm1-ecb", ORVEL_PKI_ALGORITHM_SM1_ECB, false},
    {"ssf33-cbc", ORVEL_PKI_ALGORITHM_SSF33_CBC, true},
    {"ssf33-ecb", ORVEL_PKI_ALGORITHM_SSF33_ECB, false},
};

const CipherName &cipherNamed(const std::string &name) {
    for (const CipherName &one : ciphers) {
        if (name == one.name)
            return one;
    }
    return ciphers[0]; // the command line knows only the names above
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

CipherChoice::~CipherChoice() {
    crypto::wipe(keyHex_.data(), keyHex_.size());
}

void CipherChoice::describe(Arguments &arguments) {
    arguments
        .choice("--algo", algorithm_,
                {"sm4-cbc", "sm4-ecb", "sm1-cbc", "sm1-ecb", "ssf33-cbc", "ssf33-ecb"},
                "Cipher and mode (sm4-cbc)")
        .text("--key-file FILE", keyFile_, "A file with the key: 16 bytes, or 32 hex digits")
        .text("--key-hex HEX", keyHex_,
              "The key in 32 hex digits; other users of the machine can see it")
        .excludes("--key-file")
        .text("--iv HEX", iv_, "CBC: the initialisation vector in 32 hex digits")
        .flag("--pad", pad_, "PKCS #7 padding; without it lengths are multiples of 16");
}

int CipherChoice::algorithm() const {
    return cipherNamed(algorithm_).algorithm;
}

bool CipherChoice::chained() const {
    return cipherNamed(algorithm_).chained;
}

crypto::SecretBytes CipherChoice::key() const {
    if (!keyGiven())
        throw Failure(ExitCode::Usage, tr("Give the key with --key-file or --key-hex"));
    crypto::SecretBytes key = keyFile_.empty() ? fromHex(keyHex_) : readWhole(keyFile_);
    if (key.size() > blockSize && !keyFile_.empty()) {
        while (!key.empty() && (key.back() == '\n' || key.back() == '\r'))
            key.pop_back();
        key = fromHex(crypto::asText(key));
    }
    if (key.size() != blockSize)
        throw Failure(ExitCode::Usage, tr("The key must be 16 bytes"));
    return key;
}

crypto::Bytes CipherChoice::iv() const {
    if (!chained())
        return {};
    const auto iv = crypto::fromHex(iv_);
    if (!iv || iv->size() != blockSize)
        throw Failure(ExitCode::Usage, tr("CBC needs --iv with 32 hex digits"));
    return *iv;
}

} // namespace tembra::tool
