#include "session.h"

#include "../support/provider_allocator.h"

#include <iterator>

namespace tembra::test {
namespace {

// Everything that the device and the record of its deleted container own, and nothing else.
std::set<void *> blocksOf(const Session::Kept &kept) {
    std::set<TembraContainer *> containers(std::begin(kept.device->m_containers),
                                           std::end(kept.device->m_containers));
    containers.insert(kept.container);
    containers.erase(nullptr);
    std::set<void *> blocks = {kept.device, kept.device->m_serialNumber};
    for (int i = 0; i < kept.device->m_keypairCount; ++i)
        blocks.insert({kept.device->m_keypairs[i], kept.device->m_keypairs[i]->m_label});
    for (TembraContainer *container : containers) {
        blocks.insert({container, container->m_label, container->m_signCert, container->m_encCert});
        for (void *key : {container->m_signPubKey, container->m_encPubKey})
            if (key != nullptr)
                OrvelPKICryptoFreeMemory(key);
    }
    blocks.erase(nullptr);
    return blocks;
}

} // namespace

Session::Kept &Session::kept() {
    static Kept kept;
    return kept;
}

void Session::freeKept() {
    if (kept().device == nullptr)
        return;
    for (void *block : blocksOf(kept()))
        ProviderAllocator::discard(block);
    for (HandleModel &handle : script().memory.handles) {
        handle.open =
            handle.open && (handle.kind == HandleKind::key || handle.kind == HandleKind::digest);
    }
}

void Session::did(const std::string &entry, int result) {
    if (m_watch != nullptr)
        m_watch->returned();
    const std::size_t callsEnd = script().journal.size();
    m_steps.push_back({entry, result, m_callsBegin, callsEnd});
    m_callsBegin = callsEnd;
    entries.insert(entry);
    if (result != 1)
        throw Ended();
}

const Step *Session::failed() const {
    return m_steps.empty() || m_steps.back().result == 1 ? nullptr : &m_steps.back();
}

void Session::discover(int index) {
    set = DeviceGetAllDevices();
    did("DeviceGetAllDevices", set != nullptr);
    device = DeviceGetDevice(set, index);
    did("DeviceGetDevice", device != nullptr);
}

SPI_KEYPAIR_HANDLE Session::find(const char *label, int type) {
    SPI_KEYPAIR_HANDLE pair = nullptr;
    const int result = DeviceFindKeypair(device, type, label, &pair);
    keep("DeviceFindKeypair", pair, result);
    return pair;
}

void Session::keep(const std::string &entry, SPI_KEYPAIR_HANDLE pair, int result) {
    m_pairs.push_back(pair);
    did(entry, (pair != nullptr) == (result == 1) ? result : 99);
}

void Session::keepHash(SPI_HASH_HANDLE hash) {
    m_hash = hash;
    did("DeviceNewHash", hash != nullptr);
}

void Session::keepCipher(SPI_CIPHER_HANDLE cipher) {
    DeviceFreeCipher(m_cipher);
    m_cipher = cipher;
    did("DeviceNewCipher", cipher != nullptr);
}

void Session::deletePair(SPI_KEYPAIR_HANDLE pair) {
    const Kept left = {device, device->m_containers[pair->m_index]};
    const int result = DeviceDeleteKeypair(pair);
    if (result == 1)
        kept() = left;
    did("DeviceDeleteKeypair", result);
}

Session::~Session() {
    DeviceFreeHash(m_hash);
    DeviceFreeCipher(m_cipher);
    for (SPI_KEYPAIR_HANDLE pair : m_pairs)
        DeviceFreeKeypair(pair);
    DeviceFreeDevice(device);
    DeviceFreeDevices(set);
}

} // namespace tembra::test
