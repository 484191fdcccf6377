#include "session.h"

#include "../../tests/support/key_pair_blobs.h"
#include "arguments.h"
#include "operations.h"
#include "provider/lock.h"

namespace tembra::fuzz {
namespace {

bool isLastReference(const TembraDevice *device) {
    return device->m_refCount - 1 ==
           device->m_keypairCount + device->m_hashCount + device->m_cipherCount;
}

// Frees the hash or cipher handles of a device that is about to be freed.
template <typename Handle, typename Free>
void freeAllOf(std::vector<Handle> &handles, const TembraDevice *device, Free free) {
    for (std::size_t i = handles.size(); i-- > 0;) {
        if (handles[i]->m_device == device) {
            free(handles[i]);
            handles.erase(handles.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

test::Bytes anyBlob(Input &input) {
    test::Bytes blob;
    switch (input.byte() % 6) {
    case 0: blob = input.bytes(input.byte()); break;
    case 1: blob = test::plainSm2(test::Bytes(32, input.byte())); break;
    case 2: blob = test::plainRsa(1024, test::Bytes(input.byte(), 0x30)); break;
    case 3: blob = test::RsaEnvelope(input.once(2) ? 2048 : 1024).blob(); break;
    default: blob = test::Sm2Envelope().blob(); break;
    }
    for (unsigned changes = input.byte() % 4; changes > 0 && !blob.empty(); --changes)
        blob[input.number() % blob.size()] = input.byte();
    return blob;
}

} // namespace

void Session::play(int calls) {
    operations().front()(*this);
    keep(devices, DeviceGetDevice(any(sets), 0));
    for (; calls > 0 && !input.done(); --calls)
        operations()[input.byte() % operations().size()](*this);
}

Session::~Session() {
    for (SPI_HASH_HANDLE hash : hashes)
        DeviceFreeHash(hash);
    for (SPI_CIPHER_HANDLE cipher : ciphers)
        DeviceFreeCipher(cipher);
    hashes.clear();
    ciphers.clear();
    for (SPI_PUBLICKEY_HANDLE key : publicKeys)
        DeviceFreePublicKey(key);
    for (SPI_KEYPAIR_HANDLE pair : pairs)
        freePair(pair);
    for (SPI_DEVICE_HANDLE device : devices)
        freeDevice(device);
    for (SPI_DEVICESET_HANDLE set : sets)
        freeSet(set);
    // After a deletion the container record stays in memory, the device has one reference too many,
    // and container slots beyond the count are in use.
    for (TembraContainer *container : m_keptContainers)
        freeContainer(container);
    for (TembraDevice *device : m_keptDevices) {
        for (int i = device->m_containerCount; i < CONTAINER_COUNT_MAX; ++i)
            freeContainer(device->m_containers[i]);
        tembra::freeDevice(device);
    }
}

void Session::releaseDependents(SPI_DEVICE_HANDLE device) {
    if (device != nullptr && isLastReference(device)) {
        freeAllOf(hashes, device, DeviceFreeHash);
        freeAllOf(ciphers, device, DeviceFreeCipher);
    }
}

void Session::freeSet(SPI_DEVICESET_HANDLE set) {
    for (int i = 0; set != nullptr && i < set->m_count; ++i)
        releaseDependents(set->m_handles[i]);
    DeviceFreeDevices(set);
}

void Session::freeDevice(SPI_DEVICE_HANDLE device) {
    releaseDependents(device);
    DeviceFreeDevice(device);
}

void Session::freePair(SPI_KEYPAIR_HANDLE pair) {
    if (pair != nullptr)
        releaseDependents(pair->m_device);
    DeviceFreeKeypair(pair);
}

void Session::deletePair() {
    SPI_KEYPAIR_HANDLE pair = any(pairs);
    TembraDevice *device = pair == nullptr ? nullptr : pair->m_device;
    TembraContainer *container = device == nullptr ? nullptr : device->m_containers[pair->m_index];
    const int index = pair == nullptr ? 0 : pair->m_index;
    const int result = DeviceDeleteKeypair(pair);
    if (result == 1) {
        m_keptDevices.insert(device);
        if (device->m_containers[index] == nullptr)
            m_keptContainers.push_back(container);
    }
}

void Session::updateCertificate() {
    SPI_KEYPAIR_HANDLE pair = any(pairs);
    const Data certificate(input);
    const int taken = test::script().memory.certificatesTaken;
    const int result = DeviceUpdateCertificate(pair, certificate.data(), certificate.length());
    if (result == 0 && test::script().memory.certificatesTaken > taken)
        g_lock.leave(); // held by contract when memory runs out for the copy
}

void Session::importPair() {
    SPI_DEVICE_HANDLE device = any(devices);
    const ExactBlock blob(anyBlob(input));
    const Text label(input, {"c0", "c1", "c2", "new", ""});
    SPI_KEYPAIR_HANDLE pair = nullptr;
    const int type = input.once(8) ? input.byte() : ORVEL_PKI_KEYPAIRTYPE_ENCRYPT;
    const int size = input.once(8) ? input.byte() % (blob.size() + 1) : blob.size();
    const bool wanted = !input.once(16);
    const int result = DeviceImportKeypair(device, input.once(16) ? nullptr : blob.data(), size,
                                           type, label, wanted ? &pair : nullptr);
    require((result == 1) == (pair != nullptr), "an import's result contradicts its handle");
    keep(pairs, pair);
}

} // namespace tembra::fuzz
