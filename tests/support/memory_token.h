// What stands behind the scripted functions: tokens in memory, without cryptography. Keys are the
// bytes a test can foresee, ciphers are a toy with real chaining, every handle is accounted for.
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

// Every handle the token has given out. Its memory is kept, so a stale one is noticed.
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

    // What an open handle stands for; null for any other.
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
    std::map<void *, std::size_t> blocks{}; // memory handed out and not yet given back
    int pseudoDevices = 0;                  // handed out less given back
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
// What the host library's encoders make of an exported public key and of a signature.
Bytes encodedEccKey(bool sign);
Bytes encodedRsaKey(bool sign, int bits);
Bytes encodedSignature();
// What the toy cipher makes of whole blocks; an empty iv is ECB.
Bytes toyEncrypt(const Bytes &key, Bytes iv, const Bytes &plain);

// The usual answer to a length query, a short buffer and a good one.
ULONG giveBytes(const Bytes &bytes, BYTE *out, ULONG *length);

// What the action makes of a model, if the handle stood for one; an action without a result
// succeeds.
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

// The usual behaviour of each function.
namespace memory_token {
#define TEMBRA_IMPORT(result, name, parameters) result name parameters;
#include "platform/orvel_crypto_functions.h"
#include "platform/skf_functions.h"
#undef TEMBRA_IMPORT
} // namespace memory_token

} // namespace tembra::test
