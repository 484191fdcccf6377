// Generation of signature key pairs on the token.
#include "keys/container_slot.h"
#include "log/trace.h"
#include "platform/memory.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"
#include "provider/outcome.h"
#include "provider/public_key_cache.h"
#include "provider/public_key_reader.h"

#include <cstdlib>

using namespace tembra;

namespace {

struct Request {
    int algo;
    int keybits;
    const void *param;
    const char *label;
};

Outcome checkAlgorithm(const Request &request) {
    if (request.algo == ORVEL_PKI_ALGORITHM_RSA) {
        if (request.param)
            return {TEMBRA_BAD_ARGUMENT, nullptr};
        if (request.keybits != 1024 && request.keybits != 2048)
            return {TEMBRA_BAD_ARGUMENT, "keybits != 1024 && keybits != 2048"};
        return CONTINUE;
    }
    const auto *eccParam = static_cast<const TembraEccParam *>(request.param);
    if (!eccParam)
        return {TEMBRA_BAD_ARGUMENT, "eccParam == 0"};
    if (eccParam->m_temp != 0)
        return {TEMBRA_BAD_ARGUMENT, "eccParam->m_temp"};
    if (eccParam->m_curve != ORVEL_PKI_ECC_CURVE_SM2)
        return {TEMBRA_BAD_ARGUMENT, "eccParam->m_curve != ORVEL_PKI_ECC_CURVE_SM2"};
    if (request.keybits != 256)
        return {TEMBRA_BAD_ARGUMENT, "keybits != 256"};
    return CONTINUE;
}

int resultOf(ULONG rv, const char *call, const char *function) {
    if (rv == SAR_USER_NOT_LOGGED_IN)
        return TEMBRA_NOT_LOGGED_IN;
    if (rv == SAR_OK)
        return TEMBRA_SUCCESS;
    // Only a debug line: hosts retry a refused generation.
    TEMBRA_TRACE(TraceLevel::debug, function, "%s fail, error = 0x%08X", call, rv);
    return TEMBRA_FAILURE;
}

int generateRSA(const Container *hContainer, unsigned char **key, int *length,
                const char *function) {
    RSAPUBLICKEYBLOB blob = {};
    const ULONG rv = SKF_GenRSAKeyPair(hContainer->m_hContainer,
                                       static_cast<ULONG>(hContainer->m_keybits), &blob);
    const int result = resultOf(rv, "SKF_GenRSAKeyPair", function);
    if (result != TEMBRA_SUCCESS || encodeRSAPublicKey(blob, key, length) == 1)
        return result;
    TEMBRA_TRACE(TraceLevel::warning, function, "OrvelPKICryptoEncodeRSAPubKey fail, error = %d",
                 0);
    return TEMBRA_FAILURE;
}

int generateECC(const Container *hContainer, unsigned char **key, int *length,
                const char *function) {
    ECCPUBLICKEYBLOB blob = {};
    const ULONG rv = SKF_GenECCKeyPair(hContainer->m_hContainer, SGD_SM2_1, &blob);
    const int result = resultOf(rv, "SKF_GenECCKeyPair", function);
    if (result != TEMBRA_SUCCESS)
        return result;
    const int encoded = encodeECCPublicKey(blob, key, length);
    if (encoded == 1)
        return TEMBRA_SUCCESS;
    TEMBRA_TRACE(TraceLevel::warning, function, "OrvelPKICryptoEncodeECCPubKey fail, error = %d",
                 encoded);
    return TEMBRA_FAILURE;
}

// Generates the key pair of a typed container and caches its public key. Returns 1, 0 or -8.
int GenerateKeypair(Container *hContainer) {
    unsigned char *key = nullptr;
    int length = 0;
    int result = TEMBRA_FAILURE;
    if (hContainer->m_type == CONTAINER_TYPE_RSA)
        result = generateRSA(hContainer, &key, &length, __func__);
    else if (hContainer->m_type == CONTAINER_TYPE_ECC)
        result = generateECC(hContainer, &key, &length, __func__);
    else
        TRACE_ERROR("error container type");
    if (result != TEMBRA_SUCCESS)
        return result;
    replacePublicKey(hContainer, true, key, length);
    return TEMBRA_SUCCESS;
}

// Chooses or creates the container for the new key pair and stores it in the table.
Outcome placeContainer(Device *hDevice, const char *label, int &position, Container *&hContainer) {
    const ContainerChoice choice = getEmptyContainerIndex(hDevice, label);
    if (choice.result != TEMBRA_SUCCESS)
        return {choice.result, nullptr};
    if (isTableFull(hDevice))
        return {TEMBRA_FAILURE, TABLE_FULL};
    position = choice.position;
    hContainer = choice.hContainer;
    if (hContainer)
        return CONTINUE;
    const int created = createContainer(hDevice, label, &hContainer);
    if (created != TEMBRA_SUCCESS)
        return {created, nullptr};
    setContainerAt(hDevice, position, hContainer);
    storeCount(hDevice->m_containerCount, hDevice->m_containerCount + 1);
    return CONTINUE;
}

Outcome addKeypair(Device *hDevice, const Request &request, int position,
                   SPI_KEYPAIR_HANDLE *phKeypair) {
    auto *hKeypair = allocateRecord<Keypair>();
    if (!hKeypair)
        return {TEMBRA_FAILURE, "hKeypair == 0"};
    hKeypair->m_label = copyText(request.label);
    if (!hKeypair->m_label) {
        std::free(hKeypair);
        return {TEMBRA_FAILURE, "hKeypair->m_label == 0"};
    }
    hKeypair->m_keybits = request.keybits;
    hKeypair->m_algo = request.algo;
    hKeypair->m_keytype = ORVEL_PKI_KEYPAIRTYPE_SIGNATURE;
    hKeypair->m_index = position;
    registerKeypair(hDevice, hKeypair);
    handOutKeypair(hDevice, hKeypair);
    *phKeypair = hKeypair;
    return CONTINUE;
}

// Runs under the lock.
Outcome generate(Device *hDevice, const Request &request, SPI_KEYPAIR_HANDLE *phKeypair) {
    if (hDevice->m_isformat == 0)
        return {TEMBRA_FAILURE, "hDevice->m_isformat == 0"};
    int position = 0;
    Container *hContainer = nullptr;
    Outcome outcome = placeContainer(hDevice, request.label, position, hContainer);
    if (outcome.result != TEMBRA_SUCCESS)
        return outcome;

    // The container stays even if a check fails; the next attempt uses it.
    const bool isRsa = request.algo == ORVEL_PKI_ALGORITHM_RSA;
    if (!isRsa && request.algo != ORVEL_PKI_ALGORITHM_ECC)
        return CONTINUE; // hosts rely on this success without a key pair
    outcome = checkAlgorithm(request);
    if (outcome.result != TEMBRA_SUCCESS)
        return outcome;
    hContainer->m_type = isRsa ? CONTAINER_TYPE_RSA : CONTAINER_TYPE_ECC;
    hContainer->m_keybits = request.keybits;
    const int generated = GenerateKeypair(hContainer);
    if (generated != TEMBRA_SUCCESS) {
        hContainer->m_type = CONTAINER_TYPE_EMPTY;
        hContainer->m_keybits = 0;
        return {generated, nullptr};
    }
    return addKeypair(hDevice, request, position, phKeypair);
}

} // namespace

