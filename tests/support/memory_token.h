// The default behaviour of the scripted functions: tokens in memory, without cryptography. Keys are
// predictable bytes, ciphers are a toy with real chaining, and every handle is recorded.
#pragma once

#include "platform/orvel_crypto.h"
#include "platform/skf.h"

#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tembra::test {

using Bytes = std::vector<unsigned char>;

struct ContainerModel {
    std::string name;
    ULONG type = CONTAINER_TYPE_EMPTY;
    ULONG keyBits = 0;
    bool hasSignKey = false;
    bool hasEncryptKey = false;
    Bytes signCertificate{};
    Bytes encryptCertificate{};
};

struct FileModel {
    Bytes content;
    ULONG readRights = 0;
    ULONG writeRights = 0;
};

struct ApplicationModel {
    std::string name;
    std::list<ContainerModel> containers;
    std::map<std::string, FileModel> files;
    std::string pins[2] = {"admin-pin", "user-pin"}; // by ADMIN_TYPE, USER_TYPE
    ULONG retries[2] = {10, 10};
};

struct DeviceModel {
    std::string name;
    DEVINFO info;
    std::list<ApplicationModel> applications;
};

enum class HandleKind { device, application, container, key, digest };

// A handle that the token returned. Its memory is kept, so using a closed one is noticed.
struct HandleModel {
    HandleKind kind;
    bool open = true;
    bool isDeleted = false; // with its container
    DeviceModel *device = nullptr;
    ApplicationModel *application = nullptr;
    ContainerModel *container = nullptr;
    Bytes key{};
    BLOCKCIPHERPARAM cipher{};
    Bytes digested{};
};

struct MemoryToken {
    std::list<DeviceModel> devices;
    std::list<HandleModel> handles;
    int containersClosedTwice = 0;
    int certificatesTaken = 0;

    // The model of an open handle of this kind; null for any other.
    HandleModel *find(void *handle, HandleKind kind);
    DeviceModel *device(DEVHANDLE handle);
    ApplicationModel *application(HAPPLICATION handle);
    ContainerModel *container(HCONTAINER handle);
    HandleModel *create(HandleKind kind, const HandleModel &parent);
    int open(HandleKind kind) const;
    int open() const; // of any kind
    DeviceModel &addDevice(const std::string &name);
};

struct MemoryHost {
    std::map<void *, std::size_t> blocks{}; // returned and not yet freed
    int pseudoDevices = 0;                  // returned minus freed
    int foreignFrees = 0;

    MemoryHost() = default;
    ~MemoryHost();
    MemoryHost(const MemoryHost &) = delete;
    MemoryHost &operator=(const MemoryHost &) = delete;
};

// An SM2 or RSA container. The public values are predictable: see coordinate() and modulus().
ContainerModel ecc(const std::string &name, bool sign, bool encrypt);
ContainerModel rsa(const std::string &name, ULONG bits, bool sign, bool encrypt);

// 64 bytes as the token exports them, byte i being seed + i; the last 32 are the value.
Bytes coordinate(unsigned char seed);
// 256 bytes as the token exports them, byte i being seed + i.
Bytes modulus(unsigned char seed);
// The encodings that the host library makes of an exported public key and of a signature.
Bytes encodedEccKey(bool sign);
Bytes encodedRsaKey(bool sign, int bits);
Bytes encodedSignature();
// Whole blocks encrypted by the toy cipher; with an empty iv in ECB mode.
Bytes toyEncrypt(const Bytes &key, Bytes iv, const Bytes &plain);

// The usual buffer protocol: a length query, a short buffer, or a sufficient one.
ULONG giveBytes(const Bytes &bytes, BYTE *out, ULONG *length);

// The result of the action on a model; SAR_OK if the action has none, an error without a model.
template <typename Model, typename Action>
ULONG with(Model *model, Action action) {
    if (model == nullptr)
        return SAR_INVALIDHANDLEERR;
    if constexpr (std::is_void_v<decltype(action(*model))>) {
        action(*model);
        return SAR_OK;
    } else {
        return action(*model);
    }
}

// The default behaviour of each function.
namespace memory_token {
#define TEMBRA_IMPORT(result, name, parameters) result name parameters;
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
} // namespace memory_token

} // namespace tembra::test
