// SMS4 with an imported key. An operation is an Init and one call with all data.
#include "entry.h"
#include "handles.h"

#include <algorithm>
#include <memory>
#include <optional>

using namespace tembra;
using namespace tembra::token;
using namespace tembra::token::skf;
using tembra::fault_injection::Call;

namespace {

crypto::Sm4Mode modeOf(ULONG algorithm) {
    require(algorithm == SGD_SMS4_ECB || algorithm == SGD_SMS4_CBC, SAR_NOTSUPPORTYETERR);
    return algorithm == SGD_SMS4_CBC ? crypto::Sm4Mode::cbc : crypto::Sm4Mode::ecb;
}

std::shared_ptr<ImportedKey> importKey(std::shared_ptr<OpenDevice> device, const BYTE *bytes,
                                       ULONG algorithm) {
    (void)imageOf(*device);
    auto key = std::make_shared<ImportedKey>();
    key->mode = modeOf(algorithm);
    requirePointer(bytes);
    key->key.assign(bytes, bytes + crypto::SM4_KEY_SIZE);
    key->device = std::move(device);
    return key;
}

CipherOperation operationOf(crypto::Sm4Mode mode, const BLOCKCIPHERPARAM &param) {
    CipherOperation operation;
    require(param.PaddingType <= 1, SAR_INVALIDPARAMERR);
    operation.padding = static_cast<crypto::Sm4Padding>(param.PaddingType);
    if (mode == crypto::Sm4Mode::cbc) {
        require(param.IVLen == operation.iv.size(), SAR_INVALIDPARAMERR);
        std::copy_n(param.IV, operation.iv.size(), operation.iv.begin());
    }
    return operation;
}

void requireWholeBlocks(crypto::ByteView data) {
    require(data.size() % crypto::SM4_BLOCK_SIZE == 0, SAR_INDATALENERR);
}

void encrypt(ImportedKey &key, crypto::ByteView plain, BYTE *out, ULONG *length) {
    const std::lock_guard guard(key.mutex);
    require(key.encryption.has_value(), SAR_NOTINITIALIZEERR);
    const CipherOperation &operation = *key.encryption;
    std::size_t needed = plain.size();
    if (operation.padding == crypto::Sm4Padding::none)
        requireWholeBlocks(plain);
    else
        needed += crypto::SM4_BLOCK_SIZE - needed % crypto::SM4_BLOCK_SIZE;
    if (!roomFor(needed, out, length))
        return;
    const auto cipher =
        crypto::sm4Encrypt(key.mode, operation.padding, key.key, operation.iv, plain);
    key.encryption.reset();
    require(cipher.has_value(), SAR_FAIL);
    outputBytes(*cipher, out, length);
}

void decrypt(ImportedKey &key, crypto::ByteView cipher, BYTE *out, ULONG *length) {
    const std::lock_guard guard(key.mutex);
    require(key.decryption.has_value(), SAR_NOTINITIALIZEERR);
    requireWholeBlocks(cipher);
    requirePointer(length);
    if (out == nullptr) { // the length without padding is known only after decryption
        *length = static_cast<ULONG>(cipher.size());
        return;
    }
    const CipherOperation &operation = *key.decryption;
    const auto plain =
        crypto::sm4Decrypt(key.mode, operation.padding, key.key, operation.iv, cipher);
    require(plain.has_value(), SAR_INDATAERR);
    outputBytes(*plain, out, length);
    key.decryption.reset();
}

void init(const ImportedKey &key, std::optional<CipherOperation> &operation,
          const BLOCKCIPHERPARAM &param, std::mutex &mutex) {
    const CipherOperation prepared = operationOf(key.mode, param);
    const std::lock_guard guard(mutex);
    operation = prepared;
}

} // namespace

ULONG SKF_SetSymmKey(DEVHANDLE hDev, BYTE *pbKey, ULONG ulAlgID, HANDLE *phKey) {
    Call call(__func__);
    call.handle("hDev", hDev).secret("pbKey", pbKey).number("ulAlgID", ulAlgID);
    return answer(call, [&] {
        auto opened = device(hDev);
        requirePointer(phKey);
        *phKey = handles().keys.add(importKey(std::move(opened), pbKey, ulAlgID));
        call.outputs().handle("phKey", *phKey);
    });
}

ULONG SKF_EncryptInit(HANDLE hKey, BLOCKCIPHERPARAM EncryptParam) {
    Call call(__func__);
    call.handle("hKey", hKey).bytes("IV", EncryptParam.IV, sizeof EncryptParam.IV);
    call.number("IVLen", EncryptParam.IVLen).number("PaddingType", EncryptParam.PaddingType);
    return answer(call, [&] {
        const auto found = key(hKey);
        init(*found, found->encryption, EncryptParam, found->mutex);
    });
}

ULONG SKF_Encrypt(HANDLE hKey, BYTE *pbData, ULONG ulDataLen, BYTE *pbEncryptedData,
                  ULONG *pulEncryptedLen) {
    Call call(__func__);
    call.handle("hKey", hKey).secret("pbData", pbData).number("ulDataLen", ulDataLen);
    return answer(call, [&] {
        encrypt(*key(hKey), bytesArgument(pbData, ulDataLen), pbEncryptedData, pulEncryptedLen);
        call.outputs().bytes("pbEncryptedData", pbEncryptedData, *pulEncryptedLen);
    });
}

ULONG SKF_DecryptInit(HANDLE hKey, BLOCKCIPHERPARAM DecryptParam) {
    Call call(__func__);
    call.handle("hKey", hKey).bytes("IV", DecryptParam.IV, sizeof DecryptParam.IV);
    call.number("IVLen", DecryptParam.IVLen).number("PaddingType", DecryptParam.PaddingType);
    return answer(call, [&] {
        const auto found = key(hKey);
        init(*found, found->decryption, DecryptParam, found->mutex);
    });
}

ULONG SKF_Decrypt(HANDLE hKey, BYTE *pbEncryptedData, ULONG ulEncryptedLen, BYTE *pbData,
                  ULONG *pulDataLen) {
    Call call(__func__);
    call.handle("hKey", hKey).bytes("pbEncryptedData", pbEncryptedData, ulEncryptedLen);
    return answer(call, [&] {
        decrypt(*key(hKey), bytesArgument(pbEncryptedData, ulEncryptedLen), pbData, pulDataLen);
        call.outputs().secret("pbData", pbData).number("pulDataLen", *pulDataLen);
    });
}
