#include "session.h"

#include "../../tests/support/key_pair_blobs.h"
#include "buffers.h"
#include "operations.h"
#include "provider/lock.h"

namespace tembra::fuzz {
namespace {

bool isLastReference(const TembraDevice *device) {
    return device->m_refCount - 1 ==
           device->m_keypairCount + device->m_hashCount + device->m_cipherCount;
}

// What frees the hash and cipher records of a device that goes.
template <typename Handle, typename Free>
void freeAllOf(std::vector<Handle> &handles, const TembraDevice *device, Free free) {
    for (std::size_t i = handles.size(); i-- > 0;) {
        if (handles[i]->m_device == device) {
            free(handles[i]);
            handles.erase(handles.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

test::Bytes anyBlob(Input &in) {
    test::Bytes blob;
    switch (in.byte() % 6) {
    case 0: blob = in.bytes(in.byte()); break;
    case 1: blob = test::plainSm2(test::Bytes(32, in.byte())); break;
    case 2: blob = test::plainRsa(1024, test::Bytes(in.byte(), 0x30)); break;
    case 3: blob = test::RsaEnvelope(in.once(2) ? 2048 : 1024).blob(); break;
    default: blob = test::Sm2Envelope().blob(); break;
    }
    for (unsigned changes = in.byte() % 4; changes > 0 && !blob.empty(); --changes)
        blob[in.number() % blob.size()] = in.byte();
    return blob;
}

} // namespace

void Session::play(int calls) {
    operations().front()(*this);
    keep(devices, DeviceGetDevice(any(sets), 0));
    for (; calls > 0 && !in.done(); --calls)
        operations()[in.byte() % operations().size()](*this);
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
    // A deletion leaves the container record in memory, one reference too many on the device, and
    // slots beyond the count.
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
    const Data certificate(in);
    const int taken = test::script().memory.certificatesTaken;
    const int result = DeviceUpdateCertificate(pair, certificate.data(), certificate.length());
    if (result == 0 && test::script().memory.certificatesTaken > taken)
        g_lock.leave(); // left held by contract when memory is short for the copy
}

void Session::importPair() {
    SPI_DEVICE_HANDLE device = any(devices);
    const ExactBlock blob(anyBlob(in));
    const Text label(in, {"c0", "c1", "c2", "new", ""});
    SPI_KEYPAIR_HANDLE pair = nullptr;
    const int type = in.once(8) ? in.byte() : ORVEL_PKI_KEYPAIRTYPE_ENCRYPT;
    const int size = in.once(8) ? in.byte() % (blob.size() + 1) : blob.size();
    const bool wanted = !in.once(16);
    const int result = DeviceImportKeypair(device, in.once(16) ? nullptr : blob.data(), size, type,
                                           label, wanted ? &pair : nullptr);
    require((result == 1) == (pair != nullptr), "an import's result and its handle");
    keep(pairs, pair);
}

} // namespace tembra::fuzz
