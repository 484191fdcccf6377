#include "services/device_auth.h"

#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"
#include "provider/outcome.h"

#include <cstring>

namespace tembra {

namespace {

constexpr ULONG CHALLENGE_LEN = 8;
constexpr ULONG BLOCK_LEN = 16;

// Letters count from 0, so A to F are 0 to 5 and letters up to Z are accepted: the keys of tokens
// in the field were made that way. -1 for any other character.
int characterValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    return c >= 'a' && c <= 'z' ? c - 'a' : -1;
}

bool keyFromText(const char *text, unsigned char *key) {
    for (std::size_t i = 0; i < AUTH_KEY_LEN; ++i) {
        const int high = characterValue(text[2 * i]);
        const int low = characterValue(text[2 * i + 1]);
        if (high < 0 || low < 0)
            return false;
        key[i] = static_cast<unsigned char>((high << 4) | low); // low is not masked to four bits
    }
    return true;
}

int failedCall(const char *call, ULONG rv, int result, const char *function) {
    TEMBRA_TRACE(TraceLevel::error, function, "%s fail, error = 0x%08X", call, rv);
    return result;
}

} // namespace

int VerifySuperPwd(Device *hDevice, const char *pwd, int *pretrynum) {
    if (pretrynum)
        *pretrynum = -1;
    SecretArray<AUTH_KEY_LEN> key;
    if (std::strlen(pwd) != 2 * AUTH_KEY_LEN)
        return fail("strlen(pwd) != 32", __func__);
    if (!keyFromText(pwd, key.data()))
        return fail("keylen != 16", __func__);
    return ExternalAuth(hDevice, key.data());
}

int ExternalAuth(Device *hDevice, const unsigned char key[AUTH_KEY_LEN]) {
    BYTE challenge[BLOCK_LEN] = {}; // the second half stays zero
    BYTE response[BLOCK_LEN] = {};
    ULONG rv = SKF_GenRandom(hDevice->m_hDev, challenge, CHALLENGE_LEN);
    if (rv != SAR_OK)
        return failedCall("SKF_GenRandom", rv, TEMBRA_FAILURE, __func__);
    HANDLE hKey = nullptr;
    rv = SKF_SetSymmKey(hDevice->m_hDev, skfInput(key), hDevice->m_info.DevAuthAlgId, &hKey);
    if (rv != SAR_OK)
        return failedCall("SKF_SetSymmKey", rv, TEMBRA_FAILURE, __func__);
    const BLOCKCIPHERPARAM param = {};
    rv = SKF_EncryptInit(hKey, param);
    if (rv != SAR_OK) // the key handle stays open, as this vendor's tokens require
        return failedCall("SKF_EncryptInit", rv, TEMBRA_FAILURE, __func__);
    ULONG length = sizeof(response);
    rv = SKF_Encrypt(hKey, challenge, sizeof(challenge), response, &length);
    SKF_CloseHandle(hKey);
    if (rv != SAR_OK)
        return failedCall("SKF_Encrypt", rv, TEMBRA_FAILURE, __func__);
    if (length > sizeof(response))
        return failOverlong("SKF_Encrypt", length, sizeof(response), __func__);
    rv = SKF_DevAuth(hDevice->m_hDev, response, length);
    if (rv != SAR_OK)
        return failedCall("SKF_DevAuth", rv, TEMBRA_WRONG_PIN, __func__);
    return TEMBRA_SUCCESS;
}

} // namespace tembra
