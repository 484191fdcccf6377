// The objects behind the handles. If the parent of a handle was closed or its container deleted,
// the handle can only be closed, so that leaks show. If its token was unplugged or removed, every
// call returns SAR_DEVICE_REMOVED, even after the token is back.
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
    std::string session; // the key of the shared login
    std::shared_ptr<model::Login> login;
    std::atomic<bool> open{true};

    model::Token &token() const { return *device->token; }
};

struct OpenContainer {
    std::shared_ptr<OpenApplication> application;
    std::string id;

    model::Token &token() const { return application->token(); }
};

// An initialised operation that waits for its data.
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

// The object behind a handle. Error(SAR_INVALIDHANDLEERR) unless it and its parents are open; keys
// and digests also require the token to be present.
std::shared_ptr<OpenDevice> device(DEVHANDLE handle);
std::shared_ptr<OpenApplication> application(HAPPLICATION handle);
std::shared_ptr<OpenContainer> container(HCONTAINER handle);
std::shared_ptr<ImportedKey> key(HANDLE handle);
std::shared_ptr<RunningDigest> digest(HANDLE handle);

// Error(SAR_DEVICE_REMOVED) unless the token of the handle has been plugged in ever since.
void requirePresent(const OpenDevice &device, const model::Image &image);

// The image of the token, which must be present.
model::Snapshot imageOf(const OpenDevice &device);

template <typename Items>
auto &withId(Items &items, const std::string &id) {
    const auto found = std::ranges::find_if(items, [&](const auto &item) { return item.id == id; });
    require(found != items.end(), SAR_INVALIDHANDLEERR);
    return *found;
}

// The application or container in the image of a present token, for reading or within a change.
// Error(SAR_INVALIDHANDLEERR) if it was deleted.
template <typename Image>
auto &locate(Image &image, const OpenApplication &application) {
    requirePresent(*application.device, image);
    return withId(image.applications, application.id);
}
template <typename Image>
auto &locate(Image &image, const OpenContainer &container) {
    return withId(locate(image, *container.application).containers, container.id);
}
// Error(SAR_USER_NOT_LOGGED_IN) unless the user is logged in.
void requireUser(const OpenApplication &application);

} // namespace tembra::token::skf
