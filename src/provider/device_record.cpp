// Builds the record of one device: its token, application, containers and key pairs.
#include "log/trace.h"
#include "platform/memory.h"
#include "platform/skf_arguments.h"
#include "provider/container_reader.h"
#include "provider/discovery.h"
#include "provider/keypair_table.h"
#include "provider/name_list.h"

namespace tembra {

namespace {

constexpr std::size_t SERIAL_CAPACITY = 64;
static_assert(sizeof(DEVINFO::SerialNumber) < SERIAL_CAPACITY);

// Fills in what both kinds of device have. False if out of memory for the serial number.
bool fillToken(Device *hDevice, DEVHANDLE hDev, const DEVINFO *info) {
    hDevice->m_hDev = hDev;
    hDevice->m_info = *info;
    hDevice->m_refCount = 1;
    hDevice->m_serialNumber = static_cast<char *>(allocateZeroed(SERIAL_CAPACITY));
    if (!hDevice->m_serialNumber)
        return false;
    std::memcpy(hDevice->m_serialNumber, info->SerialNumber, sizeof(info->SerialNumber));
    return true;
}

// Reads the application's containers into the device; false if they cannot be enumerated.
bool getAllContainer(Device *hDevice) {
    NameList<4096> names;
    const ULONG rv = SKF_EnumContainer(hDevice->m_hApp, names.buffer(), names.length());
    if (rv != SAR_OK) {
        TRACE_ERROR("SKF_EnumContainer fail, error = 0x%08X", rv);
        return false;
    }
    while (hDevice->m_containerCount < CONTAINER_COUNT_MAX) {
        const char *name = names.next();
        if (!name)
            break;
        if (Container *hContainer = getContainer(hDevice->m_hApp, name))
            hDevice->m_containers[hDevice->m_containerCount++] = hContainer;
    }
    return true;
}

// False if out of memory.
bool addKeypair(Device *hDevice, int index, int keytype) {
    const Container *hContainer = hDevice->m_containers[index];
    Keypair *hKeypair = allocateRecord<Keypair>();
    char *label = copyText(hContainer->m_label);
    if (!hKeypair || !label) {
        std::free(hKeypair);
        std::free(label);
        return false;
    }
    const bool isRsa = hContainer->m_type == CONTAINER_TYPE_RSA;
    hKeypair->m_label = label;
    hKeypair->m_index = index;
    hKeypair->m_keytype = keytype;
    hKeypair->m_algo = isRsa ? ORVEL_PKI_ALGORITHM_RSA : ORVEL_PKI_ALGORITHM_ECC;
    hKeypair->m_keybits = hContainer->m_keybits;
    registerKeypair(hDevice, hKeypair);
    return true;
}

// Adds the signature pair of each container, then its encryption pair. Key pairs are left out if
// out of memory.
void getAllKeypairFromContainer(Device *hDevice) {
    for (int i = 0; i < hDevice->m_containerCount; ++i) {
        const Container *hContainer = hDevice->m_containers[i];
        if (hContainer->m_type == CONTAINER_TYPE_EMPTY)
            continue;
        if (hContainer->m_signPubKeyLen != 0 &&
            !addKeypair(hDevice, i, ORVEL_PKI_KEYPAIRTYPE_SIGNATURE))
            continue;
        if (hContainer->m_encPubKeyLen != 0)
            addKeypair(hDevice, i, ORVEL_PKI_KEYPAIRTYPE_ENCRYPT);
    }
}

} // namespace

Device *createKeyHandle(DEVHANDLE hDev, HAPPLICATION hApp, const char *appName,
                        const DEVINFO *info) {
    auto *hDevice = allocateRecord<Device>();
    if (!hDevice) {
        TRACE_ERROR("hDevice alloc memory fail");
        return nullptr;
    }
    hDevice->m_isformat = 1;
    hDevice->m_hApp = hApp;
    std::strncat(hDevice->m_appName, appName, sizeof(hDevice->m_appName) - 1);
    if (!fillToken(hDevice, hDev, info)) {
        std::free(hDevice);
        TRACE_ERROR("hDevice->m_serialNumber == 0");
        return nullptr;
    }
    if (!getAllContainer(hDevice)) {
        freeDevice(hDevice);
        TRACE_ERROR("getAllContainer(hDevice) == 0");
        return nullptr;
    }
    getAllKeypairFromContainer(hDevice);
    return hDevice;
}

Device *createEmptyKeyHandle(DEVHANDLE hDev, const DEVINFO *info) {
    auto *hDevice = allocateRecord<Device>();
    if (!hDevice) {
        TRACE_ERROR("hDevice == 0");
        return nullptr;
    }
    if (!fillToken(hDevice, hDev, info)) {
        std::free(hDevice);
        TRACE_ERROR("hDevice->m_serialNumber == 0");
        return nullptr;
    }
    return hDevice;
}

} // namespace tembra
