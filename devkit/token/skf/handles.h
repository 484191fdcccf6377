// What the handles stand for. A handle whose parent was closed, or whose container was deleted, is
// good for nothing but being closed itself, so that leaks are seen. One whose token was unplugged
// or removed answers SAR_DEVICE_REMOVED, also when a token comes back in its place.
#pragma once

#include "handle_table.h"

#include "crypto/digest.h"
#include "crypto/sm4.h"
#include "token/model/token.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace tembra::token::skf {

struct OpenDevice {
    std::shared_ptr<model::Token> token;
    std::string tokenId;
    std::uint64_t insertion = 0;
    std::atomic<bool> open{true};

    std::mutex mutex; // for what follows
    unsigned locks = 0;
    std::optional<std::array<BYTE, 8>> challenge; // the random number for SKF_DevAuth
    bool authenticated = false;
};

struct OpenApplication {
    std::shared_ptr<OpenDevice> device;
    std::string id;
    std::string session; // the login it shares
    std::shared_ptr<model::Login> login;
    std::atomic<bool> open{true};

    model::Token &token() const { return *device->token; }
};

struct OpenContainer {
    std::shared_ptr<OpenApplication> application;
    std::string id;

    model::Token &token() const { return application->token(); }
};

// An operation that was initialised and waits for its data.
struct CipherOperation {
    crypto::Sm4Padding padding = crypto::Sm4Padding::none;
    crypto::Sm4Block iv{};
};

struct ImportedKey {
    std::shared_ptr<OpenDevice> device;
    crypto::SecretBytes key;
    crypto::Sm4Mode mode = crypto::Sm4Mode::ecb;

    std::mutex mutex; // for what follows
    std::optional<CipherOperation> encryption;
    std::optional<CipherOperation> decryption;
};

struct RunningDigest {
    std::shared_ptr<OpenDevice> device;

    std::mutex mutex;                     // for what follows
    std::optional<crypto::Digest> digest; // until it is final
};

// All handles of the process.
struct Handles {
    HandleTable<OpenDevice> devices;
    HandleTable<OpenApplication> applications;
    HandleTable<OpenContainer> containers;
    HandleTable<ImportedKey> keys;
    HandleTable<RunningDigest> digests;
};
Handles &handles();

// The open object behind a handle, its parents open as well; Refused(SAR_INVALIDHANDLEERR).
std::shared_ptr<OpenDevice> device(DEVHANDLE handle);
std::shared_ptr<OpenApplication> application(HAPPLICATION handle);
std::shared_ptr<OpenContainer> container(HCONTAINER handle);
std::shared_ptr<ImportedKey> key(HANDLE handle);
std::shared_ptr<RunningDigest> digest(HANDLE handle);

// Refused(SAR_DEVICE_REMOVED) unless the image is that of the token the handle was opened for,
// plugged in ever since.
void requirePresent(const OpenDevice &device, const model::Image &image);

// The present token's image.
model::Snapshot imageOf(const OpenDevice &device);

// For handles that work without the token's content: looks at what this process knows of the token,
// not at the disk, which would cost more than the work itself.
void requirePresent(const OpenDevice &device);

// The application or container in an image, for reading or within a change; checks the token's
// presence too. Refused(SAR_INVALIDHANDLEERR) when it was deleted.
const model::Application &locate(const model::Image &image, const OpenApplication &application);
const model::Container &locate(const model::Image &image, const OpenContainer &container);
model::Application &locate(model::Change &change, const OpenApplication &application);
model::Container &locate(model::Change &change, const OpenContainer &container);

// Refused(SAR_USER_NOT_LOGGED_IN) unless the user has shown the PIN.
void requireUser(const OpenApplication &application);

} // namespace tembra::token::skf
