// Import of encryption key pairs: the two blob formats and the record of the new pair.
#include "import/blob.h"
#include "import/envelope.h"
#include "import/key_import.h"
#include "log/trace.h"
#include "platform/memory.h"
#include "provider/keypair_table.h"
#include "provider/lock.h"
#include "provider/outcome.h"

#include <cstdlib>
#include <cstring>

using namespace tembra;

namespace {

constexpr int MAGIC_LEN = 8;
constexpr std::size_t HEADER_LEN = 20;

bool hasMagic(const unsigned char *keyblob, const char *magic) {
    return std::memcmp(keyblob, magic, MAGIC_LEN) == 0;
}

// The index of the container with this name, or -1.
int GetContainerIndex(const Device *hDevice, const char *label) {
    const int count = loadCount(hDevice->m_containerCount);
    TRACE_DEBUG("GetContainerIndex label=%s, hDevice->m_containerCount=%d", label, count);
    for (int i = 0; i < count; ++i) {
        const Container *hContainer = containerAt(hDevice, i);
        if (!hContainer)
            continue;
        TRACE_DEBUG("hDevice->m_containers[i]->m_label=%s", hContainer->m_label);
        if (std::strcmp(hContainer->m_label, label) == 0)
            return i;
    }
    return -1;
}

const Keypair *findSignKeypair(const Device *hDevice, const char *label) {
    for (int i = 0; i < hDevice->m_keypairCount; ++i) {
        const Keypair *hKeypair = hDevice->m_keypairs[i];
        if (hKeypair->m_keytype == ORVEL_PKI_KEYPAIRTYPE_SIGNATURE &&
            std::strcmp(hKeypair->m_label, label) == 0)
            return hKeypair;
    }
    return nullptr;
}

// Returns the error in the 20 bytes before the payload, or null.
const char *checkHeader(const unsigned char *keyblob, std::size_t keybloblen, int &algo) {
    if (keybloblen < HEADER_LEN)
        return "keybloblen < 20";
    BlobReader in(keyblob, keybloblen);
    in.take(MAGIC_LEN);
    if (in.takeNumber() != 1)
        return "version != 1";
    const std::uint32_t blobAlgo = in.takeNumber();
    if (blobAlgo != ORVEL_PKI_ALGORITHM_RSA && blobAlgo != ORVEL_PKI_ALGORITHM_ECC)
        return "algo != ORVEL_PKI_ALGORITHM_RSA && algo != ORVEL_PKI_ALGORITHM_ECC";
    const std::uint32_t len = in.takeNumber();
    if (len == 0 || len != in.remaining())
        return "len <= 0 || len + 20 != keybloblen";
    algo = static_cast<int>(blobAlgo);
    return nullptr;
}

Outcome addKeypair(Device *hDevice, int index, int algo, const char *label,
                   SPI_KEYPAIR_HANDLE *phKeypair) {
    auto *hEncKeypair = allocateRecord<Keypair>();
    if (!hEncKeypair)
        return {TEMBRA_FAILURE, "hEncKeypair == 0"};
    hEncKeypair->m_label = copyText(label);
    if (!hEncKeypair->m_label) {
        std::free(hEncKeypair);
        return {TEMBRA_FAILURE, "hEncKeypair->m_label == 0"};
    }
    hEncKeypair->m_index = index;
    hEncKeypair->m_keytype = ORVEL_PKI_KEYPAIRTYPE_ENCRYPT;
    hEncKeypair->m_algo = algo;
    hEncKeypair->m_keybits = hDevice->m_containers[index]->m_keybits;
    registerKeypair(hDevice, hEncKeypair);
    handOutKeypair(hDevice, hEncKeypair);
    *phKeypair = hEncKeypair;
    return CONTINUE;
}

// Imports an "SCAENCKP" blob. Requires the lock.
Outcome importEnveloped(Device *hDevice, int index, const unsigned char *keyblob, int keybloblen,
                        const char *label, SPI_KEYPAIR_HANDLE *phKeypair) {
    int algo = 0;
    if (const char *message = checkHeader(keyblob, static_cast<std::size_t>(keybloblen), algo))
        return {TEMBRA_FAILURE, message};
    Container *hContainer = hDevice->m_containers[index];
    const unsigned char *payload = keyblob + HEADER_LEN;
    const int payloadLen = keybloblen - static_cast<int>(HEADER_LEN);
    const int imported = algo == ORVEL_PKI_ALGORITHM_RSA
                             ? importRSAKeyPair(hDevice, hContainer, payload, payloadLen)
                             : importSM2KeyPair(hDevice, hContainer, payload, payloadLen);
    if (imported != TEMBRA_SUCCESS)
        return {imported, nullptr};
    return addKeypair(hDevice, index, algo, label, phKeypair);
}

struct Arguments {
    const unsigned char *keyblob;
    int keybloblen;
    int type;
    const char *label;
    SPI_KEYPAIR_HANDLE *phKeypair;
};

Outcome checkArguments(const Device *hDevice, const Arguments &a) {
    if (!hDevice)
        return {TEMBRA_NULL_HANDLE, "hDevice == 0"};
    if (!a.keyblob || a.keybloblen <= MAGIC_LEN)
        return {TEMBRA_BAD_ARGUMENT, "keyblob == 0 || keybloblen <= 8"};
    if (a.type != ORVEL_PKI_KEYPAIRTYPE_ENCRYPT)
        return {TEMBRA_FAILURE, "type != ORVEL_PKI_KEYPAIRTYPE_ENCRYPT"};
    if (!a.label || a.label[0] == '\0')
        return {TEMBRA_BAD_ARGUMENT, "typelabel == 0 || label[0] == 0"};
    if (!a.phKeypair)
        return {TEMBRA_BAD_ARGUMENT, "phKeypair == 0"};
    return CONTINUE;
}

// Returns the reason if nothing can be imported there, or null. Requires the lock.
const char *checkDevice(const Device *hDevice, int index) {
    if (hDevice->m_isformat == 0)
        return "hDevice->m_isformat == 0";
    if (!hDevice->m_containers[index]) // deleted since it was found
        return "GetContainerIndex(hDevice, label) = -1";
    return nullptr;
}

// Envelopes a "_KEYPAIR" blob under the lock, then imports the resulting "SCAENCKP" blob.
int importPlain(Device *hDevice, const Arguments &a, ProviderLock &lock, const char *function) {
    const Keypair *hSignKeypair = findSignKeypair(hDevice, a.label);
    unsigned char *encblob = nullptr;
    int encbloblen = 0;
    const int enveloped =
        hSignKeypair ? EncKeyPairBlob(hSignKeypair, a.keyblob, a.keybloblen, &encblob, &encbloblen)
                     : 0;
    lock.leave();
    if (enveloped != 1)
        return fail(hSignKeypair ? "EncKeyPairBlob()==0" : "hSignKeypair == 0", function);
    const int rv = DeviceImportKeypair(hDevice, encblob, encbloblen, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT,
                                       a.label, a.phKeypair);
    std::free(encblob);
    return rv;
}

} // namespace

