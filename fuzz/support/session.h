// A host that calls entry points in any order with any arguments, within the rules for handles:
// every handle is valid, and hash and cipher handles are freed before the last handle of their
// device.
#pragma once

#include "input.h"

#include "provider/records.h"
#include "tembra_key_prov.h"

#include <set>

namespace tembra::fuzz {

class Session {
public:
    explicit Session(Input &source) : input(source) {}
    // Frees all handles, and the records that the provider keeps by contract after a deletion.
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    // A discovery, then at most this many calls, chosen by the input until it is used up.
    void play(int calls);

    Input &input;
    std::vector<SPI_DEVICESET_HANDLE> sets;
    std::vector<SPI_DEVICE_HANDLE> devices;
    std::vector<SPI_KEYPAIR_HANDLE> pairs;
    std::vector<SPI_PUBLICKEY_HANDLE> publicKeys;
    std::vector<SPI_HASH_HANDLE> hashes;
    std::vector<SPI_CIPHER_HANDLE> ciphers;
    int discoveries = 0;

    // One of the handles; null if there is none, and occasionally.
    template <typename Handle>
    Handle any(const std::vector<Handle> &handles) {
        return handles.empty() || input.once(16) ? nullptr : input.pick(handles);
    }
    template <typename Handle>
    void keep(std::vector<Handle> &handles, Handle handle) {
        if (handle != nullptr)
            handles.push_back(handle);
    }
    template <typename Handle>
    Handle take(std::vector<Handle> &handles) {
        const Handle handle = any(handles);
        const auto found = std::find(handles.begin(), handles.end(), handle);
        if (found != handles.end())
            handles.erase(found);
        return handle;
    }

    void freeSet(SPI_DEVICESET_HANDLE set);
    void freeDevice(SPI_DEVICE_HANDLE device);
    void freePair(SPI_KEYPAIR_HANDLE pair);
    void deletePair();
    void updateCertificate();
    void importPair();

private:
    void releaseDependents(SPI_DEVICE_HANDLE device);

    std::set<TembraDevice *> m_keptDevices;
    std::vector<TembraContainer *> m_keptContainers;
};

} // namespace tembra::fuzz
