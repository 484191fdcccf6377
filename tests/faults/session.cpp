#include "session.h"

namespace tembra::test {

Session::Kept &Session::kept() {
    static Kept kept;
    return kept;
}

void Session::did(const std::string &entry, int result) {
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
