// The records behind the host's handles, their limits and their lifetimes.
//
// A Device counts references: one for the set it was found in, one for each key pair record in its
// table, one for each handle handed out, one for each hash and cipher record. DeviceFreeDevice
// destroys it once only the references of its own key pair, hash and cipher records are left, so
// hash and cipher handles do not keep their device alive.
//
// Locking: m_refCount and the tables change under g_lock. Pointers that entry points read without
// g_lock (container slots, m_device, cached keys and certificates, the hash and cipher lists) are
// also replaced and read under the RecordLock. The bytes of a cached key or certificate never
// change; they are copied and freed outside it.
#pragma once

#include "platform/skf.h"
#include "tembra_key_prov.h"

#include <cstdint>

inline constexpr int DEVICE_COUNT_MAX = 16;
inline constexpr int CONTAINER_COUNT_MAX = 32;
inline constexpr int KEYPAIR_COUNT_MAX = 2 * CONTAINER_COUNT_MAX;
inline constexpr int PUBLICKEY_LEN_MAX = 1024;

struct TembraDeviceSet {
    std::int32_t m_allocCount;
    std::int32_t m_count;
    struct TembraDevice **m_handles;
};

// The bytes follow.
struct TembraCertificate {
    std::int32_t m_references; // counted under the RecordLock
};

struct TembraContainer {
    char *m_label;
    HCONTAINER m_hContainer;
    bool m_isClosed;      // by a deletion that the token refused
    std::uint32_t m_type; // CONTAINER_TYPE_
    std::int32_t m_keybits;
    std::int32_t m_encPubKeyLen; // 0 without an encryption key pair
    unsigned char *m_encPubKey;  // host encoding, the host library's memory
    std::int32_t m_encCertLen;
    TembraCertificate *m_encCert; // null without a copy, whatever the length
    std::int32_t m_signPubKeyLen; // 0 without a signature key pair
    unsigned char *m_signPubKey;  // host encoding, the host library's memory
    std::int32_t m_signCertLen;
    TembraCertificate *m_signCert;
    struct TembraPublicKey *m_keyReaders; // records that a cached key is being copied to
};

struct TembraKeypair {
    std::int32_t m_index;          // of the container in m_device->m_containers
    TembraContainer *m_container;  // a later one may take its slot
    struct TembraDevice *m_device; // null once the key pair was deleted
    char *m_label;
    std::int32_t m_keytype; // ORVEL_PKI_KEYPAIRTYPE_
    std::int32_t m_algo;    // ORVEL_PKI_ALGORITHM_RSA or _ECC
    std::int32_t m_keybits;
    std::int32_t m_handleCount; // handles that the host holds; the record outlives them
};

struct TembraPublicKey {
    std::int32_t m_algo;
    std::int32_t m_keybits;
    unsigned char m_pubKey[PUBLICKEY_LEN_MAX]; // host encoding
    std::int32_t m_pubKeyLen;
    unsigned char *m_source; // while it is being copied
    TembraPublicKey *m_nextReader;
};

struct TembraHashContext {
    struct TembraDevice *m_device;
    HANDLE m_handle; // 0 once closed
    std::int32_t m_algo;
};

struct TembraCipherContext {
    struct TembraDevice *m_device;
    HANDLE m_handle; // 0 once closed
    std::int32_t m_enc;
    std::int32_t m_chained;
    unsigned char m_iv[16]; // the last ciphertext block processed
};

struct TembraDevice {
    DEVHANDLE m_hDev;
    std::int32_t m_isformat; // 0: a token without an application
    HAPPLICATION m_hApp;
    char m_appName[64];
    char *m_serialNumber;
    DEVINFO m_info;
    std::int32_t m_refCount;
    std::int32_t m_keypairCount;
    TembraKeypair *m_keypairs[KEYPAIR_COUNT_MAX];
    std::int32_t m_containerCount;
    TembraContainer *m_containers[CONTAINER_COUNT_MAX];
    std::int32_t m_hashAllocCount;
    std::int32_t m_hashCount;
    TembraHashContext **m_hashes;
    std::int32_t m_cipherAllocCount;
    std::int32_t m_cipherCount;
    TembraCipherContext **m_ciphers;
};

namespace tembra {

using DeviceSet = TembraDeviceSet;
using Device = TembraDevice;
using Certificate = TembraCertificate;
using Container = TembraContainer;
using Keypair = TembraKeypair;
using PublicKey = TembraPublicKey;
using HashContext = TembraHashContext;
using CipherContext = TembraCipherContext;

// Counts that entry points read without g_lock.
std::int32_t loadCount(const std::int32_t &count);
void storeCount(std::int32_t &count, std::int32_t value);

// Destroys a device and everything it owns, closes its application and disconnects its token. Null
// does nothing.
void freeDevice(Device *hDevice);

// Closes and frees a container with its keys and certificates. Null does nothing.
void freeContainer(Container *hContainer);

// A slot of the container table; null if it is free or the index is out of range.
Container *containerAt(const Device *hDevice, int index);
void setContainerAt(Device *hDevice, int index, Container *hContainer);

} // namespace tembra
