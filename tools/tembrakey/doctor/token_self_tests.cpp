// Random numbers, and known answers of what needs no login.
#include <cstring>

#include "tembrakey/doctor/token_parts.h"
#include "tembrakey/text/text.h"

namespace tembra::tool::doctor {

namespace {

using Block = std::array<BYTE, 16>;
using Hash = std::array<BYTE, 32>;

// The vectors of GB/T 32907 (key and plaintext are the same) and GB/T 32905 ("abc").
constexpr Block SM4_KEY = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                           0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10};
constexpr Block SM4_CIPHER = {0x68, 0x1E, 0xDF, 0x34, 0xD2, 0x06, 0x96, 0x5E,
                              0x86, 0xB3, 0xE9, 0x4F, 0x53, 0x6E, 0x42, 0x46};
constexpr Hash SM3_OF_ABC = {0x66, 0xC7, 0xF0, 0xF4, 0x62, 0xEE, 0xED, 0xD9, 0xD1, 0xF2, 0xD4,
                             0x6B, 0xDC, 0x10, 0xE4, 0xE2, 0x41, 0x67, 0xC4, 0x87, 0x5C, 0xF2,
                             0xF7, 0xA2, 0x29, 0x7D, 0xA0, 0x2B, 0x8F, 0x4B, 0xA8, 0xE0};

void report(const Token &token, const char *what, ULONG result, bool isRight) {
    if (result != SAR_OK)
        token.report.fail(token.name, tr("{1}: the token answers {2}", {what, resultText(result)}),
                          tr("the token lacks what it claims; tell its vendor"));
    else if (isRight)
        token.report.ok(token.name, tr("{1}: right answer", {what}));
    else
        token.complain(tr("{1}: wrong answer", {what}));
}

} // namespace

void examineRandom(const Token &token) {
    Guarded<Hash> first;
    Guarded<Hash> second;
    ULONG result = token.skf.SKF_GenRandom(token.device, first.bytes(), sizeof(Hash));
    if (result == SAR_OK)
        result = token.skf.SKF_GenRandom(token.device, second.bytes(), sizeof(Hash));
    const bool isRight = *first.get() != *second.get() && *first.get() != Hash{} &&
                         !first.isOverrun() && !second.isOverrun();
    report(token, tr("random numbers"), result, isRight);
}

void examineSm3(const Token &token) {
    HANDLE handle = nullptr;
    ULONG result = token.skf.SKF_DigestInit(token.device, SGD_SM3, nullptr, nullptr, 0, &handle);
    BYTE text[] = {'a', 'b', 'c'};
    Guarded<Hash> hash;
    ULONG length = sizeof(Hash);
    if (result == SAR_OK) {
        result = token.skf.SKF_DigestUpdate(handle, text, sizeof text);
        if (result == SAR_OK)
            result = token.skf.SKF_DigestFinal(handle, hash.bytes(), &length);
        token.skf.SKF_CloseHandle(handle);
    }
    report(token, "SM3", result, *hash.get() == SM3_OF_ABC && length == sizeof(Hash));
}

void examineSm4(const Token &token) {
    Block key = SM4_KEY;
    Block plain = SM4_KEY;
    Guarded<Block> cipher;
    ULONG length = sizeof(Block);
    HANDLE handle = nullptr;
    ULONG result = token.skf.SKF_SetSymmKey(token.device, key.data(), SGD_SMS4_ECB, &handle);
    if (result == SAR_OK) {
        result = token.skf.SKF_EncryptInit(handle, BLOCKCIPHERPARAM{});
        if (result == SAR_OK)
            result =
                token.skf.SKF_Encrypt(handle, plain.data(), sizeof(Block), cipher.bytes(), &length);
        token.skf.SKF_CloseHandle(handle);
    }
    report(token, "SM4", result, *cipher.get() == SM4_CIPHER && length == sizeof(Block));
}

} // namespace tembra::tool::doctor