int DeviceImportKeypair(SPI_DEVICE_HANDLE hDevice, const unsigned char *keyblob, int keybloblen,
                        int type, const char *label, SPI_KEYPAIR_HANDLE *phKeypair) {
    const call_stack_tracer tracer("DeviceImportKeypair");
    TRACE_INFO("hDevice = %p, const unsigned char *keyblob = %p, int keybloblen = %d, "
               "int type = %d, const char *label = %s, SPI_KEYPAIR_HANDLE *phKeypair = %p",
               static_cast<void *>(hDevice), static_cast<const void *>(keyblob), keybloblen, type,
               shown(label), static_cast<void *>(phKeypair));
    const Arguments arguments = {keyblob, keybloblen, type, label, phKeypair};
    Outcome outcome = checkArguments(hDevice, arguments);
    if (outcome.message)
        return finish(outcome, __func__);
    const int index = GetContainerIndex(hDevice, label);
    if (index == -1)
        return fail("GetContainerIndex(hDevice, label) = -1", __func__);
    TRACE_DEBUG("GetContainerIndex success, index = %d", index);

    ProviderLock lock;
    if (const char *message = checkDevice(hDevice, index))
        outcome = {TEMBRA_FAILURE, message};
    else if (hasMagic(keyblob, "_KEYPAIR"))
        return importPlain(hDevice, arguments, lock, __func__);
    else if (hasMagic(keyblob, "SCAENCKP"))
        outcome = importEnveloped(hDevice, index, keyblob, keybloblen, label, phKeypair);
    else
        outcome = {TEMBRA_FAILURE, "memcmp(keyblob, 'SCAENCKP', 8) != 0"};
    lock.leave();
    return finish(outcome, __func__);
}