int DeviceGenerateKeypair(SPI_DEVICE_HANDLE hDevice, int algo, int keybits, const void *param,
                          int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair) {
    const call_stack_tracer tracer("DeviceGenerateKeypair");
    TRACE_INFO("hDevice = %p, int algo = %d, int keybits = %d, const void *param = %p, "
               "int type = %d, const char *label = %p, SPI_KEYPAIR_HANDLE *phKeypair = %p",
               static_cast<void *>(hDevice), algo, keybits, param, type,
               static_cast<const void *>(label), static_cast<void *>(phKeypair));
    if (!hDevice)
        return TEMBRA_NULL_HANDLE;
    if (!phKeypair || !label || label[0] == '\0')
        return TEMBRA_BAD_ARGUMENT;
    if (type != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE) {
        TRACE_ERROR("type != ORVEL_PKI_KEYPAIRTYPE_SIGNATURE");
        return TEMBRA_BAD_ARGUMENT;
    }
    if (keybits <= 0) {
        TRACE_ERROR("keybits <= 0");
        return TEMBRA_BAD_ARGUMENT;
    }

    ProviderLock lock;
    const Outcome outcome = generate(hDevice, {algo, keybits, param, label}, phKeypair);
    lock.leave();
    return finish(outcome, __func__);
}
